#pragma once
// Regular expressions between slashes: where one stands, and how far it reaches.
#include "base/Text.h"

/// The length of the expression that the slash at `at` begins, its flags included. One without an end runs to
/// the end of the line, as it does while it is typed. 0: the slash divides, or begins a comment.
[[nodiscard]] qsizetype ExpressionLength(QStringView line, qsizetype at);
