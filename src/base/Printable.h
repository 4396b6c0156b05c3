#pragma once
// Text of others, as names of files, on its way to a terminal, a journal or a log.
#include "base/Text.h"

/// Each control character, and each separator of lines or paragraphs, becomes "?": none can move a cursor,
/// change a terminal or begin a line that nobody wrote.
[[nodiscard]] string Printable(const string& text);
