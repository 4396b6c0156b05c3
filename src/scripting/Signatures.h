#pragma once
// How methods and types are written for people: in the completion of the script editor and in the reference.
#include "base/Reflection.h"

/// As scripts know it: "string" for text of any kind, "TPDFDocument" for an object of that class.
[[nodiscard]] string TypeName(QMetaType type);

/// "(fileName: string, Password: string)"; empty for a method without parameters.
[[nodiscard]] string ParameterList(const QMetaMethod& method);

/// "function SaveAs (fileName: string) Boolean;", and "function Save  Boolean;" without parameters.
[[nodiscard]] string MethodSignature(const QMetaMethod& method);
