#include "scripting/mozjs/Classes.h"

#include "base/Convert.h"
#include "scripting/host/NativeCall.h"
#include "scripting/mozjs/Core.h"

#include <js/CallAndConstruct.h>
#include <js/MemoryFunctions.h>
#include <js/Object.h>
#include <js/PropertyAndElement.h>

#include <QPointer>

#include <vector>

/// What one function of a script leads to: the methods of one name, a property, or a constructor.
struct TScriptMember {
    TClassTable& Classes;
    const QMetaObject& Type;
    QByteArray Name;
    QList<QMetaMethod> Methods = {};
    QMetaProperty Property = {};
};

/// The native side of a wrapper.
struct TWrapped {
    TClassTable& Classes;
    QObject* Key; ///< the object's address, also when it is gone
    QPointer<QObject> Object;
    string ClassName;
    size_t Bytes;
    TOwnership Ownership;

    TWrapped(TClassTable& classes, QObject& object, TOwnership ownership)
        : Classes(classes), Key(&object), Object(&object), ClassName(ScriptName(*object.metaObject())),
          Bytes(ownership == TOwnership::OfScript ? Weight(*object.metaObject()) : 0), Ownership(ownership) {}

    /// Called by the collector, on the engine's thread.
    void Free(JSObject* wrapper) {
        if (const auto found = Classes.FWrappers.constFind(Key);
            found != Classes.FWrappers.cend() && *found == wrapper)
            Classes.FWrappers.erase(found);
        if (Bytes > 0)
            JS::RemoveAssociatedMemory(wrapper, Bytes, JS::MemoryUse::Embedding1);
        Classes.FOwnedBytes -= Bytes;
        if (Ownership == TOwnership::OfScript && Object != nullptr && Object->parent() == nullptr)
            delete Object.data();
        delete this;
    }

    static string ScriptName(const QMetaObject& type) {
        const string name = Reflection::OwnClassInfo(type, "ScriptName");
        return name.isEmpty() ? Reflection::ClassName(type) : name;
    }

    /// What the collector counts for an object that scripts own: it sees nothing of the native side.
    static size_t Weight(const QMetaObject& type) {
        constexpr size_t SmallObject = 1024;
        const string bytes = Reflection::ClassInfo(type, "ScriptBytes");
        return bytes.isEmpty() ? SmallObject : size_t(bytes.toUInt());
    }
};

