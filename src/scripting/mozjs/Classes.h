#pragma once
// The program's classes as scripts see them: prototypes made from the run-time tables at first need, and one
// wrapper for each native object, as long as a script holds it.
//
// A wrapper that a script made, or got as a result that nobody owns, frees its object when it is collected;
// any other only borrows it, and gives an error once it is gone.
#include "base/Reflection.h"
#include "scripting/mozjs/Values.h"

#include <QHash>

#include <deque>
#include <map>

struct TScriptMember;
struct TWrapped;

class TClassTable {
public:
    explicit TClassTable(JSContext* cx);
    ~TClassTable();
    TClassTable(const TClassTable&) = delete;
    TClassTable& operator=(const TClassTable&) = delete;

    [[nodiscard]] JSContext* Context() const { return FContext; }

    // These three work on the current global object and raise EScriptPending.
    void DefineClass(const QMetaObject& type);
    void DefineFunctions(const QMetaObject& type);
    void DefineObject(QObject& instance, const string& name);
    /// Another global object comes: wrappers and prototypes of the one before are no longer handed out.
    void Forget();

    /// The object's one wrapper.
    [[nodiscard]] JSObject* Wrap(QObject& object, TOwnership ownership);
    [[nodiscard]] static bool IsWrapper(JSObject& object);
    /// Whether scripts have come to own an object since the last call that shouldn't wait to be collected:
    /// one of a class with the Q_CLASSINFO "ScriptCollect".
    [[nodiscard]] bool TakeUrgent() { return std::exchange(FUrgent, false); }
    /// What the objects weigh that scripts own.
    [[nodiscard]] size_t OwnedBytes() const { return FOwnedBytes; }
    /// Raises Exception if the object is gone.
    [[nodiscard]] static QObject& Unwrap(JSObject& wrapper);

private:
    friend struct TWrapped;
    using TMembers = std::deque<TScriptMember>;

    TMembers& MembersOf(const QMetaObject& type);
    JSObject* Prototype(const QMetaObject& type);
    void DefineMembers(JS::HandleObject prototype, const QMetaObject& type);
    JSObject* Function(TScriptMember& member, JSNative native, unsigned flags = 0);

    JSContext* const FContext;
    std::map<const QMetaObject*, TMembers> FMembers; ///< outlive every function made for them
    std::map<const QMetaObject*, JS::PersistentRootedObject> FPrototypes;
    bool FUrgent = false;
    size_t FOwnedBytes = 0;
    QHash<QObject*, JSObject*> FWrappers; ///< weak; a wrapper takes itself out
};
