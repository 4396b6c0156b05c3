#pragma once
// Conversion of tagged values. Widens what can be widened and never drops meaning in silence: 2.5 is no
// integer and "x" is no Boolean, both raise.
#include "base/Text.h"

#include <QMetaEnum>
#include <QVariant>

/// `value` as exactly the type `target`. Allowed are: the same type; number to number where the value
/// fits (a double to the nearest single); one kind of text to another, but for a NUL in a file name; an
/// integer, or a value's name, to an enumeration; an integer to a colour; an object to one of its base
/// classes; a null object. Raises EConvertError, whose text opens with `what` (as in `parameter "Angle"`).
[[nodiscard]] QVariant ConvertTo(const QVariant& value, QMetaType target, const string& what);

/// The names of an enumeration's values, from the table of the class or header that declares it.
[[nodiscard]] QMetaEnum EnumOf(QMetaType type);
/// The number behind a value of an enumeration, named or not.
[[nodiscard]] qint64 EnumValueOf(const QVariant& value);
