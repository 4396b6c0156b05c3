#include "scripting/ScriptCompletion.h"

#include "scripting/Declarations.h"
#include "scripting/GlobalFunctions.h"
#include "scripting/ScriptDocument.h"

#include <algorithm>

namespace {

/// Callable, but on purpose not offered: they are about the program, not about documents.
bool IsHidden(const string& function) {
    const QStringView hidden[] = {u"IncludeResource", u"exename", u"ExeFolder"};
    return std::any_of(std::begin(hidden), std::end(hidden),
                       [&](QStringView name) { return SameText(function, name); });
}

/// Inherited methods are nobody's to call; constructors don't count as methods.
QList<QMetaMethod> OwnMethods(const QMetaObject& type) {
    QList<QMetaMethod> own = Reflection::Methods(type);
    own.removeIf([&](const QMetaMethod& method) { return method.enclosingMetaObject() != &type; });
    return own;
}

} // namespace

TJSCompletion BuildCompletion() {
    // Properties are never offered, on purpose: the one that the document has is its engine document, which
    // scripts don't see.
    QStringList document;
    for (const QMetaMethod& method : OwnMethods(TJSPDFDocument::staticMetaObject))
        document.append(MethodDeclaration(method));
    QStringList global{QStringLiteral("Document.")};
    for (const QMetaMethod& function : OwnMethods(TJSGlobalFunctions::staticMetaObject))
        if (!IsHidden(QString::fromLatin1(function.name())))
            global.append(MethodDeclaration(function));
    return {{QStringLiteral("DOCUMENT."), document}, {QStringLiteral("{DEFAULT}"), global}};
}
