#pragma once
// The border between the program and the script library. What stands behind it is a module of its own
// (scripting/mozjs), loaded when the first script runs: an agent without scripts doesn't carry the library.
// Only types of Qt and of base/ cross it.
#include "base/Reflection.h"

#include <functional>
#include <memory>

class TJSEngine;
class TScriptCore;

/// A value of a script, good during the call that hands it over.
struct TJSValue {
    TScriptCore* Core = nullptr;
    const void* Value = nullptr; ///< for the script library alone
};

/// What went wrong in a script, and where. Lines and columns count from 1; 0 where unknown.
struct TJSMessage {
    string ScriptName = {};
    int Line = 0;
    int Column = 0;
    string Text = {};
};

/// A compiled script. Must go before its engine.
class TJSCompiledScript {
public:
    virtual ~TJSCompiledScript() = default;
};

/// One runtime, context and global object. Everything but Interrupt() is for the thread that made it.
class TScriptCore {
public:
    virtual ~TScriptCore() = default;

    /// Makes the class constructible under its script name.
    virtual void RegisterClass(const QMetaObject& type) = 0;
    /// Makes each static method of the table a global function.
    virtual void RegisterFunctions(const QMetaObject& type) = 0;
    /// Makes the object a global constant. It stays its owner's.
    virtual void BindObject(QObject& instance, const string& name) = 0;
    virtual void Declare(qint32 value, const string& name) = 0;

    /// False if it failed in any way; the reason has gone to the host's Report.
    [[nodiscard]] virtual bool Evaluate(const string& script, const string& scriptName) = 0;
    /// Null on a syntax error, which has gone to Report.
    [[nodiscard]] virtual std::unique_ptr<TJSCompiledScript> Compile(const string& text,
                                                                     const string& scriptName) = 0;
    /// Has a running script ask the host whether it is to stop. From any thread.
    virtual void Interrupt() noexcept = 0;

    [[nodiscard]] virtual TJSEngine& Engine() const = 0;
    [[nodiscard]] virtual bool IsString(const TJSValue& value) const = 0;
    [[nodiscard]] virtual string TextOf(const TJSValue& value) const = 0;
};

/// What a core needs of the program.
struct TScriptCoreHost {
    TJSEngine& Engine;
    size_t MaxMemory;    ///< bytes of the library's own cells
    size_t ScriptMemory; ///< bytes of all that scripts hold
    std::function<void(const TJSMessage&)> Report;
    std::function<bool()> Stopping;
};

/// The module's one entry.
using TMakeScriptCore = TScriptCore* (*)(const TScriptCoreHost& host);
inline constexpr char MakeScriptCoreName[] = "MorvaneMakeScriptCore";

/// Loads the module at the first call. Raises Exception where it is missing.
[[nodiscard]] std::unique_ptr<TScriptCore> MakeScriptCore(const TScriptCoreHost& host);
