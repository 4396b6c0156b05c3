#include "engine/images/Exif.h"
#include "engine/images/Pack.h"
#include "engine/images/PngColors.h"
#include "engine/images/PngDecoder.h"
#include "engine/images/Readers.h"

#include <libdeflate.h>

namespace {

constexpr std::string_view Signature = "\x89PNG\r\n\x1A\n";

/// The bits of a PNG file's colour type (ISO/IEC 15948, 11.2.2).
enum : int { UsesPalette = 1, UsesColor = 2, UsesAlpha = 4 };

/// Goes through the chunks of a PNG file.
class TPngScan {
public:
    explicit TPngScan(std::string_view file) : FFile(file) {}

    void Run() {
        for (size_t at = Signature.size();;) {
            if (at + 12 > FFile.size())
                throw EImageError("damaged: it ends too early");
            const size_t size = BigEndian(FFile, at, 4);
            if (size > FFile.size() - at - 12)
                throw EImageError("damaged: it ends too early");
            const std::string_view body = FFile.substr(at + 4, 4 + size);
            const bool sound =
                libdeflate_crc32(0, body.data(), body.size()) == BigEndian(FFile, at + 8 + size, 4);
            at += 12 + size;
            if (!ReadChunk(body.substr(0, 4), body.substr(4), sound))
                break;
        }
        if (Image.Data.empty() || (Has(UsesPalette) && Image.Palette.empty()))
            throw EImageError("damaged: it holds no picture");
        Image.Components = Has(UsesColor) && !Has(UsesPalette) ? 3 : 1;
        Colors.ApplyTo(Image);
    }

    [[nodiscard]] bool Has(int use) const { return (FColorType & use) != 0; }

    TImageData Image; ///< its data are the file's, as if that could be passed on
    TPngColors Colors;
    bool Interlaced = false;
    std::string_view Transparency;

private:
    /// False behind the last chunk.
    bool ReadChunk(std::string_view type, std::string_view data, bool sound) {
        const bool critical = (type[0] & 0x20) == 0;
        if (!sound && critical)
            throw EImageError("damaged: a checksum is wrong");
        if ((type == "IHDR") == (Image.Width != 0))
            throw EImageError("damaged: its header makes no sense");
        if (type == "IHDR")
            ReadHeader(data);
        else if (type == "PLTE" && Has(UsesPalette))
            ReadPalette(data);
        else if (type == "IDAT")
            Image.Data += data;
        else if (sound && !critical)
            ReadAncillary(type, data);
        return type != "IEND";
    }

    void ReadHeader(std::string_view data) {
        if (data.size() != 13)
            throw EImageError("damaged: its header makes no sense");
        RequireSize(BigEndian(data, 0, 4), BigEndian(data, 4, 4));
        Image.Width = int(BigEndian(data, 0, 4));
        Image.Height = int(BigEndian(data, 4, 4));
        Image.Bits = quint8(data[8]);
        Image.PngRows = true;
        FColorType = quint8(data[9]);
        Interlaced = data[12] == 1;
        const quint32 bits = 1U << std::min(Image.Bits, 31);
        const quint32 allowed = FColorType == 0   ? 0x10116 // 1, 2, 4, 8, 16
                                : FColorType == 3 ? 0x116   // 1, 2, 4, 8
                                : FColorType == 2 || FColorType == 4 || FColorType == 6 ? 0x10100 // 8, 16
                                                                                        : 0;
        if ((allowed & bits) == 0 || data[10] != 0 || data[11] != 0 || quint8(data[12]) > 1)
            throw EImageError("damaged: its header makes no sense");
    }

    void ReadPalette(std::string_view data) {
        if (data.empty() || data.size() % 3 != 0 || data.size() / 3 > size_t(1) << Image.Bits)
            throw EImageError("damaged: its palette makes no sense");
        Image.Palette = data;
    }

    void ReadAncillary(std::string_view type, std::string_view data) {
        constexpr Double MetresPerInch = 0.0254;
        if (type == "tRNS")
            Transparency = data;
        else if (type == "eXIf")
            ApplyExif(Image, data);
        else if (type == "pHYs" && data.size() == 9 && data[8] == 1)
            SetResolution(Image, BigEndian(data, 0, 4) * MetresPerInch,
                          BigEndian(data, 4, 4) * MetresPerInch);
        else
            Colors.Read(type, data);
    }

