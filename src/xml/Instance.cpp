#include "xml/Instance.h"

#include "base/Exceptions.h"
#include "base/TypeKind.h"
#include "xml/Lexical.h"

MemberKind KindOf(const QMetaProperty& member) {
    const QMetaType type = member.metaType();
    if (!member.isStored())
        return MemberKind::None;
    const TTypeKind kind = KindOf(type);
    if (kind == TTypeKind::Object) {
        const QMetaObject* held = type.metaObject();
        return held != nullptr && held->inherits(&TObjectListBase::staticMetaObject) ? MemberKind::ObjectList
                                                                                     : MemberKind::Object;
    }
    if (!member.isWritable())
        return MemberKind::None;
    if (Lexical::IsSimple(type))
        return MemberKind::Simple;
    return kind == TTypeKind::Record ? MemberKind::Record
           : kind == TTypeKind::List ? MemberKind::ValueList
                                     : MemberKind::Unknown;
}

string DefaultItemName(QMetaType itemType) {
    return KindOf(itemType) == TTypeKind::Record ? Reflection::ClassName(*itemType.metaObject())
                                                 : QStringLiteral("Item");
}

QVariant TInstance::Get(const QMetaProperty& member) const {
    return FObject != nullptr ? member.read(FObject) : member.readOnGadget(FRecord);
}

void TInstance::Set(const QMetaProperty& member, const QVariant& value) {
    const bool done =
        FObject != nullptr ? member.write(FObject, value) : member.writeOnGadget(FRecord, value);
    if (!done)
        throw Exception(QStringLiteral("%1 cannot be set").arg(QString::fromLatin1(member.name())));
}

QObject* TInstance::Held(const QMetaProperty& member) const {
    return Get(member).value<QObject*>();
}
