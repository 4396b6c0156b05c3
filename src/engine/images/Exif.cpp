#include "engine/images/Exif.h"

namespace {

/// A directory of a TIFF file: entries of 12 bytes with values of four bytes or offsets to longer ones.
class TDirectory {
public:
    explicit TDirectory(std::string_view bytes) : FBytes(bytes) {
        if (bytes.size() < 8 || (bytes.substr(0, 2) != "II" && bytes.substr(0, 2) != "MM"))
            return;
        FLittle = bytes[0] == 'I';
        const quint32 start = Number(4, 4);
        if (Number(2, 2) != 42 || start > bytes.size() - 2)
            return;
        FEntries = size_t(start) + 2;
        FCount = std::min<size_t>(Number(start, 2), (bytes.size() - FEntries) / 12);
    }

    /// A 16-bit number; 0 if there is none.
    [[nodiscard]] int Short(quint32 tag) const {
        const auto entry = Find(tag, 3);
        return entry ? int(Number(*entry + 8, 2)) : 0;
    }
    [[nodiscard]] Double Rational(quint32 tag) const {
        const auto entry = Find(tag, 5);
        const size_t at = entry ? Number(*entry + 8, 4) : FBytes.size();
        if (at + 8 > FBytes.size() || Number(at + 4, 4) == 0)
            return 0;
        return Double(Number(at, 4)) / Number(at + 4, 4);
    }

private:
    [[nodiscard]] quint32 Number(size_t at, int count) const {
        return FLittle ? LittleEndian(FBytes, at, count) : BigEndian(FBytes, at, count);
    }
    [[nodiscard]] std::optional<size_t> Find(quint32 tag, quint32 type) const {
        for (size_t i = 0; i < FCount; ++i)
            if (Number(FEntries + i * 12, 2) == tag && Number(FEntries + i * 12 + 2, 2) == type)
                return FEntries + i * 12;
        return {};
    }

    std::string_view FBytes;
    bool FLittle = false;
    size_t FEntries = 0;
    size_t FCount = 0;
};

bool IsSensible(Double dpi) {
    return dpi >= 10 && dpi <= 100'000; // 1 and 2 are what programs write that know none
}

} // namespace

void ApplyExif(TImageData& image, std::string_view exif) {
    enum : quint32 { Orientation = 0x112, ResolutionX = 0x11A, ResolutionY = 0x11B, ResolutionUnit = 0x128 };
    const TDirectory directory(exif);
    if (const int orientation = directory.Short(Orientation); orientation >= 1 && orientation <= 8)
        image.Orientation = orientation;
    if (image.DpiX > 0)
        return;
    constexpr int Centimetre = 3;
    const Double perInch = directory.Short(ResolutionUnit) == Centimetre ? 2.54 : 1;
    SetResolution(image, directory.Rational(ResolutionX) * perInch,
                  directory.Rational(ResolutionY) * perInch);
}

void SetResolution(TImageData& image, Double dpiX, Double dpiY) {
    if (!IsSensible(dpiX) && !IsSensible(dpiY))
        return;
    image.DpiX = IsSensible(dpiX) ? dpiX : dpiY;
    image.DpiY = IsSensible(dpiY) ? dpiY : dpiX;
}

std::string UsableProfile(std::string_view profile, int components) {
    constexpr size_t Header = 128;
    if (profile.size() < Header + 4)
        return {};
    const size_t size = BigEndian(profile, 0, 4);
    const std::string_view kind = profile.substr(12, 4);
    const std::string_view space = profile.substr(16, 4);
    const std::string_view wanted = components == 1 ? "GRAY" : components == 3 ? "RGB " : "CMYK";
    const bool knownKind = kind == "scnr" || kind == "mntr" || kind == "prtr" || kind == "spac";
    if (size < Header + 4 || size > profile.size() || profile.substr(36, 4) != "acsp" || space != wanted ||
        !knownKind || quint8(profile[8]) > 4)
        return {};
    return std::string(profile.substr(0, size));
}
