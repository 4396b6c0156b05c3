#pragma once
// Values between scripts and the program. Numbers, Booleans and texts cross as what they are; records as
// plain objects by member name; enumerations as numbers, and by name on the way in; lists as arrays; colours
// as numbers; objects with their identity (mozjs/Classes.h).
#include "scripting/mozjs/Mozjs.h"

#include <QVariant>

class TClassTable;

/// The value for a member or parameter of type `target`; base/Convert.h does what is left to do. Raises
/// EConvertError, whose text opens with `what`.
[[nodiscard]] QVariant FromScript(TClassTable& classes, JS::HandleValue value, QMetaType target,
                                  const string& what);

/// Whether an object that nobody owns becomes the script's.
enum class TOwnership { Borrowed, OfScript };

/// Raises Exception for a type that scripts have no form of.
void ToScript(TClassTable& classes, const QVariant& value, TOwnership ownership,
              JS::MutableHandleValue result);

[[nodiscard]] string TextOf(JSContext* cx, JS::HandleString text);
