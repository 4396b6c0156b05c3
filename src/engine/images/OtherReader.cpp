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
    // Qt doesn't tell the size of a GIF file beforehand, which may claim any for the canvas of its picture.
    const bool isGif = format == "gif" && file.size() >= 10;
    const QSize told =
        isGif ? QSize(int(LittleEndian(file, 6, 2)), int(LittleEndian(file, 8, 2))) : reader.size();
    const auto require = [&](QSize size, int depth) {
        constexpr size_t MostCoded = 32'768;
        RequireDecodable(size.width(), size.height(), depth);
        if (isGif)
            RequirePlausible(file.size(), size_t(size.width()) * size_t(size.height()) * 4, MostCoded);
    };
    if (!told.isEmpty())
        require(told, 32);
    QImage image = reader.read();
    if (image.isNull())
        throw EImageError("damaged: its data makes no sense");
    require(image.size(), image.depth());
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

/// Parts the opacity of each pixel from its colours.
void TakeWithAlpha(TImageData& result, QImage image) {
    const bool deep = image.pixelFormat().redSize() > 8;
    const size_t sample = deep ? 2 : 1;
    result.Components = 3;
    result.Bits = int(sample) * 8;
    image.convertTo(deep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888);
    std::string colors;
    std::string alpha;
    colors.reserve(size_t(image.width()) * size_t(image.height()) * sample * 3);
    alpha.reserve(size_t(image.width()) * size_t(image.height()) * sample);
    for (int y = 0; y < image.height(); ++y) {
        const auto* pixel = reinterpret_cast<const char*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x, pixel += sample * 4) {
            colors.append(pixel, sample * 3);
            alpha.append(pixel + sample * 3, sample);
        }
    }
    image = {};
    Pack(result, deep ? HighByteFirst(std::move(colors)) : std::move(colors));
    PackAlpha(result, result.Bits, deep ? HighByteFirst(std::move(alpha)) : std::move(alpha));
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

void TakePixels(TImageData& result, QImage image) {
    const auto take = [&] {
        std::string rows = RowsOf(image, RowSize(result));
        image = {}; // gives back what packing needs
        return rows;
    };
    switch (image.format()) {
    case QImage::Format_Mono:
    case QImage::Format_Indexed8:
        TakeIndexed(result, image);
        break;
    case QImage::Format_Grayscale8:
        Pack(result, take());
        break;
    case QImage::Format_Grayscale16:
        result.Bits = 16;
        Pack(result, HighByteFirst(take()));
        break;
    default:
        result.Components = 3;
        image.convertTo(QImage::Format_RGB888);
        Pack(result, take());
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

TImageData ReadOther(const std::string& file) {
    QImage image = ReadImage(file);
    if (image.format() == QImage::Format_MonoLSB)
        image.convertTo(QImage::Format_Mono);
    TImageData result;
    result.Width = image.width();
    result.Height = image.height();
    const QColorSpace space = image.colorSpace();
    if (image.hasAlphaChannel())
        TakeWithAlpha(result, std::move(image));
    else
        TakePixels(result, std::move(image));
    TakeResolution(result, file);
    if (space.isValid() && space != QColorSpace(QColorSpace::SRgb)) {
        const QByteArray profile = space.iccProfile();
        result.Profile = UsableProfile({profile.constData(), size_t(profile.size())},
                                       result.Palette.empty() ? result.Components : 3);
    }
    return result;
}
