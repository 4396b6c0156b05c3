#include "engine/images/Exif.h"
#include "engine/images/Fax.h"
#include "engine/images/LabColors.h"
#include "engine/images/Pack.h"
#include "engine/images/Readers.h"
#include "engine/images/TiffInput.h"

#include <algorithm>

namespace {

/// What decides how a page of a TIFF file is read.
struct TLayout {
    int Bits = 0;
    int Samples = 0; // of a pixel
    int Photometric = 0;
    int Compression = 0;
    bool Separate = false; // one plane for each sample
    int Colors = 0;        // samples that are colours; 0 where we leave the page to the library
    int Alpha = 0;         // EXTRASAMPLE_..., of the sample behind the colours; 0 without
};

int ColorsOf(const TLayout& layout) {
    switch (layout.Photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return 1;
    case PHOTOMETRIC_PALETTE:
        return layout.Bits <= 8 ? 1 : 0;
    case PHOTOMETRIC_RGB:
        return 3;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
        return layout.Bits >= 8 ? 3 : 0;
    case PHOTOMETRIC_YCBCR: // the library makes RGB of what its JPEG decoder reads
        return layout.Compression == COMPRESSION_JPEG ? 3 : 0;
    case PHOTOMETRIC_SEPARATED:
        return 4;
    default:
        return 0;
    }
}

TLayout LayoutOf(const TTiffInput& tiff) {
    TLayout layout;
    layout.Bits = tiff.Number(TIFFTAG_BITSPERSAMPLE);
    layout.Samples = tiff.Number(TIFFTAG_SAMPLESPERPIXEL);
    layout.Photometric = tiff.Number(TIFFTAG_PHOTOMETRIC);
    layout.Compression = tiff.Number(TIFFTAG_COMPRESSION);
    layout.Separate = layout.Samples > 1 && tiff.Number(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    const int format = tiff.Number(TIFFTAG_SAMPLEFORMAT);
    const bool plainNumbers = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
    const bool whole = layout.Bits == 8 || layout.Bits == 16;
    const bool packed = (layout.Bits == 1 || layout.Bits == 2 || layout.Bits == 4) && !layout.Separate;
    const int colors = ColorsOf(layout);
    if (plainNumbers && (whole || (packed && layout.Samples == colors)) && layout.Samples >= colors)
        layout.Colors = colors;
    if (layout.Colors > 0 && layout.Samples > colors)
        layout.Alpha = tiff.FirstExtraSample();
    return layout;
}

std::string PaletteOf(const TTiffInput& tiff, int bits) {
    const auto map = tiff.ColorMap();
    if (!map[0])
        throw EImageError("damaged: its palette makes no sense");
    const size_t count = size_t(1) << bits;
    quint16 greatest = 0;
    for (const quint16* part : map)
        greatest = std::max(greatest, *std::max_element(part, part + count));
    const int shift = greatest > 255 ? 8 : 0; // some writers take the numbers for bytes
    std::string palette;
    for (size_t i = 0; i < count; ++i)
        for (const quint16* part : map)
            palette += char(part[i] >> shift);
    return palette;
}

/// A colour that was multiplied by its opacity, without that.
void Unmultiply(std::string& colors, std::string_view alpha, size_t components, size_t sample) {
    const Double most = sample == 2 ? 65535 : 255;
    for (size_t i = 0; i < colors.size(); i += sample) {
        const size_t of = i / sample / components * sample;
        const quint32 opacity = BigEndian(alpha, of, int(sample));
        if (opacity == 0)
            continue;
        const auto color = quint32(std::min(most, BigEndian(colors, i, int(sample)) * most / opacity + 0.5));
        colors[i + sample - 1] = char(color);
        if (sample == 2)
            colors[i] = char(color >> 8);
    }
}

/// Parts the colours from the opacity and drops what else a pixel has.
void TakeWithExtras(TImageData& image, const TLayout& layout, const std::string& rows) {
    const auto sample = size_t(layout.Bits / 8);
    const auto colorSize = sample * size_t(layout.Colors);
    const auto pixelSize = sample * size_t(layout.Samples);
    std::string colors;
    std::string alpha;
    for (size_t at = 0; at < rows.size(); at += pixelSize) {
        colors.append(rows, at, colorSize);
        if (layout.Alpha != 0)
            alpha.append(rows, at + colorSize, sample);
    }
    if (layout.Alpha == EXTRASAMPLE_ASSOCALPHA)
        Unmultiply(colors, alpha, size_t(layout.Colors), sample);
    Pack(image, std::move(colors));
    if (layout.Alpha != 0)
        PackAlpha(image, layout.Bits, std::move(alpha));
}

bool IsFax(const TLayout& layout) {
    return layout.Bits == 1 && layout.Samples == 1 && layout.Colors == 1 &&
           layout.Photometric != PHOTOMETRIC_PALETTE &&
           (layout.Compression == COMPRESSION_CCITTFAX4 || layout.Compression == COMPRESSION_CCITTFAX3 ||
            layout.Compression == COMPRESSION_CCITTRLE || layout.Compression == COMPRESSION_CCITTRLEW);
}

/// The page's own code, if PDF can hold it: group 4 in one piece.
bool TakeFax(TImageData& image, const TTiffInput& tiff, const TLayout& layout) {
    if (layout.Compression != COMPRESSION_CCITTFAX4)
        return false;
    image.Data = tiff.OnlyStrip();
    if (image.Data.empty())
        return false;
    if (tiff.Number(TIFFTAG_FILLORDER) == FILLORDER_LSB2MSB)
        TIFFReverseBits(reinterpret_cast<quint8*>(image.Data.data()), tmsize_t(image.Data.size()));
    image.Filter = TImageFilter::Fax;
    return true;
}

void TakeSamples(TImageData& image, TTiffInput& tiff, const TLayout& layout) {
    image.Bits = layout.Bits;
    image.Components = layout.Colors;
    image.Inverted = layout.Photometric == PHOTOMETRIC_MINISWHITE;
    if (IsFax(layout) && TakeFax(image, tiff, layout))
        return;
    RequireDecodable(image.Width, image.Height, layout.Bits * layout.Samples);
    if (layout.Photometric == PHOTOMETRIC_PALETTE)
        image.Palette = PaletteOf(tiff, layout.Bits);
    std::string rows = tiff.Samples(layout.Separate ? layout.Samples : 1);
    if (layout.Photometric == PHOTOMETRIC_CIELAB)
        LabToRgb(rows, layout.Bits, layout.Samples, TLabNumbers::Signed);
    else if (layout.Photometric == PHOTOMETRIC_ICCLAB)
        LabToRgb(rows, layout.Bits, layout.Samples, TLabNumbers::Shifted);
    if (layout.Samples > layout.Colors)
        TakeWithExtras(image, layout, rows);
    else if (!IsFax(layout) || !PackAsFax(image, rows))
        Pack(image, std::move(rows));
}

/// What the library alone understands comes as red, green, blue and opacity, multiplied by the latter.
void TakeAsRgb(TImageData& image, TTiffInput& tiff) {
    RequireDecodable(image.Width, image.Height, 32);
    image.Components = 3;
    TLayout layout;
    layout.Bits = 8;
    layout.Samples = 4;
    layout.Colors = 3;
    layout.Alpha = EXTRASAMPLE_ASSOCALPHA;
    TakeWithExtras(image, layout, tiff.Rgba());
}

void TakeResolution(TImageData& image, const TTiffInput& tiff) {
    const int unit = tiff.Number(TIFFTAG_RESOLUTIONUNIT);
    const Double perInch = unit == RESUNIT_CENTIMETER ? 2.54 : unit == RESUNIT_INCH ? 1 : 0;
    SetResolution(image, tiff.Real(TIFFTAG_XRESOLUTION) * perInch, tiff.Real(TIFFTAG_YRESOLUTION) * perInch);
}

} // namespace

bool IsTiff(std::string_view file) {
    using namespace std::literals;
    return file.starts_with("II*\0"sv) || file.starts_with("MM\0*"sv) || file.starts_with("II+\0"sv) ||
           file.starts_with("MM\0+"sv);
}

TImageData ReadTiff(const std::string& file) {
    TTiffInput tiff(file);
    TImageData image;
    image.Width = tiff.Number(TIFFTAG_IMAGEWIDTH);
    image.Height = tiff.Number(TIFFTAG_IMAGELENGTH);
    RequireSize(image.Width, image.Height);
    TakeResolution(image, tiff);
    if (const int orientation = tiff.Number(TIFFTAG_ORIENTATION); orientation >= 1 && orientation <= 8)
        image.Orientation = orientation;
    const TLayout layout = LayoutOf(tiff);
    if (layout.Colors > 0)
        TakeSamples(image, tiff, layout);
    else
        TakeAsRgb(image, tiff);
    image.Profile = UsableProfile(tiff.Profile(), image.Palette.empty() ? image.Components : 3);
    return image;
}
