#pragma once
// Dates and times in texts, in numbers only.
#include "base/Text.h"

#include <QDateTime>

/// `format` with yyyy, yy, mm (month), dd, hh, MM (minutes) and ss replaced; everything else stands for
/// itself.
[[nodiscard]] string FormatMacroDate(const QDateTime& time, QStringView format);

/// The date of a PDF text string (ISO 32000-1, 7.9.4) as yyyy-mm-dd hh:MM, in the time zone that it was
/// written in. A text that is no such date is given back as it is.
[[nodiscard]] string MacroDateOfPdf(const string& date);
