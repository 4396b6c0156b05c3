#include "engine/images/ImageFile.h"

#include "base/Paths.h"
#include "engine/file/FileInput.h"
#include "engine/images/ImageCache.h"
#include "engine/images/Readers.h"
#include "engine/pdf/Errors.h"

#include <QCryptographicHash>

#include <cerrno>
#include <new>

namespace {

TImageCache& Cache() {
    constexpr qint64 Limit = 64 << 20;
    static TImageCache cache(Limit);
    return cache;
}

TFileState StampOf(const string& path) {
    struct stat info {};
    if (::stat(PathBytes(path).constData(), &info) != 0)
        throw EFileError(QStringLiteral("open"), path, errno);
    return StateOf(info);
}

std::string ReadWhole(TFileInput& input, const string& path) {
    constexpr qint64 Limit = qint64(1) << 30;
    if (input.Info().st_size > Limit)
        throw EImageError("too large: the file has more than a gigabyte");
    std::string bytes(size_t(input.Info().st_size), '\0');
    const size_t got = input.read(bytes.data(), bytes.size());
    input.RequireSound();
    if (got != bytes.size() || StampOf(path) != StateOf(input.Info()))
        throw EImageError("it was changed while it was read");
    return bytes;
}

QByteArray DigestOf(const std::string& bytes) {
    return QCryptographicHash::hash(QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size())),
                                    QCryptographicHash::Blake2b_256);
}

TImageData Read(std::string bytes) {
    if (IsJpeg(bytes))
        return ReadJpeg(std::move(bytes));
    if (IsPng(bytes))
        return ReadPng(bytes);
    if (IsTiff(bytes))
        return ReadTiff(bytes);
    return ReadOther(bytes);
}

qint64 SizeOf(const TImageData& image) {
    size_t size = image.Data.size() + image.Palette.size() + image.Profile.size();
    if (image.Alpha)
        size += image.Alpha->Data.size();
    return qint64(size);
}

} // namespace

TImageFile::TImageFile(const QByteArray& digest, std::shared_ptr<const TImageData> data)
    : FDigest(digest), FData(std::move(data)) {}
TImageFile::~TImageFile() = default;

std::shared_ptr<const TImageFile> TImageFile::Load(const string& path) {
    if (auto known = Cache().Find(path, StampOf(path)))
        return known;
    string reason;
    try {
        TFileInput input(path);
        std::string bytes = ReadWhole(input, path);
        const QByteArray digest = DigestOf(bytes);
        auto data = std::make_shared<const TImageData>(Read(std::move(bytes)));
        auto image = std::make_shared<const TImageFile>(digest, data);
        Cache().Add(path, StateOf(input.Info()), image, SizeOf(*data));
        return image;
    } catch (const EImageError& e) {
        reason = e.Message();
    } catch (const std::bad_alloc&) {
        reason = QStringLiteral("too large: there is not enough memory for it");
    }
    throw EPDFError(QStringLiteral("Cannot use \"%1\" as an image: %2").arg(path, reason));
}

Double TImageFile::Width() const {
    const TImageData& image = *FData;
    return image.Orientation >= 5 ? image.Height * 72.0 / (image.DpiY > 0 ? image.DpiY : 72)
                                  : image.Width * 72.0 / (image.DpiX > 0 ? image.DpiX : 72);
}

Double TImageFile::Height() const {
    const TImageData& image = *FData;
    return image.Orientation >= 5 ? image.Width * 72.0 / (image.DpiX > 0 ? image.DpiX : 72)
                                  : image.Height * 72.0 / (image.DpiY > 0 ? image.DpiY : 72);
}
