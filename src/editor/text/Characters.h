#pragma once
// Where characters begin and end in UTF-16 text: surrogate pairs, and what combines with a character.
#include "base/Text.h"

/// `text` with each half of a pair that stands alone replaced by U+FFFD.
[[nodiscard]] string WithoutHalfPairs(string text);
/// The nearest column at or before `column` that isn't inside a surrogate pair.
[[nodiscard]] int WholeColumn(QStringView text, int column);
/// The end of the character at `column` with all that combines with it; the length of `line` at most.
[[nodiscard]] int CharacterEnd(QStringView line, int column);
/// A place where the caret may stop on its way: not between a character and what combines with it.
[[nodiscard]] bool IsCaretStop(QStringView line, int column);
