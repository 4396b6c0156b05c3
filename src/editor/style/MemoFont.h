#pragma once
// Fonts as plain values.
#include "base/Text.h"

enum TFontStyle : unsigned { fsBold = 1, fsItalic = 2, fsUnderline = 4, fsStrikeOut = 8 };
using TFontStyles = unsigned; ///< a set of TFontStyle

struct TMemoFont {
    TFontName Name = "Courier New";
    int Size = 8; ///< points
    TFontStyles Style = 0;
    TColor Color = 0; ///< black
    bool operator==(const TMemoFont&) const = default;
};
