#pragma once
// JPEG data that PDF can't hold.
#include "engine/images/ImageData.h"

/// Replaces the image's data by the decoded samples of a JPEG file whose header says what the image says.
/// Raises EImageError.
void DecodeJpeg(TImageData& image, std::string_view file);
