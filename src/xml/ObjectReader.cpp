#include "xml/ObjectReader.h"

#include "xml/Instance.h"
#include "xml/Lexical.h"
#include "xml/XmlMarks.h"

#include <QSequentialIterable>
#include <QSet>

namespace {

class TObjectReader {
public:
    TObjectReader(const TXmlDocument& document, const TNoteSkipped& noteSkipped)
        : FDocument(document), FNoteSkipped(noteSkipped) {}

    void ReadRoot(QObject& object, const string& rootName) const;

private:
    void ReadMembers(TInstance target, const TXmlElement& element) const;
    void ReadMember(TInstance& target, const QMetaProperty& member, const TXmlElement& element) const;
    [[nodiscard]] QVariant ReadRecord(QVariant record, const TXmlElement& element) const;
    [[nodiscard]] QVariant ReadValue(QMetaType type, const TXmlElement& element) const;
    [[nodiscard]] QVariant ReadValues(const TInstance& target, const QMetaProperty& member,
                                      const TXmlElement& element) const;
    void ReadObject(const TInstance& target, const QMetaProperty& member, const TXmlElement& element) const;
    void ReadObjects(const TInstance& target, const QMetaProperty& member, const TXmlElement& element) const;
    [[nodiscard]] std::unique_ptr<QObject> ReadItem(const QMetaObject& itemClass,
                                                    const TXmlElement& element) const;
    [[nodiscard]] std::unique_ptr<QObject>
    KeepUnknown(const QMetaObject& placeholder, const string& className, const TXmlElement& element) const;
    [[nodiscard]] const QMetaObject* ItemType(const QMetaObject& itemClass, const TXmlElement& element) const;
    [[nodiscard]] std::unique_ptr<QObject> Make(const QMetaObject& type, const TXmlElement& element) const;
    void CheckItemName(const TXmlElement& item, const string& name) const;
    void NoteSkipped(const TXmlElement& element, const string& what) const;
    [[noreturn]] void Raise(const TXmlElement& element, const string& what) const;

