#include "xml/ObjectReader.h"

#include "base/NearestName.h"
#include "xml/Instance.h"
#include "xml/Lexical.h"
#include "xml/XmlMarks.h"

#include <QSequentialIterable>
#include <QSet>

namespace {

/// What is wrong with an element; a review goes on behind it.
class EElementFault : public EXmlError {
public:
    EElementFault(const string& source, const TXmlElement& element, const string& what)
        : EXmlError(QStringLiteral("%1, line %2: %3").arg(source, QString::number(element.Line), what)),
          FLine(element.Line), FWhat(what) {}
    void Tell(const TReview& review) const { review.Fault(FLine, FWhat); }

private:
    int FLine;
    string FWhat;
};

class TObjectReader {
public:
    /// Without a review the first fault ends the reading.
    explicit TObjectReader(const TXmlDocument& document, const TReview* review = nullptr)
        : FDocument(document), FReview(review) {}

    void ReadRoot(QObject& object, const string& rootName) const;

private:
    void ReadMembers(TInstance target, const TXmlElement& element, const QStringList& attributes = {}) const;
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
    void NoteAttributes(const TXmlElement& element, const QStringList& used,
                        const QStringList& members) const;
    /// True if the work was done; a review is told of a fault in it, else it passes.
    [[nodiscard]] bool Try(const std::function<void()>& work) const;
    [[noreturn]] void Raise(const TXmlElement& element, const string& what) const;

    const TXmlDocument& FDocument;
    const TReview* FReview;
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
    throw EElementFault(FDocument.Source, element, what);
}

bool TObjectReader::Try(const std::function<void()>& work) const {
    try {
        work();
        return true;
    } catch (const EElementFault& e) {
        if (FReview == nullptr)
            throw;
        e.Tell(*FReview);
        return false;
    }
}

void TObjectReader::NoteSkipped(const TXmlElement& element, const string& what) const {
    if (FReview != nullptr)
        FReview->Fault(element.Line, what);
}

/// Nothing reads attributes but those in `used`; who writes them mostly means an element, one of `members`.
void TObjectReader::NoteAttributes(const TXmlElement& element, const QStringList& used,
                                   const QStringList& members) const {
    for (const auto& [name, value] : element.Attributes) {
        if (used.contains(name) || name.startsWith(u"xml") || name.startsWith(u"xsi:"))
            continue;
        const int member = FindElement(members, name);
        NoteSkipped(
            element,
            member < 0
                ? QStringLiteral("the attribute \"%1\" of \"%2\" is not looked at").arg(name, element.Name)
                : QStringLiteral("\"%1\" stands as an attribute of \"%2\" and is not looked "
                                 "at: it must be an element, <%3>%4</%3>")
                      .arg(name, element.Name, members[member], value));
    }
}

void TObjectReader::ReadRoot(QObject& object, const string& rootName) const {
    const TXmlElement& root = FDocument.Root;
    if (!SameText(root.Name, rootName))
        Raise(root,
              QStringLiteral("the root element is \"%1\", expected is \"%2\"").arg(root.Name, rootName));
    ReadMembers(TInstance(object), root);
    if (FReview != nullptr)
        FReview->Read(object, root);
}

void TObjectReader::ReadMembers(TInstance target, const TXmlElement& element,
                                const QStringList& attributes) const {
    if (!element.Text.trimmed().isEmpty() && !Try([&] {
            Raise(element, QStringLiteral("text between the elements of \"%1\"").arg(element.Name));
        }))
        return;
    QList<QMetaProperty> members = Reflection::Members(target.Type());
    members.removeIf([](const QMetaProperty& member) { return KindOf(member) == MemberKind::None; });
    QStringList names;
    for (const QMetaProperty& member : members)
        names.append(XmlMarks::ElementName(target.Type(), member));
    NoteAttributes(element, attributes, names);
    QSet<int> seen;
    for (const TXmlElement& child : element.Children) {
        const int index = FindElement(names, child.Name);
        if (index < 0) {
            NoteSkipped(child,
                        QStringLiteral("unknown element \"%1\" in \"%2\"").arg(child.Name, element.Name) +
                            DidYouMean(child.Name, names));
            continue;
        }
        [[maybe_unused]] const bool read = Try([&] {
            if (seen.contains(index))
                Raise(child, QStringLiteral("\"%1\" appears twice in \"%2\"").arg(child.Name, element.Name));
            seen.insert(index);
            ReadMember(target, members[index], child);
        });
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
    NoteAttributes(element, {}, {});
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
    NoteAttributes(element, {}, {});
    for (const TXmlElement& item : element.Children) {
        QVariant value(type);
        [[maybe_unused]] const bool read = Try([&] {
            CheckItemName(item, name);
            value = Lexical::IsSimple(type) ? ReadValue(type, item) : ReadRecord(value, item);
        });
        values.addValue(value);
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
    NoteAttributes(element, {}, {});
    list->Clear();
    for (const TXmlElement& item : element.Children) {
        [[maybe_unused]] const bool read = Try([&] {
            CheckItemName(item, name);
            std::unique_ptr<QObject> object = ReadItem(itemClass, item);
            if (FReview != nullptr)
                FReview->Read(*object, item);
            list->Append(std::move(object));
        });
    }
}

/// The classes that items of a list may have.
QStringList NamesBelow(const QMetaObject& itemClass) {
    QStringList names;
    for (const QMetaObject* type : Reflection::KnownClasses())
        if (type->inherits(&itemClass) && type != XmlMarks::Placeholder(itemClass))
            names.append(Reflection::ClassName(*type));
    return names;
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
        NoteSkipped(element, QStringLiteral("unknown class \"%1\"").arg(className) +
                                 DidYouMean(className, NamesBelow(itemClass)));
        return KeepUnknown(*placeholder, className, element);
    }
    std::unique_ptr<QObject> item = Make(*type, element);
    ReadMembers(TInstance(*item), element,
                XmlMarks::ItemsTellClass(itemClass) ? QStringList(QStringLiteral("Class")) : QStringList());
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

void ReadDocument(QObject& object, const TXmlDocument& document, const string& rootName) {
    TObjectReader(document).ReadRoot(object, rootName);
}

void ReviewDocument(QObject& object, const TXmlDocument& document, const string& rootName,
                    const TReview& review) {
    TObjectReader(document, &review).ReadRoot(object, rootName);
}
