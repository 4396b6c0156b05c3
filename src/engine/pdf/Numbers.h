#pragma once
// Numbers that callers give, before they become numbers of a PDF, which knows neither NaN nor infinities.
#include "base/Text.h"

/// The largest distance from a page's corner, and the largest size, in points: far beyond any page, and small
/// enough for readers that count in single precision or in 32-bit fractions.
constexpr Double LongestLength = 1'000'000;

/// Raises EPDFError, naming `what` and the value, unless it lies between -LongestLength and LongestLength.
void RequireLength(const char* what, Double value);
/// The same for a number that is no length, such as an angle or a factor.
void RequireNumber(const char* what, Double value);
/// Raises EPDFError for text that would be cut at a NUL character, naming `what` it is.
void RequireNoNul(const char* what, const string& text);
