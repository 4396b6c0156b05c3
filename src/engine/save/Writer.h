#pragma once
// From the changes to a file. One way to write is here, the full rewrite; one that appends to the original
// bytes fits behind the same interface.
#include <memory>

class TOutputFile;
struct TDocumentCore;

class TDocumentWriter {
public:
    virtual ~TDocumentWriter() = default;
    /// Writes the document with its changes to `file`, which the caller publishes. Afterwards the changes
    /// are part of the core's source objects.
    virtual void Write(TDocumentCore& core, TOutputFile& file) = 0;
};

/// Writes every object of the document anew: streams copied as they stand, object streams kept.
[[nodiscard]] std::unique_ptr<TDocumentWriter> NewFullRewrite();
