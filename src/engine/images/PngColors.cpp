#include "engine/images/PngColors.h"

#include "engine/images/Exif.h"
#include "engine/pdf/Flate.h"

#include <algorithm>
#include <cmath>

namespace {

using TVector = std::array<Double, 3>;

constexpr size_t LargestProfile = 16 << 20;

/// XYZ, for a luminance of 1, of a colour by its chromaticity.
TVector ColorAt(Double x, Double y) {
    return {x / y, 1, (1 - x - y) / y};
}

Double Determinant(const TVector& a, const TVector& b, const TVector& c) {
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1]) +
           c[0] * (a[1] * b[2] - a[2] * b[1]);
}

} // namespace

void TPngColors::Read(std::string_view type, std::string_view data) {
    constexpr Double Unit = 100'000;
    if (type == "sRGB") {
        FIsSrgb = true;
    } else if (type == "gAMA" && data.size() == 4) {
        FGamma = BigEndian(data, 0, 4) / Unit;
    } else if (type == "cHRM" && data.size() == 32) {
        for (size_t i = 0; i < FPoints.size(); ++i)
            FPoints[i] = BigEndian(data, i * 4, 4) / Unit;
    } else if (type == "iCCP") {
        const size_t name = data.find('\0');
        if (name != std::string_view::npos && name + 2 < data.size() && data[name + 1] == 0)
            FProfile = Inflated(data.substr(name + 2), LargestProfile).value_or(std::string());
    }
}

void TPngColors::ApplyTo(TImageData& image) const {
    image.Profile = UsableProfile(FProfile, image.Palette.empty() ? image.Components : 3);
    if (image.Profile.empty() && !FIsSrgb && FGamma > 0 && !IsUsual())
        image.Calibration = Calibration();
}

bool TPngColors::IsUsual() const {
    constexpr Double UsualGamma = 1 / 2.2;
    const TPngColors usual;
    return std::abs(FGamma - UsualGamma) < 0.01 &&
           std::equal(FPoints.begin(), FPoints.end(), usual.FPoints.begin(),
                      [](Double a, Double b) { return std::abs(a - b) < 0.005; });
}

/// The luminances of the three are what makes their sum white.
std::optional<TCalibration> TPngColors::Calibration() const {
    for (size_t i = 0; i < FPoints.size(); i += 2)
        if (FPoints[i + 1] < 0.001 || FPoints[i] > 1 || FPoints[i + 1] > 1)
            return {};
    const TVector white = ColorAt(FPoints[0], FPoints[1]);
    const TVector red = ColorAt(FPoints[2], FPoints[3]);
    const TVector green = ColorAt(FPoints[4], FPoints[5]);
    const TVector blue = ColorAt(FPoints[6], FPoints[7]);
    const Double whole = Determinant(red, green, blue);
    if (std::abs(whole) < 1e-6 || FGamma < 0.05 || FGamma > 20)
        return {};
    const TVector shares = {Determinant(white, green, blue) / whole, Determinant(red, white, blue) / whole,
                            Determinant(red, green, white) / whole};
    TCalibration result{1 / FGamma, white, {}};
    for (size_t i = 0; i < 3; ++i) {
        result.Matrix[i] = red[i] * shares[0];
        result.Matrix[3 + i] = green[i] * shares[1];
        result.Matrix[6 + i] = blue[i] * shares[2];
    }
    return result;
}
