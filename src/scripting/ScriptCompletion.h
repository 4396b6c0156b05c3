#pragma once
// What the script editor offers while a script is typed. It is read from the run-time tables each time, so it
// always follows the classes.
#include "base/Text.h"

#include <QMap>
#include <QStringList>

/// Entries by the token that opens their list: "DOCUMENT." with its trailing dot, in upper case, or
/// "{DEFAULT}" where there is no token.
using TJSCompletion = QMap<string, QStringList>;

/// The methods of the script document, and "Document." with the global functions, each as MethodDeclaration
/// (scripting/Declarations.h) writes it, in the order of their declaration.
[[nodiscard]] TJSCompletion BuildCompletion();
