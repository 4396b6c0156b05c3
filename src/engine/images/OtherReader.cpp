#include "engine/images/Exif.h"
#include "engine/images/Pack.h"
#include "engine/images/Readers.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

/// The formats that we let Qt and its plugins read. Others aren't pictures of pixels (their plugins lay out
/// text, or start programs), or are read by us.
constexpr const char* Formats[] = {"bmp", "gif", "webp", "pbm", "pgm",  "ppm",  "xbm",  "xpm",  "ico",
                                   "cur", "tga", "wbmp", "jp2", "icns", "avif", "heic", "heif", "jxl"};

QImage ReadImage(const std::string& file) {
    constexpr int Megabytes = int(MaxDecodedBytes >> 20);
    QImageReader::setAllocationLimit(Megabytes);
    QByteArray bytes = QByteArray::fromRawData(file.data(), qsizetype(file.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (std::none_of(std::begin(Formats), std::end(Formats), [&](const char* f) { return format == f; }))
        throw EImageError("not an image of a known format");
    if (const QSize size = reader.size(); size.isValid())
        RequireDecodable(size.width(), size.height(), 32);
    QImage image = reader.read();
    if (image.isNull())
        throw EImageError("damaged: its data makes no sense");
    RequireDecodable(image.width(), image.height(), image.depth());
    return image;
}

/// The image's rows without what pads them.
std::string RowsOf(const QImage& image, size_t rowSize) {
    std::string rows;
    rows.reserve(rowSize * size_t(image.height()));
    for (int y = 0; y < image.height(); ++y)
        rows.append(reinterpret_cast<const char*>(image.constScanLine(y)), rowSize);
    return rows;
}

/// 16-bit samples, which Qt has in the machine's order, with their high bytes first.
std::string HighByteFirst(std::string rows) {
    qToBigEndian<quint16>(rows.data(), qsizetype(rows.size() / 2), rows.data());
    return rows;
}

/// Rows of an image that has four samples of so many bytes a pixel, the last its opacity.
void SplitAlpha(TImageData& result, const std::string& rows, size_t sample) {
    std::string colors, alpha;
    for (size_t at = 0; at < rows.size(); at += sample * 4) {
        colors.append(rows, at, sample * 3);
        alpha.append(rows, at + sample * 3, sample);
    }
    Pack(result, std::move(colors));
    PackAlpha(result, int(sample) * 8, std::move(alpha));
}

/// Whether the palette goes in even steps of grey from black to white, or the other way round.
bool IsRamp(const QList<QRgb>& palette, int bits, bool fromWhite) {
    const int last = (1 << bits) - 1;
    for (int i = 0; i <= last; ++i) {
        const int grey = (fromWhite ? last - i : i) * 255 / last;
        if (i >= palette.size() || palette[i] != qRgb(grey, grey, grey))
            return false;
    }
    return true;
}

void TakeIndexed(TImageData& result, const QImage& image) {
    const QList<QRgb> palette = image.colorTable();
    result.Bits = image.depth();
    result.Inverted = IsRamp(palette, result.Bits, true);
    if (!result.Inverted && !IsRamp(palette, result.Bits, false))
        for (const QRgb color : palette)
            for (const int part : {qRed(color), qGreen(color), qBlue(color)})
                result.Palette += char(part);
    Pack(result, RowsOf(image, RowSize(result)));
}

void TakePixels(TImageData& result, const QImage& image) {
    const bool indexed = image.format() == QImage::Format_Mono || image.format() == QImage::Format_Indexed8;
    const bool deep = image.pixelFormat().redSize() > 8 || image.format() == QImage::Format_Grayscale16;
    if (image.hasAlphaChannel()) {
        result.Components = 3;
        result.Bits = deep ? 16 : 8;
        const QImage rgba = image.convertToFormat(deep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888);
        std::string rows = RowsOf(rgba, size_t(rgba.width()) * size_t(rgba.depth()) / 8);
        SplitAlpha(result, deep ? HighByteFirst(std::move(rows)) : rows, deep ? 2 : 1);
    } else if (indexed && image.colorCount() > 0) {
        TakeIndexed(result, image);
    } else if (image.format() == QImage::Format_Grayscale8 || image.format() == QImage::Format_Grayscale16) {
        result.Bits = image.depth();
        std::string rows = RowsOf(image, RowSize(result));
        Pack(result, deep ? HighByteFirst(std::move(rows)) : std::move(rows));
    } else {
        result.Components = 3;
        const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
        Pack(result, RowsOf(rgb, RowSize(result)));
    }
}

/// Qt gives a file that tells no resolution that of the screen, so we look ourselves.
void TakeResolution(TImageData& result, std::string_view file) {
    constexpr Double MetresPerInch = 0.0254;
    if (file.starts_with("BM") && file.size() >= 46 && LittleEndian(file, 14, 4) >= 40)
        SetResolution(result, LittleEndian(file, 38, 4) * MetresPerInch,
                      LittleEndian(file, 42, 4) * MetresPerInch);
    if (!file.starts_with("RIFF") || file.substr(0, 12).substr(8) != "WEBP")
        return;
    for (size_t at = 12; at + 8 <= file.size();) {
        const size_t size = LittleEndian(file, at + 4, 4);
        if (file.substr(at, 4) == "EXIF")
            ApplyExif(result, file.substr(at + 8, size));
        at += 8 + size + size % 2;
    }
}

} // namespace

TImageData ReadOther(std::string file) {
    QImage image = ReadImage(file);
    if (image.format() == QImage::Format_MonoLSB)
        image.convertTo(QImage::Format_Mono);
    TImageData result;
    result.Width = image.width();
    result.Height = image.height();
    TakePixels(result, image);
    TakeResolution(result, file);
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb)) {
        const QByteArray profile = image.colorSpace().iccProfile();
        result.Profile = UsableProfile({profile.constData(), size_t(profile.size())},
                                       result.Palette.empty() ? result.Components : 3);
    }
    return result;
}
