#pragma once
// Macros in texts that are put on pages: names in square brackets that stand for the page's number, the
// date, the document's title and the like. docs/configuration.md lists them.
//
// A text is passed over once: what a macro expands to is not looked at again, so a title that reads
// "[page]" stays one. Names are read without regard to the case of A to Z, and nothing depends on the
// locale. What isn't a macro stays as it is.
#include "base/Text.h"

#include <QDateTime>

class TPDFDocument;

namespace MacroLimits {
/// A macro that would make a text longer than this stays unexpanded.
inline constexpr qsizetype ExpandedText = 1 << 20;
/// Greatest width of a padded number; a larger one counts as this.
inline constexpr int Digits = 255;
} // namespace MacroLimits

/// Expands the macros of a text on a page. `page` and `pageCount` stand for [page] and [numpages] as they
/// are; `fileName` is a name without folder; `now` is the time of [date] and [time]. Without a document
/// what it would tell is empty.
[[nodiscard]] string PDFformatMacroString(const TPDFDocument* document, const string& page,
                                          const string& pageCount, const string& text, const string& fileName,
                                          const QDateTime& now);

/// Expands the macros of a text that is tied to no page: the same without those about pages, at the
/// present time, and [user], the login name of the user that the program runs as.
[[nodiscard]] string formatVarString(const TPDFDocument* document, const string& text);
