#include "engine/images/LabColors.h"

#include <algorithm>
#include <cmath>

namespace {

using TVector = std::array<Double, 3>;

/// The part of white that a lightness stands for, one of the three after its scale (CIE 15, 8.2.1).
Double Uncompressed(Double value) {
    constexpr Double Bend = 6.0 / 29;
    return value > Bend ? value * value * value : 3 * Bend * Bend * (value - 4.0 / 29);
}

/// A share of light as sRGB has it (IEC 61966-2-1), 0 to 1. From a table: a page has millions of these.
Double Encoded(Double light) {
    constexpr size_t Steps = 1 << 16;
    static const std::vector<float> table = [] {
        std::vector<float> values;
        for (size_t i = 0; i <= Steps; ++i) {
            const Double x = Double(i) / Steps;
            values.push_back(float(x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055));
        }
        return values;
    }();
    return Double(table[size_t(std::lround(std::clamp(light, 0.0, 1.0) * Steps))]);
}

/// From lightness in 0 to 100. The matrix is sRGB's, adapted by Bradford's rule to the white of D50.
TVector Rgb(Double lightness, Double a, Double b) {
    const Double base = (lightness + 16) / 116;
    const Double x = 0.9642 * Uncompressed(base + a / 500);
    const Double y = Uncompressed(base);
    const Double z = 0.8249 * Uncompressed(base - b / 200);
    return {Encoded(3.1338561 * x - 1.6168667 * y - 0.4906146 * z),
            Encoded(-0.9787684 * x + 1.9161415 * y + 0.0334540 * z),
            Encoded(0.0719453 * x - 0.2289914 * y + 1.4052427 * z)};
}

} // namespace

void LabToRgb(std::string& rows, int bits, int samples, TLabNumbers numbers) {
    const auto sample = size_t(bits / 8);
    const Double scale = bits == 16 ? 256 : 1;
    const Double most = bits == 16 ? 65535 : 255;
    for (size_t at = 0; at < rows.size(); at += sample * size_t(samples)) {
        const auto opponent = [&](size_t index) {
            Double value = BigEndian(rows, at + index * sample, int(sample)) / scale;
            if (numbers == TLabNumbers::Signed)
                return value >= 128 ? value - 256 : value;
            return value - 128;
        };
        const Double lightness = BigEndian(rows, at, int(sample)) * 100 / most;
        const TVector rgb = Rgb(lightness, opponent(1), opponent(2));
        for (size_t i = 0; i < 3; ++i) {
            const auto value = quint32(std::lround(rgb[i] * most));
            rows[at + (i + 1) * sample - 1] = char(value);
            if (sample == 2)
                rows[at + i * sample] = char(value >> 8);
        }
    }
}
