#pragma once
// The marks with which a class says how its members stand in XML, and what follows from them.
//
// In the class, beside Q_OBJECT or Q_GADGET:
//     XML_ROOT("Action", true)                    the element's name; true: subclasses bear it too
//     XML_ELEMENT(Folders, "Folders", "Folder")   list property, its container element, its item element
//     XML_PLACEHOLDER("TUnknownAction")           class whose objects keep items of unknown classes
//     XML_SPARSE                                  record whose members are written only where they differ
//     from
//                                                 their defaults; without any such, it isn't written at all
// A property that XML skips is declared with STORED false.
#include "base/Reflection.h"

#define XML_ROOT(NAME, SUBCLASSES) Q_CLASSINFO("XmlRoot", NAME "," #SUBCLASSES)
#define XML_ELEMENT(PROPERTY, CONTAINER, ITEM) Q_CLASSINFO("XmlElement." #PROPERTY, CONTAINER "," ITEM)
#define XML_SPARSE Q_CLASSINFO("XmlSparse", "true")
#define XML_PLACEHOLDER(CLASS) Q_CLASSINFO("XmlPlaceholder", CLASS)

namespace XmlMarks {

/// The element that an object of the class is stored under by itself: its mark, else the class's name.
[[nodiscard]] string RootName(const QMetaObject& type);

/// Whether items of a list of `itemClass` tell their own class, in the attribute Class: the root mark of
/// the item class covers subclasses.
[[nodiscard]] bool ItemsTellClass(const QMetaObject& itemClass);

/// The class that stands in for unknown subclasses of `itemClass`; null if there is none. It is registered
/// and has the members ClassName and Xml, both not stored: the name that was found and the whole element.
[[nodiscard]] const QMetaObject* Placeholder(const QMetaObject& itemClass);

/// Whether the record's members are written only where they differ from their defaults.
[[nodiscard]] bool IsSparse(const QMetaObject& type);

/// The element of a member: its list mark's container, else its own name.
[[nodiscard]] string ElementName(const QMetaObject& type, const QMetaProperty& member);

/// The element of each item of a list member: its list mark's, else `fallback`.
[[nodiscard]] string ItemName(const QMetaObject& type, const QMetaProperty& member, const string& fallback);

} // namespace XmlMarks
