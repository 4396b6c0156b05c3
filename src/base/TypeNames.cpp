#include "base/TypeNames.h"

#include "base/Convert.h"
#include "base/Reflection.h"
#include "base/TypeKind.h"

#include <QStringList>

string TypeName(QMetaType type) {
    const TTypeRow& row = RowOf(type);
    if (row.Name)
        return QString::fromLatin1(row.Name);
    if (row.Kind == TTypeKind::Object)
        if (string name = Reflection::OwnClassInfo(*type.metaObject(), "ScriptName"); !name.isEmpty())
            return name;
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
