#pragma once
// One line on standard error, where a service's journal picks it up: for failures that the rules of the
// run swallow without a word. Never the run log, never a box.
#include "base/Text.h"

/// Never raises. Line breaks in `text` become blanks.
void JournalLine(const string& text) noexcept;
