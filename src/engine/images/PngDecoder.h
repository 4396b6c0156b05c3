#pragma once
// PNG data that PDF can't hold: interlaced, or with opacity between the colours.
#include "engine/images/ImageData.h"

/// The samples of a PNG file as they are, opacity included. The sizes are those of the file's header.
/// Raises EImageError.
[[nodiscard]] std::string DecodePng(std::string_view file, int height, size_t rowSize);
