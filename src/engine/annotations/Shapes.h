#pragma once
// What the pictures of annotations are drawn with.
#include "engine/content/FormContent.h"

/// As the three numbers of an annotation's colour or of a function's end (ISO 32000-1, tables 164 and 40).
[[nodiscard]] QPDFObjectHandle NewColor(ARGB color);

/// `color` with that share, 0 to 1, of another in it.
[[nodiscard]] ARGB Mixed(ARGB color, ARGB other, Double share);
/// Whether white reads better on the colour than black.
[[nodiscard]] bool IsDark(ARGB color);

/// Appends a closed path with round corners; (x, y) is its lower left corner.
void AppendRoundBox(TFormContent& content, const QPDFObjectHandle::Rectangle& box, Double radius);

/// A shading that runs evenly from one colour to the other along a vertical line, from `top` down to
/// `bottom` (8.7.4.5.3).
[[nodiscard]] QPDFObjectHandle NewVerticalGradient(ARGB start, ARGB end, Double top, Double bottom);