    const TXmlDocument& FDocument;
    const TNoteSkipped& FNoteSkipped;
};

/// Index of the member whose element is `name`, -1 if there is none.
int FindElement(const QStringList& names, const string& name) {
    const int exact = int(names.indexOf(name));
    if (exact >= 0)
        return exact;
    for (int i = 0; i < names.size(); ++i)
        if (SameText(names[i], name))
            return i;
    return -1;
}

void TObjectReader::Raise(const TXmlElement& element, const string& what) const {
    throw EXmlError(
        QStringLiteral("%1, line %2: %3").arg(FDocument.Source, QString::number(element.Line), what));
}

void TObjectReader::NoteSkipped(const TXmlElement& element, const string& what) const {
    if (FNoteSkipped)
        FNoteSkipped(element.Line, what);
}

void TObjectReader::ReadRoot(QObject& object, const string& rootName) const {
    const TXmlElement& root = FDocument.Root;
    if (!SameText(root.Name, rootName))
        Raise(root,
              QStringLiteral("the root element is \"%1\", expected is \"%2\"").arg(root.Name, rootName));
    ReadMembers(TInstance(object), root);
}

void TObjectReader::ReadMembers(TInstance target, const TXmlElement& element) const {
    if (!element.Text.trimmed().isEmpty())
        Raise(element, QStringLiteral("text between the elements of \"%1\"").arg(element.Name));
    QList<QMetaProperty> members = Reflection::Members(target.Type());
    members.removeIf([](const QMetaProperty& member) { return KindOf(member) == MemberKind::None; });
    QStringList names;
    for (const QMetaProperty& member : members)
        names.append(XmlMarks::ElementName(target.Type(), member));
    QSet<int> seen;
    for (const TXmlElement& child : element.Children) {
        const int index = FindElement(names, child.Name);
        if (index < 0) {
            NoteSkipped(child,
                        QStringLiteral("unknown element \"%1\" in \"%2\"").arg(child.Name, element.Name));
            continue;
        }
        if (seen.contains(index))
            Raise(child, QStringLiteral("\"%1\" appears twice in \"%2\"").arg(child.Name, element.Name));
        seen.insert(index);
        ReadMember(target, members[index], child);
    }
}

void TObjectReader::ReadMember(TInstance& target, const QMetaProperty& member,
                               const TXmlElement& element) const {
    const auto set = [&](const QVariant& value) {
        try {
            target.Set(member, value);
        } catch (const std::exception& e) {
            Raise(element, QStringLiteral("%1: %2").arg(element.Name, MessageOf(e)));
        }
    };
    switch (KindOf(member)) {
    case MemberKind::None:
        break;
    case MemberKind::Simple:
        set(ReadValue(member.metaType(), element));
        break;
    case MemberKind::Record:
        set(ReadRecord(target.Get(member), element));
        break;
    case MemberKind::ValueList:
        set(ReadValues(target, member, element));
        break;
    case MemberKind::Object:
        ReadObject(target, member, element);
        break;
    case MemberKind::ObjectList:
        ReadObjects(target, member, element);
        break;
    case MemberKind::Unknown:
        Raise(element, QStringLiteral("values of type %1 have no form in XML")
                           .arg(QString::fromLatin1(member.typeName())));
    }
}

QVariant TObjectReader::ReadRecord(QVariant record, const TXmlElement& element) const {
    ReadMembers(TInstance(record), element);
    return record;
}

QVariant TObjectReader::ReadValue(QMetaType type, const TXmlElement& element) const {
    if (!element.Children.empty())
        Raise(element, QStringLiteral("\"%1\" holds a value and no elements").arg(element.Name));
    try {
        return Lexical::Parse(element.Text, type);
    } catch (const EConvertError& e) {
        Raise(element, QStringLiteral("%1: %2").arg(element.Name, e.Message()));
    }
}

void TObjectReader::CheckItemName(const TXmlElement& item, const string& name) const {
    // Skipping it would silently leave out a step of what the user configured.
    if (!SameText(item.Name, name))
        Raise(item, QStringLiteral("\"%1\" in a list of \"%2\"").arg(item.Name, name));
}

QVariant TObjectReader::ReadValues(const TInstance& target, const QMetaProperty& member,
                                   const TXmlElement& element) const {
    QVariant list(member.metaType());
    auto values = list.view<QSequentialIterable>();
    const QMetaType type = values.valueMetaType();
    const string name = XmlMarks::ItemName(target.Type(), member, DefaultItemName(type));
    if (!element.Text.trimmed().isEmpty())
        Raise(element, QStringLiteral("text in the list \"%1\"").arg(element.Name));
    for (const TXmlElement& item : element.Children) {
        CheckItemName(item, name);
        values.addValue(Lexical::IsSimple(type) ? ReadValue(type, item) : ReadRecord(QVariant(type), item));
    }
    return list;
}

void TObjectReader::ReadObject(const TInstance& target, const QMetaProperty& member,
                               const TXmlElement& element) const {
    QObject* object = target.Held(member);
    if (object == nullptr)
        Raise(element, QStringLiteral("there is no object to fill in \"%1\"").arg(element.Name));
    ReadMembers(TInstance(*object), element);
}

void TObjectReader::ReadObjects(const TInstance& target, const QMetaProperty& member,
                                const TXmlElement& element) const {
    auto* list = qobject_cast<TObjectListBase*>(target.Held(member));
    if (list == nullptr)
        Raise(element, QStringLiteral("there is no list to fill in \"%1\"").arg(element.Name));
    if (!element.Text.trimmed().isEmpty())
        Raise(element, QStringLiteral("text in the list \"%1\"").arg(element.Name));
    const QMetaObject& itemClass = list->ItemClass();
    const string name = XmlMarks::ItemName(target.Type(), member, XmlMarks::RootName(itemClass));
    list->Clear();
    for (const TXmlElement& item : element.Children) {
        CheckItemName(item, name);
        list->Append(ReadItem(itemClass, item));
    }
}

/// Null for a class that isn't known, or is no item of this list.
const QMetaObject* TObjectReader::ItemType(const QMetaObject& itemClass, const TXmlElement& element) const {
    if (!XmlMarks::ItemsTellClass(itemClass))
        return &itemClass;
    const string className = element.Attribute(u"Class");
    if (className.isNull())
        Raise(element, QStringLiteral("\"%1\" lacks the attribute Class").arg(element.Name));
    const QMetaObject* type = Reflection::FindClass(className);
    return type != nullptr && type->inherits(&itemClass) ? type : nullptr;
}

std::unique_ptr<QObject> TObjectReader::ReadItem(const QMetaObject& itemClass,
                                                 const TXmlElement& element) const {
    const QMetaObject* type = ItemType(itemClass, element);
    const QMetaObject* placeholder = XmlMarks::Placeholder(itemClass);
    if (type == nullptr || type == placeholder) {
        const string className = element.Attribute(u"Class");
        if (placeholder == nullptr)
            Raise(element, QStringLiteral("unknown class \"%1\"").arg(className));
        NoteSkipped(element, QStringLiteral("unknown class \"%1\"").arg(className));
        return KeepUnknown(*placeholder, className, element);
    }
    std::unique_ptr<QObject> item = Make(*type, element);
    ReadMembers(TInstance(*item), element);
    return item;
}

std::unique_ptr<QObject> TObjectReader::Make(const QMetaObject& type, const TXmlElement& element) const {
    std::unique_ptr<QObject> made(Reflection::Construct(type));
    if (!made)
        Raise(element, QStringLiteral("objects of class %1 cannot be made").arg(Reflection::ClassName(type)));
    return made;
}

std::unique_ptr<QObject> TObjectReader::KeepUnknown(const QMetaObject& placeholder, const string& className,
                                                    const TXmlElement& element) const {
    std::unique_ptr<QObject> kept = Make(placeholder, element);
    TInstance target(*kept);
    target.Set(Reflection::FindMember(placeholder, u"ClassName"), className);
    target.Set(Reflection::FindMember(placeholder, u"Xml"), FDocument.Outer(element));
    return kept;
}

} // namespace

void ReadDocument(QObject& object, const TXmlDocument& document, const string& rootName,
                  const TNoteSkipped& noteSkipped) {
    TObjectReader(document, noteSkipped).ReadRoot(object, rootName);
}
