#include "scripting/Declarations.h"

#include <QStringList>

string ParameterList(const QMetaMethod& method) {
    QStringList parameters;
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters.append((Reflection::IsConstParameter(method, i) ? QStringLiteral("const ") : string()) +
                          QString::fromLatin1(names.value(i)) + QStringLiteral(": ") +
                          TypeName(method.parameterMetaType(i)));
    return parameters.isEmpty() ? string() : u'(' + parameters.join(QStringLiteral(", ")) + u')';
}

string MethodDeclaration(const QMetaMethod& method) {
    string text =
        QStringLiteral("function %1 ").arg(QString::fromLatin1(method.name())) + ParameterList(method);
    if (method.returnType() != QMetaType::Void)
        text += u' ' + TypeName(method.returnMetaType());
    return text + u';';
}
