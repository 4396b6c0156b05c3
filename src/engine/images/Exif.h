#pragma once
// What we want of EXIF data and of colour profiles, which several formats carry.
#include "engine/images/ImageData.h"

/// Takes orientation and resolution from EXIF data, which begins with its byte order ("II" or "MM"). What is
/// damaged or absent leaves the image as it is; a resolution that is already known stays.
void ApplyExif(TImageData& image, std::string_view exif);

/// Sets the resolution if both numbers make sense, or one does.
void SetResolution(TImageData& image, Double dpiX, Double dpiY);

/// The profile if PDF can hold it for colours of so many components (ISO 32000-1, 8.6.5.5), else nothing:
/// the colours are then those of the device.
[[nodiscard]] std::string UsableProfile(std::string_view profile, int components);
