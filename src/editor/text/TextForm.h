#pragma once
// The form that a text had before it was shown: its tabs and the end of each line.
#include "base/Text.h"

/// `shown` is `original` as the editor shows it, with blanks for tabs and a line feed between lines, after
/// edits. Returns it with the tabs and line ends of `original` wherever a line, or a stretch of one, is still
/// the same; new lines end as most do.
[[nodiscard]] string WithFormOf(const string& original, const string& shown, int tabSize);
