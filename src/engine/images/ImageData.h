#pragma once
// What the readers of the file formats make of a file, and what they raise.
#include "base/Exceptions.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class TImageFilter : quint8 { Flate, Jpeg, Fax };

/// Samples as the stream of an image XObject holds them. Rows begin at whole bytes, the topmost row first;
/// samples of 16 bits have their high byte first.
struct TImageSamples {
    int Width = 0;
    int Height = 0;
    int Bits = 8;       ///< of one component: 1, 2, 4, 8 or 16
    int Components = 1; ///< 1, 3 or 4: grey (or a palette's index), RGB, CMYK
    TImageFilter Filter = TImageFilter::Flate;
    bool PngRows = false; ///< each row begins with the number of its PNG filter; only with Flate
    std::string Data;     ///< under the filter
};

/// Colours by the phosphors and gamma of a monitor (ISO 32000-1, 8.6.5.3).
struct TCalibration {
    Double Gamma = 1;
    std::array<Double, 3> WhitePoint{};
    std::array<Double, 9> Matrix{}; ///< XYZ of red, of green, of blue
};

struct TImageData : TImageSamples {
    std::string Palette;                     ///< RGB triples; without one, samples are colours themselves
    std::string Profile;                     ///< ICC, for the colours or the palette's; may be empty
    std::optional<TCalibration> Calibration; ///< only without a profile
    bool Inverted = false;                   ///< a sample of 0 is the most of its component
    bool PlainRgb = false; ///< JPEG data whose three components aren't YCbCr, though nothing in it says so
    std::vector<int> ColorKey;            ///< least and greatest sample of each component that is transparent
    std::unique_ptr<TImageSamples> Alpha; ///< opacity, one component; may have another size than the colours
    int Orientation = 1;                  ///< as EXIF counts: 1 upright, 5 to 8 with the axes exchanged
    Double DpiX = 0;                      ///< of the stored rows and columns; 0 where not told
    Double DpiY = 0;
};

/// Why a file can't be used as an image: "damaged: it ends too early".
class EImageError : public Exception {
public:
    explicit EImageError(const char* reason) : Exception(QString::fromUtf8(reason)) {}
    using Exception::Exception;
};

/// The limits on what is decoded; data that is passed on as it stands has none.
inline constexpr qint64 MaxDecodedPixels = 200'000'000;
inline constexpr qint64 MaxDecodedBytes = qint64(1) << 30;
inline constexpr int MaxSide = 1'000'000;

/// Raises EImageError for sizes that no image has and for those past the limits.
inline void RequireSize(qint64 width, qint64 height) {
    if (width < 1 || height < 1 || width > MaxSide || height > MaxSide)
        throw EImageError("damaged: its size makes no sense");
}
inline void RequireDecodable(qint64 width, qint64 height, int bitsPerPixel) {
    RequireSize(width, height);
    if (width * height > MaxDecodedPixels || (width * bitsPerPixel + 7) / 8 * height > MaxDecodedBytes)
        throw EImageError("too large: it has more than 200 million pixels or takes more than a gigabyte");
}

/// Raises EImageError where so few bytes can't hold that many samples, so that a small file that claims to be
/// a large image takes no time. `ratio` is the most that a coding shrinks anything.
inline void RequirePlausible(size_t coded, size_t decoded, size_t ratio) {
    constexpr size_t Harmless = 4 << 20;
    if (decoded > Harmless && coded < decoded / ratio)
        throw EImageError("damaged: it ends too early");
}

/// Numbers in files. They must be known to be there.
inline quint32 BigEndian(std::string_view bytes, size_t at, int count) {
    quint32 value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | quint8(bytes[at + size_t(i)]);
    return value;
}
inline quint32 LittleEndian(std::string_view bytes, size_t at, int count) {
    quint32 value = 0;
    for (int i = count; i-- > 0;)
        value = value << 8 | quint8(bytes[at + size_t(i)]);
    return value;
}
