#pragma once
// Dates as PDF writes them.
#include <QDateTime>

#include <string>

/// "D:20261122233543+01'00'" (ISO 32000-1, 7.9.4).
[[nodiscard]] std::string PdfDate(const QDateTime& time);
