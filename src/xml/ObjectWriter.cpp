#include "xml/ObjectWriter.h"

#include "xml/Instance.h"
#include "xml/Lexical.h"
#include "xml/XmlMarks.h"

#include <QSequentialIterable>

namespace {

class TObjectWriter {
public:
    explicit TObjectWriter(TXmlWriter& out) : FOut(out) {}

    void WriteMembers(const TInstance& instance);

private:
    void WriteMember(const TInstance& instance, const QMetaProperty& member);
    void WriteSparse(const string& name, QVariant record);
    void WriteValues(const TInstance& instance, const QMetaProperty& member);
    void WriteObjects(const TInstance& instance, const QMetaProperty& member);
    void WriteItem(QObject& item, const QMetaObject& itemClass, const string& name);

    TXmlWriter& FOut;
};

void TObjectWriter::WriteMembers(const TInstance& instance) {
    for (const QMetaProperty& member : Reflection::Members(instance.Type()))
        WriteMember(instance, member);
}

/// A sparse record tells only what differs from one that was never touched.
void TObjectWriter::WriteSparse(const string& name, QVariant record) {
    QVariant untouched(record.metaType());
    if (record == untouched)
        return;
    FOut.Open(name);
    const TInstance told(record);
    for (const QMetaProperty& member : Reflection::Members(told.Type()))
        if (told.Get(member) != TInstance(untouched).Get(member))
            WriteMember(told, member);
    FOut.Close();
}

void TObjectWriter::WriteMember(const TInstance& instance, const QMetaProperty& member) {
    const string name = XmlMarks::ElementName(instance.Type(), member);
    switch (KindOf(member)) {
    case MemberKind::None:
        break;
    case MemberKind::Simple:
        FOut.Leaf(name, Lexical::Format(instance.Get(member)));
        break;
    case MemberKind::Record: {
        QVariant record = instance.Get(member);
        if (XmlMarks::IsSparse(TInstance(record).Type())) {
            WriteSparse(name, record);
            break;
        }
        FOut.Open(name);
        WriteMembers(TInstance(record));
        FOut.Close();
        break;
    }
    case MemberKind::ValueList:
        FOut.Open(name);
        WriteValues(instance, member);
        FOut.Close();
        break;
    case MemberKind::Object:
        if (QObject* object = instance.Held(member)) {
            FOut.Open(name);
            WriteMembers(TInstance(*object));
            FOut.Close();
        }
        break;
    case MemberKind::ObjectList:
        FOut.Open(name);
        WriteObjects(instance, member);
        FOut.Close();
        break;
    case MemberKind::Unknown:
        throw EXmlError(
            QStringLiteral("%1.%2 cannot be stored: values of type %3 have no form in XML")
                .arg(Reflection::ClassName(instance.Type()), name, QString::fromLatin1(member.typeName())));
    }
}

void TObjectWriter::WriteValues(const TInstance& instance, const QMetaProperty& member) {
    QVariant list = instance.Get(member);
    const auto values = list.view<QSequentialIterable>();
    const string name = XmlMarks::ItemName(instance.Type(), member, DefaultItemName(values.valueMetaType()));
    for (QVariant value : values) {
        if (Lexical::IsSimple(value.metaType())) {
            FOut.Leaf(name, Lexical::Format(value));
            continue;
        }
        FOut.Open(name);
        WriteMembers(TInstance(value));
        FOut.Close();
    }
}

void TObjectWriter::WriteObjects(const TInstance& instance, const QMetaProperty& member) {
    const auto* list = qobject_cast<const TObjectListBase*>(instance.Held(member));
    if (list == nullptr)
        return;
    const QMetaObject& itemClass = list->ItemClass();
    const string name = XmlMarks::ItemName(instance.Type(), member, XmlMarks::RootName(itemClass));
    for (int i = 0; i < list->Count(); ++i)
        WriteItem(*list->ItemAt(i), itemClass, name);
}

void TObjectWriter::WriteItem(QObject& item, const QMetaObject& itemClass, const string& name) {
    const QMetaObject& type = *item.metaObject();
    if (&type == XmlMarks::Placeholder(itemClass)) {
        FOut.Raw(Reflection::FindMember(type, u"Xml").read(&item).toString());
        return;
    }
    TXmlAttributes attributes;
    if (XmlMarks::ItemsTellClass(itemClass)) {
        const string className = Reflection::ClassName(type);
        if (Reflection::FindClass(className) != &type)
            throw EXmlError(QStringLiteral("Objects of class %1 could not be read back: it is not registered")
                                .arg(className));
        attributes.emplace_back(QStringLiteral("Class"), className);
    }
    FOut.Open(name, attributes);
    WriteMembers(TInstance(item));
    FOut.Close();
}

} // namespace

QByteArray WriteDocument(const QObject& object, const string& rootName, XmlLayout layout) {
    TXmlWriter out(layout);
    out.Open(rootName);
    // Writing changes nothing: the tables know objects only as variable ones.
    TObjectWriter(out).WriteMembers(TInstance(const_cast<QObject&>(object)));
    out.Close();
    return out.Bytes();
}
