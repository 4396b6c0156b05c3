#pragma once
// Colours by lightness, a* and b* (CIE 1976), made RGB: PDF knows them, but readers in wide use show images
// in them wrongly.
#include "engine/images/ImageData.h"

enum class TLabNumbers : quint8 { Signed, Shifted }; ///< how a* and b* are stored: below 0, or 128 added

/// Replaces the first three samples of each pixel, of 8 or 16 bits with the high byte first, by those of
/// sRGB; colours beyond it become its nearest by component.
void LabToRgb(std::string& rows, int bits, int samples, TLabNumbers numbers);
