#pragma once
// Editing of XMP packets (ISO 16684-1).
#include "base/Text.h"

#include <QDateTime>

#include <map>
#include <optional>

/// `packet` with the information entries of that name (Title, Author, Subject, Keywords, Creator, Producer;
/// others have no place in it; an empty value removes) and the dates of modification brought up to date,
/// everything else kept. Nothing if the packet isn't one.
[[nodiscard]] std::optional<NarrowString>
UpdateXmp(const NarrowString& packet, const std::map<NarrowString, string>& info, const QDateTime& now);
