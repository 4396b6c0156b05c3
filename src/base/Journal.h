#pragma once
// One line on standard error, where a service's journal picks it up: for failures that the rules of the
// run swallow without a word. Never the run log, never a box.
#include "base/Text.h"

/// Never raises. Line breaks in `text` become blanks, other control characters "?".
void JournalLine(const string& text) noexcept;

/// For what may be wrong for a long time: writes `text` unless it is what was written for `subject` last.
void JournalChange(const string& subject, const string& text) noexcept;
/// What was wrong with `subject` is over: the next line for it is written, whatever it says. From any thread,
/// as the others.
void JournalSettled(const string& subject) noexcept;
