#pragma once
// Editing of XMP packets (ISO 16684-1).
#include "base/Text.h"

#include <QDateTime>

#include <map>
#include <optional>

/// A packet that says nothing yet.
[[nodiscard]] NarrowString EmptyXmp();

/// The information entries that a packet tells, by the names that UpdateXmp knows; several authors are joined
/// by semicolons.
[[nodiscard]] std::map<NarrowString, string> InfoOfXmp(const NarrowString& packet);

/// The part of ISO 19005 that a packet claims (pdfaid:part); 0 if it claims none.
[[nodiscard]] int PdfAPartOf(const NarrowString& packet);

/// `packet` with the information entries of that name (Title, Author, Subject, Keywords, Creator, Producer;
/// others have no place in it; an empty value removes) and the dates of modification brought up to date,
/// everything else kept. Nothing if the packet isn't one.
[[nodiscard]] std::optional<NarrowString>
UpdateXmp(const NarrowString& packet, const std::map<NarrowString, string>& info, const QDateTime& now);
