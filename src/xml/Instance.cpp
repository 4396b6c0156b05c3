#include "xml/Instance.h"

#include "base/Exceptions.h"
#include "xml/Lexical.h"

#include <QSequentialIterable>

MemberKind KindOf(const QMetaProperty& member) {
    const QMetaType type = member.metaType();
    if (!member.isStored())
        return MemberKind::None;
    if (type.flags().testFlag(QMetaType::PointerToQObject)) {
        const QMetaObject* held = type.metaObject();
        return held != nullptr && held->inherits(&TObjectListBase::staticMetaObject) ? MemberKind::ObjectList
                                                                                     : MemberKind::Object;
    }
    if (!member.isWritable())
        return MemberKind::None;
    if (Lexical::IsSimple(type))
        return MemberKind::Simple;
    if (type.flags().testFlag(QMetaType::IsGadget))
        return MemberKind::Record;
    if (QMetaType::canView(type, QMetaType::fromType<QSequentialIterable>()))
        return MemberKind::ValueList;
    return MemberKind::Unknown;
}

string DefaultItemName(QMetaType itemType) {
    return itemType.flags().testFlag(QMetaType::IsGadget) ? Reflection::ClassName(*itemType.metaObject())
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
