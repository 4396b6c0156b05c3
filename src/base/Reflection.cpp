#include "base/Reflection.h"

#include "base/Convert.h"

#include <array>

namespace Reflection {
namespace {

/// Most derived first, without QObject.
QList<const QMetaObject*> Chain(const QMetaObject& type) {
    QList<const QMetaObject*> chain;
    for (const QMetaObject* t = &type; t != nullptr && t != &QObject::staticMetaObject; t = t->superClass())
        chain.append(t);
    return chain;
}

bool IsField(const QMetaProperty& member) {
    return !member.isDesignable();
}

/// Converts and calls; `invoke` gets the slots of result and arguments as moc's code expects them.
template <class TInvoke>
QVariant WithArguments(const QMetaMethod& method, const QVariantList& arguments, QVariant result,
                       TInvoke invoke) {
    QVariantList values;
    values.reserve(arguments.size());
    std::vector<void*> args_{result.metaType().isValid() ? result.data() : nullptr};
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < method.parameterCount(); ++i) {
        const string what = QStringLiteral("parameter \"%1\" of %2")
                                .arg(QString::fromLatin1(names.value(i)), QString::fromLatin1(method.name()));
        values.append(ConvertTo(arguments.value(i), method.parameterMetaType(i), what));
    }
    for (QVariant& value : values)
        args_.push_back(value.data());
    invoke(args_.data());
    return result;
}

QVariant RoomForResult(const QMetaMethod& method) {
    return method.returnType() == QMetaType::Void ? QVariant() : QVariant(method.returnMetaType());
}

QList<const QMetaObject*>& Registry() {
    static QList<const QMetaObject*> classes;
    return classes;
}

} // namespace

string ClassName(const QMetaObject& type) {
    const string full = QString::fromLatin1(type.className());
    return full.mid(full.lastIndexOf(u':') + 1);
}

QList<QMetaProperty> Members(const QMetaObject& type) {
    const int first =
        type.inherits(&QObject::staticMetaObject) ? QObject::staticMetaObject.propertyCount() : 0;
    QList<QMetaProperty> members;
    for (int i = first; i < type.propertyCount(); ++i)
        members.append(type.property(i));
    return members;
}

QMetaProperty FindMember(const QMetaObject& type, QStringView name) {
    for (const bool fields : {false, true})
        for (const QMetaObject* t : Chain(type))
            for (int i = t->propertyOffset(); i < t->propertyCount(); ++i)
                if (const QMetaProperty member = t->property(i);
                    IsField(member) == fields && SameText(QString::fromLatin1(member.name()), name))
                    return member;
    return {};
}

QList<QMetaMethod> Methods(const QMetaObject& type) {
    const int first = type.inherits(&QObject::staticMetaObject) ? QObject::staticMetaObject.methodCount() : 0;
    QList<QMetaMethod> methods;
    for (int i = first; i < type.methodCount(); ++i)
        if (const QMetaMethod method = type.method(i);
            method.methodType() != QMetaMethod::Signal && (method.attributes() & QMetaMethod::Cloned) == 0)
            methods.append(method);
    return methods;
}

QList<QMetaMethod> FindMethods(const QMetaObject& type, QStringView name) {
    QList<QMetaMethod> found;
    for (const QMetaMethod& method : Methods(type))
        if (SameText(QString::fromLatin1(method.name()), name))
            found.append(method);
    return found;
}

bool IsConstParameter(const QMetaMethod& method, int index) {
    return method.parameterTypeName(index).startsWith("TConst<");
}

QVariant Call(QObject& object, const QMetaMethod& method, const QVariantList& arguments) {
    return WithArguments(method, arguments, RoomForResult(method), [&](void** args) {
        QMetaObject::metacall(&object, QMetaObject::InvokeMetaMethod, method.methodIndex(), args);
    });
}

QVariant CallStatic(const QMetaObject& type, const QMetaMethod& method, const QVariantList& arguments) {
    return WithArguments(method, arguments, RoomForResult(method), [&](void** args) {
        type.static_metacall(QMetaObject::InvokeMetaMethod, method.methodIndex() - type.methodOffset(), args);
    });
}

QObject* Construct(const QMetaObject& type, const QVariantList& arguments) {
    for (int i = 0; i < type.constructorCount(); ++i) {
        const QMetaMethod constructor = type.constructor(i);
        if (constructor.parameterCount() != arguments.size())
            continue;
        QObject* made = nullptr;
        WithArguments(constructor, arguments, {}, [&](void** args) {
            args[0] = &made;
            type.static_metacall(QMetaObject::CreateInstance, i, args);
        });
        return made;
    }
    return nullptr;
}

string ClassInfo(const QMetaObject& type, const char* key) {
    const int index = type.indexOfClassInfo(key);
    return index < 0 ? string() : QString::fromUtf8(type.classInfo(index).value());
}

string OwnClassInfo(const QMetaObject& type, const char* key) {
    return type.indexOfClassInfo(key) < type.classInfoOffset() ? string() : ClassInfo(type, key);
}

void RegisterClass(const QMetaObject& type) {
    if (!Registry().contains(&type))
        Registry().append(&type);
}

const QList<const QMetaObject*>& KnownClasses() {
    return Registry();
}

const QMetaObject* FindClass(QStringView name) {
    for (const QMetaObject* type : Registry())
        if (SameText(ClassName(*type), name))
            return type;
    return nullptr;
}

} // namespace Reflection
