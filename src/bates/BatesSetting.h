#pragma once
#include "base/Reflection.h"

/// One Bates scheme: six texts for the corners and centres of a page, how they look and where they stand,
/// and how far their numbers have come. The members' order is that of files.
struct TZQPDFBatesSetting {
    Q_GADGET
public:
    FIELD(string, Name);
    FIELD(string, HeaderLeft);
    FIELD(string, HeaderCenter);
    FIELD(string, HeaderRight);
    FIELD(string, FooterLeft);
    FIELD(string, FooterCenter);
    FIELD(string, FooterRight);
    FIELD(string, FontName) = QStringLiteral("Arial");
    FIELD(Double, FontSize) = 12.0;
    FIELD(Integer, FontStyle) = 0; ///< 0 normal, 1 bold, 2 italic, 3 both
    FIELD(ARGB, FontColor) = 0xFF000000;
    FIELD(Boolean, FontOutline) = false; ///< the text is stroked and not filled
    FIELD(Double, MarginLeft) = 72.0;    ///< all four in points
    FIELD(Double, MarginRight) = 72.0;
    FIELD(Double, MarginTop) = 36.0;
    FIELD(Double, MarginBottom) = 36.0;
    FIELD(string, BatesNumbers); ///< the number list in comma format (bates/NumberList.h)
    bool operator==(const TZQPDFBatesSetting&) const = default;
};
