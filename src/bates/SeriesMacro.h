#pragma once
// The macro [number:SERIES:digits] of stamp texts: each page that is stamped has the next number of the
// series, the same wherever it stands on the page. Digits are its least width, from 1 to 255; without them
// the number isn't padded. Its own name is read without regard to case, that of the series as it is. What
// isn't such a macro stays as it is.
#include "base/Text.h"

#include <QMap>
#include <QStringList>

namespace SeriesMacro {

/// Each once, in the order in which they first stand there.
[[nodiscard]] QStringList SeriesOf(const QStringList& texts);

/// `numbers` has the page's number of each series; macros of others stay.
[[nodiscard]] string Replace(const string& text, const QMap<string, qint64>& numbers);

} // namespace SeriesMacro
