#pragma once
// Types as people read them: in the documentation, in the editor and in messages.
#include "base/Text.h"

#include <QMetaType>

/// As scripts know it: "string" for text of any kind, "TPDFDocument" for an object of that class.
[[nodiscard]] string TypeName(QMetaType type);

/// The same, an enumeration with the names of its values: "TZQPDFPagePosition (ppCurrent, ppFirst, ppLast)".
[[nodiscard]] string TypeNameWithValues(QMetaType type);
