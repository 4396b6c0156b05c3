#include "xml/XmlMarks.h"

namespace XmlMarks {
namespace {

bool CoversSubclasses(const string& rootMark) {
    return rootMark.section(u',', 1, 1).trimmed() == u"true";
}

/// One part of a list mark, null if the member has none. 0: container, 1: item.
string ListMark(const QMetaObject& type, const QMetaProperty& member, int part) {
    const QByteArray key = QByteArray("XmlElement.") + member.name();
    const string mark = Reflection::ClassInfo(type, key.constData());
    return mark.isNull() ? string() : mark.section(u',', part, part).trimmed();
}

} // namespace

string RootName(const QMetaObject& type) {
    for (const QMetaObject* t = &type; t != nullptr; t = t->superClass()) {
        const string mark = Reflection::OwnClassInfo(*t, "XmlRoot");
        if (!mark.isNull() && (t == &type || CoversSubclasses(mark)))
            return mark.section(u',', 0, 0).trimmed();
    }
    return Reflection::ClassName(type);
}

bool ItemsTellClass(const QMetaObject& itemClass) {
    return CoversSubclasses(Reflection::ClassInfo(itemClass, "XmlRoot"));
}

const QMetaObject* Placeholder(const QMetaObject& itemClass) {
    const string name = Reflection::ClassInfo(itemClass, "XmlPlaceholder");
    return name.isNull() ? nullptr : Reflection::FindClass(name);
}

bool IsSparse(const QMetaObject& type) {
    return !Reflection::ClassInfo(type, "XmlSparse").isNull();
}

string ElementName(const QMetaObject& type, const QMetaProperty& member) {
    const string mark = ListMark(type, member, 0);
    return mark.isEmpty() ? QString::fromLatin1(member.name()) : mark;
}

string ItemName(const QMetaObject& type, const QMetaProperty& member, const string& fallback) {
    const string mark = ListMark(type, member, 1);
    return mark.isEmpty() ? fallback : mark;
}

} // namespace XmlMarks
