#pragma once
// A value with members, seen through its run-time table: an object, or a record held in a tagged value.
#include "base/ObjectList.h"
#include "base/Reflection.h"

/// What a member is to XML.
enum class MemberKind {
    None,       ///< not stored: marked so, or a value that nobody may set
    Simple,     ///< one text
    Record,     ///< held by value
    ValueList,  ///< a container of records or simple values, held by value
    Object,     ///< filled in place, never replaced
    ObjectList, ///< owning list, filled in place
    Unknown     ///< a type without a form in XML
};
[[nodiscard]] MemberKind KindOf(const QMetaProperty& member);

/// The element of a value list's items where no mark names one: the record's type name, or "Item".
[[nodiscard]] string DefaultItemName(QMetaType itemType);

/// Borrows what it shows. Cheap to copy.
class TInstance {
public:
    explicit TInstance(QObject& object) : FType(object.metaObject()), FObject(&object) {}
    /// `record` is of a type with Q_GADGET; setting a member changes it.
    explicit TInstance(QVariant& record) : FType(record.metaType().metaObject()), FRecord(record.data()) {}

    [[nodiscard]] const QMetaObject& Type() const { return *FType; }
    [[nodiscard]] QVariant Get(const QMetaProperty& member) const;
    /// `value` is of the member's exact type. Exceptions of an accessor pass.
    void Set(const QMetaProperty& member, const QVariant& value);
    /// The object that a member of kind Object or ObjectList holds; null if it holds none.
    [[nodiscard]] QObject* Held(const QMetaProperty& member) const;

private:
    const QMetaObject* FType;
    QObject* FObject = nullptr;
    void* FRecord = nullptr;
};
