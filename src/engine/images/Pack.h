#pragma once
// Decoded samples into the form in which a PDF holds them smallest.
#include "engine/images/ImageData.h"

/// Compresses rows that are laid out as the samples' sizes say, and makes them the samples' data.
void Pack(TImageSamples& samples, std::string rows);

/// Bytes in a row.
[[nodiscard]] inline size_t RowSize(const TImageSamples& samples) {
    return (size_t(samples.Width) * size_t(samples.Bits) * size_t(samples.Components) + 7) / 8;
}

/// The opacity of each pixel, one byte or (with `bits` 16) two: of no use where all are opaque, and kept in
/// a bit each where they are opaque or clear.
void PackAlpha(TImageData& image, int bits, std::string rows);
