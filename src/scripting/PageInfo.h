#pragma once
#include "base/Reflection.h"

/// Size and rotation of a page, in points and degrees.
struct TPDFPageInfo {
    Q_GADGET
public:
    FIELD(Single, Width) = 0; ///< as displayed: swapped against PdfWidth at 90 and 270 degrees
    FIELD(Single, Height) = 0;
    FIELD(Integer, Rotation) = 0;
    FIELD(Single, PdfWidth) = 0; ///< of the crop box as the file has it
    FIELD(Single, PDFHeight) = 0;
    bool operator==(const TPDFPageInfo&) const = default;
};
