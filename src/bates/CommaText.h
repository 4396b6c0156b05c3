#pragma once
// A list of texts in one line: items separated by commas, those that hold a blank, a comma or a double quote
// in double quotes, inner ones doubled.
#include "base/Text.h"

#include <QStringList>

[[nodiscard]] string ToCommaText(const QStringList& items);

/// Reads more than is written: outside quotes blanks separate items too, and nothing is an error. Control
/// characters count as blanks.
[[nodiscard]] QStringList FromCommaText(QStringView text);

/// The text without blanks and control characters at its ends, and nothing else: other white space stays.
[[nodiscard]] string TrimBlanks(const string& text);
