#pragma once
// Fax code of group 4 (ITU-T T.6), which holds scanned text smaller than anything else that a PDF reader
// knows.
#include "engine/images/ImageData.h"

/// Makes rows of one bit a pixel the samples' data, in fax code. False, and the samples stay as they are, if
/// the library can't.
[[nodiscard]] bool PackAsFax(TImageSamples& samples, std::string rows);
