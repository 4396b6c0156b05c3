#pragma once
// How simple values stand in XML: booleans true and false, integers decimal, floats in the shortest form
// that reads back to the same value, colours 0x and eight hexadecimal digits, enumerations by name, text
// with what XML cannot hold escaped.
#include "base/Text.h"

#include <QVariant>

namespace Lexical {

/// Whether values of the type have a lexical form.
[[nodiscard]] bool IsSimple(QMetaType type);

/// Raises EConvertError for an enumeration's value without a name and for bytes that are no text: reading
/// would refuse or change them.
[[nodiscard]] string Format(const QVariant& value);

/// Reads more than Format writes: True, TRUE, 1 and 0 for booleans, decimal colours, numbers for
/// enumerations, blanks around anything but text. Raises EConvertError that says what is expected.
[[nodiscard]] QVariant Parse(const string& text, QMetaType type);

} // namespace Lexical