namespace {

constexpr size_t WrappedSlot = 0;
constexpr size_t MemberSlot = 0;

TWrapped* WrappedOf(JSObject* wrapper) {
    return JS::GetMaybePtrFromReservedSlot<TWrapped>(wrapper, WrappedSlot);
}

void Finalize(JS::GCContext* /*gc*/, JSObject* wrapper) {
    if (TWrapped* wrapped = WrappedOf(wrapper))
        wrapped->Free(wrapper);
}

/// A misspelt member would otherwise be set on the wrapper, and the object would never hear of it.
bool RefuseNewMember(JSContext* cx, JS::HandleObject wrapper, JS::HandleId id, JS::HandleValue /*value*/) {
    return Guarded(cx, [&] {
        JS::RootedValue key(cx);
        Must(JS_IdToValue(cx, id, &key));
        if (!key.isString())
            return;
        JS::RootedString text(cx, key.toString());
        const TWrapped* wrapped = WrappedOf(wrapper);
        throw Exception(QStringLiteral("%1 has no member \"%2\".")
                            .arg(wrapped ? wrapped->ClassName : QString(), TextOf(cx, text)));
    });
}

constexpr JSClassOps WrapperOps = {.addProperty = RefuseNewMember,
                                   .delProperty = nullptr,
                                   .enumerate = nullptr,
                                   .newEnumerate = nullptr,
                                   .resolve = nullptr,
                                   .mayResolve = nullptr,
                                   .finalize = Finalize,
                                   .call = nullptr,
                                   .construct = nullptr,
                                   .trace = nullptr};
constexpr JSClass WrapperClass = {.name = "NativeObject",
                                  .flags = JSCLASS_HAS_RESERVED_SLOTS(1) | JSCLASS_FOREGROUND_FINALIZE,
                                  .cOps = &WrapperOps,
                                  .spec = nullptr,
                                  .ext = nullptr,
                                  .oOps = nullptr};

TScriptMember& MemberOf(const JS::CallArgs& args) {
    const JS::Value& slot = js::GetFunctionNativeReserved(&args.callee(), MemberSlot);
    return *static_cast<TScriptMember*>(slot.toPrivate());
}

/// The native object that a method or property is used on.
QObject& ThisObject(const JS::CallArgs& args, const TScriptMember& member) {
    if (args.thisv().isObject() && TClassTable::IsWrapper(args.thisv().toObject())) {
        QObject& object = TClassTable::Unwrap(args.thisv().toObject());
        if (object.metaObject()->inherits(&member.Type))
            return object;
    }
    throw Exception(QStringLiteral("%1 is a member of %2 and of nothing else.")
                        .arg(QString::fromLatin1(member.Name), TWrapped::ScriptName(member.Type)));
}

/// The method with as many parameters as there are arguments, or with fewer: scripts pass more where a
/// function is handed to forEach and the like.
const QMetaMethod& MethodFor(const TScriptMember& member, unsigned count) {
    const QMetaMethod* chosen = nullptr;
    for (const QMetaMethod& method : member.Methods)
        if (method.parameterCount() <= int(count) &&
            (chosen == nullptr || method.parameterCount() > chosen->parameterCount()))
            chosen = &method;
    if (chosen == nullptr)
        throw Exception(QStringLiteral("%1 needs %2 arguments (%3) and got %4.")
                            .arg(QString::fromLatin1(member.Name))
                            .arg(member.Methods.constFirst().parameterCount())
                            .arg(QString::fromLatin1(member.Methods.constFirst().parameterNames().join(", ")))
                            .arg(count));
    return *chosen;
}

bool IsRaw(const QMetaMethod& method) {
    return method.parameterCount() == 1 &&
           method.parameterMetaType(0) == QMetaType::fromType<TJSNativeCallParams>();
}

QVariantList Arguments(TClassTable& classes, const QMetaMethod& method, const JS::CallArgs& args) {
    QVariantList values;
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < method.parameterCount(); ++i)
        values.append(
            FromScript(classes, args.get(unsigned(i)), method.parameterMetaType(i),
                       QStringLiteral("parameter \"%1\" of %2")
                           .arg(QString::fromLatin1(names.value(i)), QString::fromLatin1(method.name()))));
    return values;
}

TOwnership OwnershipOf(const QVariant& result) {
    const QObject* object = result.value<QObject*>();
    const bool ofScript = object != nullptr && object->parent() == nullptr &&
                          !Reflection::ClassInfo(*object->metaObject(), "ScriptOwnsResults").isEmpty();
    return ofScript ? TOwnership::OfScript : TOwnership::Borrowed;
}

/// Converting arguments may run parts of the script, so the object is looked up behind it.
bool CallMethod(JSContext* cx, unsigned argc, JS::Value* vp) {
    const JS::CallArgs args = JS::CallArgsFromVp(argc, vp);
    return Guarded(cx, [&] {
        const TMozCore::TCall call(cx);
        const TScriptMember& member = MemberOf(args);
        const QMetaMethod& method = MethodFor(member, args.length());
        const QVariantList arguments = Arguments(member.Classes, method, args);
        const QVariant result = Reflection::Call(ThisObject(args, member), method, arguments);
        ToScript(member.Classes, result, OwnershipOf(result), args.rval());
    });
}

QVariantList RawArguments(JSContext* cx, const JS::CallArgs& args, std::vector<TJSValue>& values) {
    TScriptCore* core = &TMozCore::Of(cx);
    for (unsigned i = 0; i < args.length(); ++i)
        values.push_back({core, args.array() + i});
    return {QVariant::fromValue(TJSNativeCallParams{core, values.size(), 0, values.data()})};
}

bool CallFunction(JSContext* cx, unsigned argc, JS::Value* vp) {
    const JS::CallArgs args = JS::CallArgsFromVp(argc, vp);
    return Guarded(cx, [&] {
        const TMozCore::TCall call(cx);
        const TScriptMember& member = MemberOf(args);
        const QMetaMethod& first = member.Methods.constFirst();
        std::vector<TJSValue> values;
        const QMetaMethod& method = IsRaw(first) ? first : MethodFor(member, args.length());
        const QVariant result = Reflection::CallStatic(
            member.Type, method,
            IsRaw(first) ? RawArguments(cx, args, values) : Arguments(member.Classes, method, args));
        ToScript(member.Classes, result, OwnershipOf(result), args.rval());
    });
}

