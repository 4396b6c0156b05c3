#include "scripting/Signatures.h"

#include <QHash>
#include <QStringList>

string TypeName(QMetaType type) {
    static const QHash<int, string> names{
        {QMetaType::Bool, QStringLiteral("Boolean")},
        {QMetaType::Int, QStringLiteral("Integer")},
        {QMetaType::UInt, QStringLiteral("Cardinal")},
        {QMetaType::LongLong, QStringLiteral("Int64")},
        {QMetaType::ULongLong, QStringLiteral("UInt64")},
        {QMetaType::Float, QStringLiteral("Single")},
        {QMetaType::Double, QStringLiteral("Double")},
        {QMetaType::QString, QStringLiteral("string")},
        {QMetaType::QByteArray, QStringLiteral("string")},
        {QMetaType::QStringList, QStringLiteral("array of string")},
    };
    if (const auto known = names.constFind(type.id()); known != names.cend())
        return *known;
    if (type.flags().testFlag(QMetaType::PointerToQObject))
        if (const string name = Reflection::OwnClassInfo(*type.metaObject(), "ScriptName"); !name.isEmpty())
            return name;
    if (type == QMetaType::fromType<PWideChar>())
        return QStringLiteral("string or null");
    const string full = QString::fromLatin1(type.name()).remove(u'*');
    return full.mid(full.lastIndexOf(u':') + 1);
}

string ParameterList(const QMetaMethod& method) {
    QStringList parameters;
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters.append(QString::fromLatin1(names.value(i)) + QStringLiteral(": ") +
                          TypeName(method.parameterMetaType(i)));
    return parameters.isEmpty() ? string() : u'(' + parameters.join(QStringLiteral(", ")) + u')';
}

string MethodSignature(const QMetaMethod& method) {
    string text =
        QStringLiteral("function %1 ").arg(QString::fromLatin1(method.name())) + ParameterList(method);
    if (method.returnType() != QMetaType::Void)
        text += u' ' + TypeName(method.returnMetaType());
    return text + u';';
}
