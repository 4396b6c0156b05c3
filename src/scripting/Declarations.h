#pragma once
// How methods and types are written for people: in the completion of the script editor and in the reference.
#include "base/Reflection.h"
#include "base/TypeNames.h"

/// "(const fileName: string, Password: string)", with "const" as declared (base/Reflection.h); empty for a
/// method without parameters.
[[nodiscard]] string ParameterList(const QMetaMethod& method);

/// "function SaveAs (fileName: string) Boolean;", and "function Save  Boolean;" without parameters.
[[nodiscard]] string MethodDeclaration(const QMetaMethod& method);