bool ReadProperty(JSContext* cx, unsigned argc, JS::Value* vp) {
    const JS::CallArgs args = JS::CallArgsFromVp(argc, vp);
    return Guarded(cx, [&] {
        const TScriptMember& member = MemberOf(args);
        const QVariant value = member.Property.read(&ThisObject(args, member));
        ToScript(member.Classes, value, TOwnership::Borrowed, args.rval());
    });
}

bool WriteProperty(JSContext* cx, unsigned argc, JS::Value* vp) {
    const JS::CallArgs args = JS::CallArgsFromVp(argc, vp);
    return Guarded(cx, [&] {
        const TMozCore::TCall call(cx);
        const TScriptMember& member = MemberOf(args);
        const string what = QStringLiteral("member \"%1\" of %2")
                                .arg(QString::fromLatin1(member.Name), TWrapped::ScriptName(member.Type));
        if (!member.Property.isWritable())
            throw Exception(what + QStringLiteral(" can only be read."));
        const QMetaType type = member.Property.metaType();
        const QVariant value = ConvertTo(FromScript(member.Classes, args.get(0), type, what), type, what);
        member.Property.write(&ThisObject(args, member), value);
        args.rval().setUndefined();
    });
}

bool Construct(JSContext* cx, unsigned argc, JS::Value* vp) {
    const JS::CallArgs args = JS::CallArgsFromVp(argc, vp);
    return Guarded(cx, [&] {
        const TScriptMember& member = MemberOf(args);
        const string name = TWrapped::ScriptName(member.Type);
        if (!args.isConstructing())
            throw Exception(QStringLiteral("%1 is a class: write \"new %1()\".").arg(name));
        QObject* object = Reflection::Construct(member.Type);
        if (object == nullptr)
            throw Exception(QStringLiteral("A %1 cannot be made by itself.").arg(name));
        args.rval().setObject(*member.Classes.Wrap(*object, TOwnership::OfScript));
    });
}

} // namespace

TClassTable::TClassTable(JSContext* cx) : FContext(cx) {}
TClassTable::~TClassTable() = default;

void TClassTable::Forget() {
    FPrototypes.clear();
    FWrappers.clear();
}

/// Own methods, by name, and own properties that scripts may see. The last one stands for the constructor.
TClassTable::TMembers& TClassTable::MembersOf(const QMetaObject& type) {
    const auto [found, isNew] = FMembers.try_emplace(&type);
    TMembers& members = found->second;
    if (!isNew)
        return members;
    for (const QMetaMethod& method : Reflection::Methods(type)) {
        if (method.enclosingMetaObject() != &type)
            continue;
        const auto same = std::find_if(members.begin(), members.end(), [&](const TScriptMember& member) {
            return member.Name == method.name();
        });
        if (same != members.end())
            same->Methods.append(method);
        else
            members.push_back({.Classes = *this, .Type = type, .Name = method.name(), .Methods = {method}});
    }
    for (const QMetaProperty& property : Reflection::Members(type))
        if (property.enclosingMetaObject() == &type && property.isScriptable())
            members.push_back(
                {.Classes = *this, .Type = type, .Name = property.name(), .Property = property});
    members.push_back({.Classes = *this, .Type = type, .Name = Narrow(TWrapped::ScriptName(type))});
    return members;
}

JSObject* TClassTable::Function(TScriptMember& member, JSNative native, unsigned flags) {
    const int parameters = member.Methods.isEmpty() ? 0 : member.Methods.constFirst().parameterCount();
    JSFunction* function = Must(
        js::NewFunctionWithReserved(FContext, native, unsigned(parameters), flags, member.Name.constData()));
    JSObject* object = JS_GetFunctionObject(function);
    js::SetFunctionNativeReserved(object, MemberSlot, JS::PrivateValue(&member));
    return object;
}

void TClassTable::DefineMembers(JS::HandleObject prototype, const QMetaObject& type) {
    for (TScriptMember& member : MembersOf(type)) {
        if (!member.Methods.isEmpty()) {
            JS::RootedObject function(FContext, Function(member, CallMethod));
            Must(JS_DefineProperty(FContext, prototype, member.Name.constData(), function, JSPROP_ENUMERATE));
        } else if (member.Property.isValid()) {
            JS::RootedObject getter(FContext, Function(member, ReadProperty));
            JS::RootedObject setter(FContext, Function(member, WriteProperty));
            Must(JS_DefineProperty(FContext, prototype, member.Name.constData(), getter, setter,
                                   JSPROP_ENUMERATE));
        }
    }
}