    std::string_view FFile;
    int FColorType = 0;
};

/// The opacity of each pixel by the palette's.
std::string PaletteAlpha(const TImageSamples& samples, std::string_view rows, std::string_view opacity) {
    const size_t rowSize = RowSize(samples);
    const auto perByte = size_t(8 / samples.Bits);
    const int mask = (1 << samples.Bits) - 1;
    std::string alpha;
    alpha.reserve(size_t(samples.Width) * size_t(samples.Height));
    for (size_t row = 0; row < size_t(samples.Height); ++row) {
        for (size_t x = 0; x < size_t(samples.Width); ++x) {
            const int shift = 8 - samples.Bits * int(x % perByte + 1);
            const int index = quint8(rows[row * rowSize + x / perByte]) >> shift & mask;
            alpha += size_t(index) < opacity.size() ? opacity[size_t(index)] : '\xFF';
        }
    }
    return alpha;
}

/// Whether the palette's opacity is full but for one run of clear colours: PDF's colour key says just that.
bool IsColorKey(TImageData& image, std::string_view opacity) {
    const size_t first = opacity.find_first_not_of('\xFF');
    if (first == std::string_view::npos)
        return true;
    const size_t last = opacity.find_last_not_of('\xFF');
    if (opacity.substr(first, last - first + 1).find_first_not_of('\0') != std::string_view::npos)
        return false;
    image.ColorKey = {int(first), int(last)};
    return true;
}

/// The one transparent colour of an image without palette.
void SetColorKey(TImageData& image, std::string_view transparency) {
    if (transparency.size() != size_t(image.Components) * 2)
        return;
    const int mask = (1 << image.Bits) - 1;
    for (size_t i = 0; i < transparency.size(); i += 2) {
        const auto sample = int(BigEndian(transparency, i, 2)) & mask;
        image.ColorKey.insert(image.ColorKey.end(), {sample, sample});
    }
}

/// Parts the samples of opacity, which stand behind each pixel's colours, from these.
void SplitAlpha(TImageData& image, const std::string& rows) {
    const auto sample = size_t(image.Bits / 8);
    const size_t colors = sample * size_t(image.Components);
    std::string colorRows;
    std::string alphaRows;
    colorRows.reserve(rows.size() / (colors + sample) * colors);
    alphaRows.reserve(rows.size() / (colors + sample) * sample);
    for (size_t at = 0; at < rows.size(); at += colors + sample) {
        colorRows.append(rows, at, colors);
        alphaRows.append(rows, at + colors, sample);
    }
    Pack(image, std::move(colorRows));
    PackAlpha(image, image.Bits, std::move(alphaRows));
}

} // namespace

bool IsPng(std::string_view file) {
    return file.starts_with(Signature);
}

TImageData ReadPng(const std::string& file) {
    TPngScan scan(file);
    scan.Run();
    TImageData& image = scan.Image;
    const auto decoded = [&](int components) {
        constexpr size_t MostDeflated = 1032;
        const size_t rowSize = (size_t(image.Width) * size_t(image.Bits) * size_t(components) + 7) / 8;
        RequireDecodable(image.Width, image.Height, image.Bits * components);
        RequirePlausible(image.Data.size(), rowSize * size_t(image.Height), MostDeflated);
        return DecodePng(file, image.Height, rowSize);
    };
    if (scan.Has(UsesAlpha)) {
        SplitAlpha(image, decoded(image.Components + 1));
        return std::move(image);
    }
    if (!scan.Has(UsesPalette))
        SetColorKey(image, scan.Transparency);
    const bool needsAlpha = scan.Has(UsesPalette) && !IsColorKey(image, scan.Transparency);
    if (!scan.Interlaced && !needsAlpha)
        return std::move(image);
    std::string rows = decoded(image.Components);
    if (needsAlpha)
        PackAlpha(image, 8, PaletteAlpha(image, rows, scan.Transparency));
    if (scan.Interlaced)
        Pack(image, std::move(rows));
    return std::move(image);
}
