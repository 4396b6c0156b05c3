#include "engine/images/Exif.h"
#include "engine/images/JpegDecoder.h"
#include "engine/images/Readers.h"

#include <map>

namespace {

/// The markers that we look at (ITU-T T.81, table B.1).
enum TMarker : quint8 {
    SOF0 = 0xC0, // baseline
    SOF1 = 0xC1, // more tables
    SOF2 = 0xC2, // progressive
    SOF9 = 0xC9, // as SOF1 and SOF2 in arithmetic code
    SOF10 = 0xCA,
    DHT = 0xC4,
    JPG = 0xC8,
    DAC = 0xCC,
    SOF15 = 0xCF,
    RST0 = 0xD0,
    EOI = 0xD9,
    SOS = 0xDA,
    APP0 = 0xE0,
    APP1 = 0xE1,
    APP2 = 0xE2,
    APP14 = 0xEE,
    TEM = 0x01,
};

bool IsFrame(int marker) {
    return marker >= SOF0 && marker <= SOF15 && marker != DHT && marker != JPG && marker != DAC;
}

bool StandsAlone(int marker) {
    return marker == TEM || (marker >= RST0 && marker < EOI);
}

/// Goes through the segments of a JPEG file and gathers what a PDF must say of it.
class TJpegScan {
public:
    explicit TJpegScan(std::string_view file) : FFile(file) {}

    void Run() {
        for (int marker = NextMarker(); marker != EOI; marker = NextMarker()) {
            if (StandsAlone(marker))
                continue;
            const std::string_view segment = NextSegment();
            if (IsFrame(marker))
                ReadFrame(marker, segment);
            else if (marker == SOS)
                SkipCode();
            else
                ReadApplication(marker, segment);
        }
        if (FFrame == 0 || !FHasCode)
            throw EImageError("damaged: it holds no picture");
        Conclude();
    }

    /// Where the picture ends; telephones put whole films behind it.
    [[nodiscard]] size_t End() const { return FAt; }
    [[nodiscard]] bool IsArithmetic() const { return FFrame == SOF9 || FFrame == SOF10; }
    TImageData Image;

private:
    int NextMarker() {
        // A marker may stand behind any number of 0xFF; some writers leave bytes between segments, too.
        FAt = FFile.find('\xFF', FAt);
        FAt = FFile.find_first_not_of('\xFF', FAt);
        if (FAt == std::string_view::npos)
            throw EImageError("damaged: it ends too early");
        return quint8(FFile[FAt++]);
    }

    std::string_view NextSegment() {
        const size_t size = FAt + 2 <= FFile.size() ? BigEndian(FFile, FAt, 2) : 0;
        if (size < 2 || FAt + size > FFile.size())
            throw EImageError("damaged: it ends too early");
        const std::string_view segment = FFile.substr(FAt + 2, size - 2);
        FAt += size;
        return segment;
    }

    void ReadFrame(int marker, std::string_view segment) {
        if (FFrame != 0 || segment.size() < 6 || segment.size() < 6 + size_t(segment[5]) * 3)
            throw EImageError("damaged: its header makes no sense");
        FFrame = marker;
        if (marker > SOF2 && !IsArithmetic())
            throw EImageError("a lossless or hierarchical JPEG file, which PDF knows nothing of");
        if (segment[0] != 8)
            throw EImageError("a JPEG file of more than 8 bits a colour, which PDF knows nothing of");
        Image.Height = int(BigEndian(segment, 1, 2));
        Image.Width = int(BigEndian(segment, 3, 2));
        RequireSize(Image.Width, Image.Height);
        Image.Components = quint8(segment[5]);
        if (Image.Components != 1 && Image.Components != 3 && Image.Components != 4)
            throw EImageError("a JPEG file that is neither grey nor RGB nor CMYK");
        for (int i = 0; i < Image.Components; ++i)
            FComponentIds += segment[6 + size_t(i) * 3];
    }

    /// What follows a scan's header runs up to the next marker that is no restart; 0xFF 0x00 is a plain 0xFF.
    void SkipCode() {
        if (FFrame == 0)
            throw EImageError("damaged: its header makes no sense");
        FHasCode = true;
        for (;; FAt += 2) {
            FAt = FFile.find('\xFF', FAt);
            if (FAt == std::string_view::npos || FAt + 1 >= FFile.size())
                throw EImageError("damaged: it ends too early");
            const int next = quint8(FFile[FAt + 1]);
            if (next == 0xFF)
                --FAt;
            else if (next != 0 && !StandsAlone(next))
                return;
        }
    }

    void ReadApplication(int marker, std::string_view segment) {
        using namespace std::literals;
        const auto startsWith = [&](std::string_view name, size_t size) {
            return segment.size() >= size && segment.starts_with(name);
        };
        if (marker == APP0 && startsWith("JFIF\0"sv, 12)) {
            FIsJfif = true;
            const Double perInch = segment[7] == 1 ? 1 : segment[7] == 2 ? 2.54 : 0;
            SetResolution(Image, BigEndian(segment, 8, 2) * perInch, BigEndian(segment, 10, 2) * perInch);
        } else if (marker == APP1 && startsWith("Exif\0"sv, 6)) {
            if (FExif.empty())
                FExif = segment.substr(6);
        } else if (marker == APP2 && startsWith("ICC_PROFILE\0"sv, 14)) {
            FProfile.emplace(quint8(segment[12]), segment.substr(14));
        } else if (marker == APP14 && startsWith("Adobe"sv, 12)) {
            FIsAdobe = true;
        }
    }

    void Conclude() {
        std::string profile;
        for (const auto& [number, part] : FProfile)
            profile += part;
        Image.Profile = UsableProfile(profile, Image.Components);
        ApplyExif(Image, FExif); // behind JFIF, whose resolution counts
        Image.PlainRgb = Image.Components == 3 && !FIsAdobe && !FIsJfif && FComponentIds == "RGB";
        // What writes the Adobe marker stores CMYK with 0 for full ink, and readers of JPEG files rely on
        // it; in PDF 0 is no ink.
        Image.Inverted = Image.Components == 4 && FIsAdobe;
        Image.Filter = TImageFilter::Jpeg;
    }

    std::string_view FFile;
    size_t FAt = 2;
    int FFrame = 0; // its marker; 0 before it
    bool FHasCode = false;
    bool FIsJfif = false;
    bool FIsAdobe = false;
    std::string FComponentIds;
    std::string_view FExif;
    std::map<int, std::string_view> FProfile; // parts by number
};

} // namespace

bool IsJpeg(std::string_view file) {
    return file.starts_with("\xFF\xD8\xFF");
}

TImageData ReadJpeg(std::string file) {
    TJpegScan scan(file);
    scan.Run();
    if (scan.IsArithmetic()) {
        DecodeJpeg(scan.Image, file);
    } else {
        file.resize(scan.End());
        scan.Image.Data = std::move(file);
    }
    return std::move(scan.Image);
}
