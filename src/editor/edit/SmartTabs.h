#pragma once
// Columns that the lines above suggest.
class TMemoState;

/// Blanks from the caret to the next word of the nearest line above that has one there; 0 if none has.
[[nodiscard]] int SmartTabIndent(const TMemoState& memo);
/// The column to which a backspace in leading blanks goes: the start of the word left of the caret in the
/// nearest line above that has one. One column back on the first two lines and where no line has one.
[[nodiscard]] int SmartBackTarget(const TMemoState& memo);
