#pragma once
// What a PNG file says of the meaning of its colours (ISO/IEC 15948, 11.3.3).
#include "engine/images/ImageData.h"

class TPngColors {
public:
    /// Takes a chunk; ignores those that say nothing of colours.
    void Read(std::string_view type, std::string_view data);
    /// Sets the image's profile, or its calibration where that is another than the usual, which stands for
    /// the colours of the device.
    void ApplyTo(TImageData& image) const;

private:
    [[nodiscard]] bool IsUsual() const;
    [[nodiscard]] std::optional<TCalibration> Calibration() const;

    bool FIsSrgb = false;
    Double FGamma = 0; ///< exponent of encoding; 0 where not told
    /// x and y of white, red, green and blue; those of sRGB where not told.
    std::array<Double, 8> FPoints{0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06};
    std::string FProfile;
};
