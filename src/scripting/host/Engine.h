#pragma once
// TJSEngine: a JavaScript engine with classes, functions, objects and constants of the program in its global
// scope. Classes are read from the run-time tables: public members and methods of a registered class, and of
// every object that one of them returns, are there for scripts under their own names.
//
// An engine is used on the thread that made it, one at a time on a thread; calls from another thread raise.
// Nothing that a script does raises here: failures answer false and leave the engine ready for the next one.
// Memory beyond the limit, an endless recursion and a stop of the agent (platform/StopSignal.h) end a script.
#include "base/Text.h"
#include "platform/StopSignal.h"
#include "scripting/host/ScriptCore.h"

#include <QList>

#include <bitset>
#include <thread>

class QIODevice;
class TJSEngine;

/// Seven numbered flags. Everything public is exported whatever they say.
using TJSExportOptions = std::bitset<7>;

/// The global scope of an engine.
class TJSObject {
public:
    explicit TJSObject(TJSEngine& engine) : FEngine(engine) {}
    /// Compiles without running. Null on a syntax error, which is reported as the engine reports.
    [[nodiscard]] std::unique_ptr<TJSCompiledScript> Compile(const string& Text,
                                                             const NarrowString& ScriptName);

private:
    TJSEngine& FEngine;
};

class TJSEngine {
public:
    /// The limit in bytes holds for the cells of the library's heap. Everything that scripts hold, with the
    /// memory behind those cells and what native objects of theirs weigh, has the limit of the settings
    /// (base/Settings.h).
    explicit TJSEngine(Cardinal MaxMemory);
    virtual ~TJSEngine();
    TJSEngine(const TJSEngine&) = delete;
    TJSEngine& operator=(const TJSEngine&) = delete;

    /// Makes the classes constructible where they have a Q_INVOKABLE constructor without parameters, under
    /// the name in their Q_CLASSINFO "ScriptName" or else their own.
    void registerClasses(const QList<const QMetaObject*>& classes, TJSExportOptions options = {});
    /// Each Q_INVOKABLE static method of the Q_GADGET becomes a global function.
    void registerGlobalFunctions(const QMetaObject& type);
    /// A global constant.
    void Declare(Integer Value, const string& Name);

    /// Compiles and runs the text in the global scope, then what its promises have queued. False on any
    /// failure, an unhandled rejection included.
    bool Evaluate(const string& Script, const string& ScriptName);
    /// The same with a file's text. `Scope` is null or the global object.
    bool EvaluateFile(const string& FileName, TJSObject* Scope);
    [[nodiscard]] TJSObject& Global() { return FGlobal; }

    /// The last failure; empty text if there was none.
    [[nodiscard]] const TJSMessage& LastMessage() const { return FLastMessage; }
    /// Called with each failure as it happens.
    std::function<void(const TJSMessage&)> OnMessage;

    /// Raises Exception on a thread that isn't the engine's.
    [[nodiscard]] TScriptCore& Core();

private:
    void Report(const TJSMessage& message);

    const std::thread::id FThread = std::this_thread::get_id();
    TJSObject FGlobal{*this};
    TJSMessage FLastMessage;
    std::unique_ptr<TScriptCore> FCore;
    TStopListener FStopListener;
};

/// Publishes a native object as a global of an engine.
class TJSClass {
public:
    /// The instance stays its owner's. Where it goes first, scripts get an error instead of it.
    TJSClass(QObject& Instance, TJSEngine& Engine, const string& Name, TJSExportOptions options = {});
    /// The engine of a running native call.
    [[nodiscard]] static TJSEngine& JSEngine(TScriptCore& context) { return context.Engine(); }
};

class TJSScript {
public:
    /// The whole stream as text: UTF-8, or what its byte order mark says.
    [[nodiscard]] static string LoadScript(QIODevice& Stream);
};
