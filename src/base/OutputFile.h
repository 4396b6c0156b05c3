#pragma once
// Bytes on their way into an open file.
#include "base/Exceptions.h"

class TOutputFile {
public:
    /// The descriptor stays the caller's; `path` is for texts.
    TOutputFile(int descriptor, const string& path) : FDescriptor(descriptor), FPath(path) {}
    virtual ~TOutputFile() = default;
    TOutputFile(const TOutputFile&) = delete;
    TOutputFile& operator=(const TOutputFile&) = delete;

    [[nodiscard]] int Descriptor() const { return FDescriptor; }
    /// Where the bytes are to lie in the end.
    [[nodiscard]] const string& FinalPath() const { return FPath; }

    // All raise EFileError.
    void Write(const void* data, size_t size);
    /// Appends all of `source`, from its beginning, without taking it through user memory where the file
    /// systems can do that. Returns the number of bytes.
    qint64 WriteAllOf(int source);
    /// Brings the contents to the disk, once.
    void Flush();
    /// Another process has brought them there.
    void SetFlushed() { FFlushed = true; }

protected:
    [[nodiscard]] EFileError Failure(int error) const;
    int FDescriptor;
    string FPath;

private:
    qint64 WriteByReading(int source, qint64 offset);
    bool FFlushed = false;
};