JSObject* TClassTable::Prototype(const QMetaObject& type) {
    if (const auto found = FPrototypes.find(&type); found != FPrototypes.end())
        return found->second;
    JS::RootedObject base(FContext);
    if (const QMetaObject* super = type.superClass(); super && super != &QObject::staticMetaObject)
        base = Prototype(*super);
    else
        base = JS::GetRealmObjectPrototype(FContext);
    JS::RootedObject prototype(FContext, Must(JS_NewObjectWithGivenProto(FContext, nullptr, base)));
    DefineMembers(prototype, type);
    FPrototypes.emplace(&type, JS::PersistentRootedObject(FContext, prototype));
    return prototype;
}

void TClassTable::DefineClass(const QMetaObject& type) {
    JS::RootedObject prototype(FContext, Prototype(type));
    TScriptMember& member = MembersOf(type).back();
    JS::RootedObject constructor(FContext, Function(member, ::Construct, JSFUN_CONSTRUCTOR));
    JS::RootedObject global(FContext, JS::CurrentGlobalOrNull(FContext));
    Must(JS_LinkConstructorAndPrototype(FContext, constructor, prototype) &&
         JS_DefineProperty(FContext, global, member.Name.constData(), constructor, 0));
}

void TClassTable::DefineFunctions(const QMetaObject& type) {
    JS::RootedObject global(FContext, JS::CurrentGlobalOrNull(FContext));
    for (TScriptMember& member : MembersOf(type))
        if (!member.Methods.isEmpty()) {
            JS::RootedObject function(FContext, Function(member, CallFunction));
            Must(JS_DefineProperty(FContext, global, member.Name.constData(), function, 0));
        }
}

void TClassTable::DefineObject(QObject& instance, const string& name) {
    JS::RootedObject global(FContext, JS::CurrentGlobalOrNull(FContext));
    JS::RootedObject wrapper(FContext, Wrap(instance, TOwnership::Borrowed));
    Must(JS_DefineProperty(FContext, global, Narrow(name).constData(), wrapper,
                           JSPROP_ENUMERATE | JSPROP_READONLY | JSPROP_PERMANENT));
}

JSObject* TClassTable::Wrap(QObject& object, TOwnership ownership) {
    if (const auto found = FWrappers.constFind(&object);
        found != FWrappers.cend() && WrappedOf(*found)->Object == &object) // another may live at the address
        return *found;
    auto wrapped = std::make_unique<TWrapped>(*this, object, ownership);
    // From here on nothing may be lost: an object of the script goes with `guard` if no wrapper comes about.
    std::unique_ptr<QObject> guard(ownership == TOwnership::OfScript ? &object : nullptr);
    JS::RootedObject prototype(FContext, Prototype(*object.metaObject()));
    JSObject* wrapper = Must(JS_NewObjectWithGivenProto(FContext, &WrapperClass, prototype));
    if (wrapped->Bytes > 0)
        JS::AddAssociatedMemory(wrapper, wrapped->Bytes, JS::MemoryUse::Embedding1);
    FOwnedBytes += wrapped->Bytes;
    JS::SetReservedSlot(wrapper, WrappedSlot, JS::PrivateValue(wrapped.release()));
    [[maybe_unused]] QObject* held = guard.release();
    FWrappers.insert(&object, wrapper);
    FUrgent = FUrgent || (ownership == TOwnership::OfScript &&
                          !Reflection::ClassInfo(*object.metaObject(), "ScriptCollect").isEmpty());
    return wrapper;
}

bool TClassTable::IsWrapper(JSObject& object) {
    return JS::GetClass(&object) == &WrapperClass;
}

QObject& TClassTable::Unwrap(JSObject& wrapper) {
    const TWrapped* wrapped = WrappedOf(&wrapper);
    if (wrapped == nullptr || wrapped->Object == nullptr)
        throw Exception(QStringLiteral("This %1 is gone: what it belonged to was closed.")
                            .arg(wrapped ? wrapped->ClassName : QStringLiteral("object")));
    return *wrapped->Object;
}
