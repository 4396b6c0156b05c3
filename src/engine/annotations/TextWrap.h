#pragma once
// Text set in lines no wider than a box.
#include "engine/fonts/TextShaper.h"

#include <vector>

/// Breaks the text where it may be broken (Unicode line breaking), else, in a word wider than the box,
/// between characters; and at its own line ends. Blanks at the end of a broken line are left out. Ends with
/// the line that fills `height`: what follows would not be seen.
[[nodiscard]] std::vector<TShapedLine> WrapText(const string& text, const TTextStyle& style, Double width,
                                                Double height);
