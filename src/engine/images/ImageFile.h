#pragma once
// An image file in the form in which a PDF holds it.
#include "base/Text.h"

#include <memory>

struct TImageData;

/// An image as its file has it, read once and shared by all documents that draw it. Immutable, so that any
/// thread may use it.
class TImageFile {
public:
    /// Raises EFileError where the file can't be read, EPDFError where it is no image that we know or is
    /// damaged; both name the file. A file that hasn't changed since it was last loaded isn't read again as
    /// long as its image is in use or among those used last. Any thread may call this.
    [[nodiscard]] static std::shared_ptr<const TImageFile> Load(const string& path);

    TImageFile(const QByteArray& digest, std::shared_ptr<const TImageData> data);
    ~TImageFile();

    /// Natural size as displayed, orientation included, in points; a file that tells no resolution, or
    /// nonsense, has 72 pixels an inch.
    [[nodiscard]] Double Width() const;
    [[nodiscard]] Double Height() const;
    /// Of the file's bytes: what tells images apart.
    [[nodiscard]] const QByteArray& Digest() const { return FDigest; }
    [[nodiscard]] const std::shared_ptr<const TImageData>& Data() const { return FData; }

private:
    QByteArray FDigest;
    std::shared_ptr<const TImageData> FData;
};
