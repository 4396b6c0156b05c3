#pragma once
// The run-time tables: which members and methods a class has, found by name, and calls through tagged
// values. Qt's meta-objects are the tables; what is looked up in them by name is looked up here alone.
//
// A class lists its members once, with the two macros below, and binding, files, scripts, completion and
// settings forms all read that list.
#include "base/Text.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QVariant>

/// Property N over the field F.
#define PUBLISHED(T, N, F) Q_PROPERTY(T N MEMBER F) T F
/// A public data field N. Lookups find it only where no property has the name.
#define FIELD(T, N) Q_PROPERTY(T N MEMBER N DESIGNABLE false) T N

/// How a parameter is declared whose declaration reads "const <name>: <type>": the tables keep the type as it
/// is spelt, but no reference and no const of C++.
template <class T> using TConst = const T&;

namespace Reflection {

/// The name a class was declared with, without a namespace.
[[nodiscard]] string ClassName(const QMetaObject& type);

/// All members in declaration order, those of base classes first. QObject's own don't count.
[[nodiscard]] QList<QMetaProperty> Members(const QMetaObject& type);

/// The member of that name, without regard to the case of A to Z: properties come before fields, own ones
/// before inherited ones. Not valid if there is none.
[[nodiscard]] QMetaProperty FindMember(const QMetaObject& type, QStringView name);

/// The methods of that name in table order, of the class and its bases. QObject's own, signals and the
/// shortened forms that default arguments make don't count.
[[nodiscard]] QList<QMetaMethod> FindMethods(const QMetaObject& type, QStringView name);
[[nodiscard]] QList<QMetaMethod> Methods(const QMetaObject& type);

/// Whether parameter `index` is declared as a TConst.
[[nodiscard]] bool IsConstParameter(const QMetaMethod& method, int index);

/// Calls `method` on `object`. Each argument is converted to its parameter's type (base/Convert.h), which
/// raises EConvertError naming the parameter; exceptions of the method pass. The result is not valid for a
/// method without one.
QVariant Call(QObject& object, const QMetaMethod& method, const QVariantList& arguments);

/// The same for a static method, as of a Q_GADGET that is never made.
QVariant CallStatic(const QMetaObject& type, const QMetaMethod& method, const QVariantList& arguments);

/// Makes an object through the Q_INVOKABLE constructor that takes that many arguments; null if the class
/// has none. The caller owns it.
[[nodiscard]] QObject* Construct(const QMetaObject& type, const QVariantList& arguments = {});

/// A Q_CLASSINFO of the class or the nearest base that has it; null text if none does.
[[nodiscard]] string ClassInfo(const QMetaObject& type, const char* key);
/// The same of the class itself, without its bases.
[[nodiscard]] string OwnClassInfo(const QMetaObject& type, const char* key);

/// The classes that can be found by name. Filled by explicit lists when the program starts: what registers
/// itself from a static object is lost when its library is linked.
void RegisterClass(const QMetaObject& type);
[[nodiscard]] const QList<const QMetaObject*>& KnownClasses();
/// Null if no class of that name is known.
[[nodiscard]] const QMetaObject* FindClass(QStringView name);

} // namespace Reflection
