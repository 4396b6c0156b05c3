#include "engine/images/TiffInput.h"

#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

tmsize_t TTiffInput::OnRead(thandle_t self, void* to, tmsize_t size) {
    auto& input = *static_cast<TTiffInput*>(self);
    if (size <= 0 || input.FAt >= input.FFile.size())
        return 0;
    const size_t part = std::min(size_t(size), input.FFile.size() - size_t(input.FAt));
    std::memcpy(to, input.FFile.data() + input.FAt, part);
    input.FAt += part;
    return tmsize_t(part);
}

toff_t TTiffInput::OnSeek(thandle_t self, toff_t offset, int whence) {
    auto& input = *static_cast<TTiffInput*>(self);
    input.FAt = offset + (whence == SEEK_CUR ? input.FAt : whence == SEEK_END ? input.FFile.size() : 0);
    return input.FAt;
}

TTiffInput::TTiffInput(std::string_view file) : FFile(file) {
    const auto quiet = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), quiet, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), MaxDecodedBytes);
    // "m": not mapped.
    FTiff.reset(TIFFClientOpenExt(
        "image", "rm", this, OnRead, [](thandle_t, void*, tmsize_t) -> tmsize_t { return 0; }, OnSeek,
        [](thandle_t) { return 0; },
        [](thandle_t self) { return toff_t(static_cast<TTiffInput*>(self)->FFile.size()); }, nullptr, nullptr,
        options.get()));
    if (!FTiff)
        throw EImageError("damaged: its header makes no sense");
}

void TTiffInput::Require(bool sound) {
    if (!sound)
        throw EImageError("damaged: its data makes no sense");
}

int TTiffInput::Number(quint32 tag) const {
    if (tag == TIFFTAG_IMAGEWIDTH || tag == TIFFTAG_IMAGELENGTH) {
        quint32 value = 0;
        return TIFFGetField(FTiff.get(), tag, &value) == 1 && value <= INT_MAX ? int(value) : 0;
    }
    quint16 value = 0;
    return TIFFGetFieldDefaulted(FTiff.get(), tag, &value) == 1 ? value : 0;
}

Double TTiffInput::Real(quint32 tag) const {
    float value = 0;
    return TIFFGetField(FTiff.get(), tag, &value) == 1 ? Double(value) : 0;
}

int TTiffInput::FirstExtraSample() const {
    quint16 count = 0;
    const quint16* kinds = nullptr;
    return TIFFGetField(FTiff.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) == 1 && count > 0 ? kinds[0] : 0;
}

