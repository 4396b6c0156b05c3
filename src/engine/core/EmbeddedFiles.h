#pragma once
// The files attached to a document, keyed by base name: a local path is nobody's business.
#include "base/Text.h"

#include <QStringList>

#include <memory>
#include <vector>

struct TDocumentCore;

class TPDFEmbeddedFiles {
public:
    explicit TPDFEmbeddedFiles(TDocumentCore& core);
    ~TPDFEmbeddedFiles();

    /// Each of these takes a path or a bare name and looks at its base name only.
    [[nodiscard]] bool Exists(const string& name) const;
    void Delete(const string& name);

    /// Reads the file at `path` and attaches it with its size, dates, type and checksum in place of one of
    /// the same name. Empty texts are worked out: the name shown from the path, the MIME type from name
    /// and contents. Raises EFileError if the file can't be read.
    void Add(const string& path, const string& shownName, const string& description, const string& mimeType);

    /// Makes the changes part of what the next save writes.
    void Update();

    /// Names as a reader shows them, sorted; changes that Update has not confirmed included.
    [[nodiscard]] QStringList Names() const;

private:
    struct TChanges;
    TDocumentCore& FCore;
    std::unique_ptr<TChanges> FPending;
};
