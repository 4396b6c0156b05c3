#include "base/TypeNames.h"

#include "base/Convert.h"
#include "base/Reflection.h"

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
        if (string name = Reflection::OwnClassInfo(*type.metaObject(), "ScriptName"); !name.isEmpty())
            return name;
    if (type == QMetaType::fromType<PWideChar>())
        return QStringLiteral("string or null");
    const string full = QString::fromLatin1(type.name()).remove(u'*');
    return full.mid(full.lastIndexOf(u':') + 1);
}

string TypeNameWithValues(QMetaType type) {
    const QMetaEnum names = EnumOf(type);
    QStringList values;
    for (int i = 0; names.isValid() && i < names.keyCount(); ++i)
        values.append(QString::fromLatin1(names.key(i)));
    return values.isEmpty() ? TypeName(type)
                            : QStringLiteral("%1 (%2)").arg(TypeName(type), values.join(u", "));
}