std::array<const quint16*, 3> TTiffInput::ColorMap() const {
    quint16* red = nullptr;
    quint16* green = nullptr;
    quint16* blue = nullptr;
    if (TIFFGetField(FTiff.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
        return {};
    return {red, green, blue};
}

std::string_view TTiffInput::Profile() const {
    quint32 size = 0;
    const char* data = nullptr;
    return TIFFGetField(FTiff.get(), TIFFTAG_ICCPROFILE, &size, &data) == 1 ? std::string_view(data, size)
                                                                            : std::string_view();
}

std::string TTiffInput::Samples(int planes) {
    const auto width = size_t(Number(TIFFTAG_IMAGEWIDTH));
    const auto height = size_t(Number(TIFFTAG_IMAGELENGTH));
    const auto bits = size_t(Number(TIFFTAG_BITSPERSAMPLE));
    const auto samples = size_t(Number(TIFFTAG_SAMPLESPERPIXEL));
    const size_t stride = (width * bits * (planes > 1 ? 1 : samples) + 7) / 8;
    if (Number(TIFFTAG_COMPRESSION) == COMPRESSION_JPEG && Number(TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_YCBCR)
        TIFFSetField(FTiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    constexpr size_t MostCoded = 32'768; // fax code makes next to nothing of white paper
    RequirePlausible(FFile.size(), bits == 1 ? 0 : stride * height * size_t(planes), MostCoded);
    std::string rows(stride * height * size_t(planes), '\0');
    for (int plane = 0; plane < planes; ++plane)
        ReadPlane(rows.data() + size_t(plane) * stride * height, stride, plane);
    if (planes > 1) {
        const size_t sample = bits / 8;
        const size_t pixels = width * height;
        std::string together(rows.size(), '\0');
        for (size_t i = 0; i < pixels; ++i)
            for (size_t plane = 0; plane < size_t(planes); ++plane)
                std::memcpy(together.data() + (i * size_t(planes) + plane) * sample,
                            rows.data() + (plane * pixels + i) * sample, sample);
        rows = std::move(together);
    }
    if (bits == 16)
        qToBigEndian<quint16>(rows.data(), qsizetype(rows.size() / 2), rows.data());
    return rows;
}

void TTiffInput::ReadPlane(char* to, size_t stride, int plane) {
    if (TIFFIsTiled(FTiff.get()) != 0) {
        ReadTiles(to, stride, plane);
        return;
    }
    Require(TIFFScanlineSize64(FTiff.get()) == stride);
    const auto height = quint32(Number(TIFFTAG_IMAGELENGTH));
    for (quint32 y = 0; y < height; ++y)
        Require(TIFFReadScanline(FTiff.get(), to + y * stride, y, quint16(plane)) == 1);
}

void TTiffInput::ReadTiles(char* to, size_t stride, int plane) {
    quint32 tileWidth = 0;
    quint32 tileHeight = 0;
    Require(TIFFGetField(FTiff.get(), TIFFTAG_TILEWIDTH, &tileWidth) == 1 && tileWidth > 0);
    Require(TIFFGetField(FTiff.get(), TIFFTAG_TILELENGTH, &tileHeight) == 1 && tileHeight > 0);
    const quint64 tileSize = TIFFTileSize64(FTiff.get());
    const quint64 tileStride = TIFFTileRowSize64(FTiff.get());
    Require(tileSize > 0 && tileSize <= quint64(MaxDecodedBytes) && tileStride * tileHeight <= tileSize);
    std::string tile(size_t(tileSize), '\0');
    const auto width = quint32(Number(TIFFTAG_IMAGEWIDTH));
    const auto height = quint32(Number(TIFFTAG_IMAGELENGTH));
    for (quint32 y = 0; y < height; y += tileHeight) {
        for (quint32 x = 0; x < width; x += tileWidth) {
            Require(TIFFReadTile(FTiff.get(), tile.data(), x, y, 0, quint16(plane)) >= 0);
            const size_t left = x / tileWidth * tileStride; // tiles are multiples of 16 wide: whole bytes
            Require(left < stride);
            const size_t part = std::min<size_t>(tileStride, stride - left);
            for (quint32 row = 0; row < std::min(tileHeight, height - y); ++row)
                std::memcpy(to + (y + row) * stride + left, tile.data() + row * tileStride, part);
        }
    }
}

std::string TTiffInput::Rgba() {
    const auto width = size_t(Number(TIFFTAG_IMAGEWIDTH));
    const auto height = size_t(Number(TIFFTAG_IMAGELENGTH));
    char why[1024] = "";
    if (TIFFRGBAImageOK(FTiff.get(), why) != 1)
        throw EImageError("a kind of TIFF file that isn't known");
    std::vector<quint32> pixels(width * height);
    // Orientation is the drawing's affair: the library is to leave rows and columns as they are stored.
    Require(TIFFReadRGBAImageOriented(FTiff.get(), quint32(width), quint32(height), pixels.data(),
                                      Number(TIFFTAG_ORIENTATION), 1) == 1);
    std::string bytes;
    bytes.reserve(pixels.size() * 4);
    for (const quint32 pixel : pixels)
        for (const quint32 part : {TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel), TIFFGetA(pixel)})
            bytes += char(part);
    return bytes;
}

std::string TTiffInput::OnlyStrip() const {
    if (TIFFIsTiled(FTiff.get()) != 0 || TIFFNumberOfStrips(FTiff.get()) != 1)
        return {};
    const quint64 size = TIFFGetStrileByteCount(FTiff.get(), 0);
    const quint64 offset = TIFFGetStrileOffset(FTiff.get(), 0);
    if (offset > FFile.size() || size > FFile.size() - offset)
        return {};
    return std::string(FFile.substr(size_t(offset), size_t(size)));
}
