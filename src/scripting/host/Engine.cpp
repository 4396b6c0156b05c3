#include "scripting/host/Engine.h"

#include "base/Exceptions.h"
#include "base/Settings.h"

#include <QFile>
#include <QStringDecoder>

std::unique_ptr<TJSCompiledScript> TJSObject::Compile(const string& Text, const NarrowString& ScriptName) {
    return FEngine.Core().Compile(Text, Widen(ScriptName));
}

TJSEngine::TJSEngine(Cardinal MaxMemory)
    : FCore(MakeScriptCore({*this, MaxMemory, size_t(GetScriptMemory()) * (1 << 20),
                            [this](const TJSMessage& message) { Report(message); },
                            [] { return StopSignal().Raised(); }})),
      FStopListener([core = FCore.get()] { core->Interrupt(); }) {}

TJSEngine::~TJSEngine() = default;

TScriptCore& TJSEngine::Core() {
    if (std::this_thread::get_id() != FThread)
        throw Exception(QStringLiteral("The script engine belongs to another thread."));
    return *FCore;
}

void TJSEngine::registerClasses(const QList<const QMetaObject*>& classes, TJSExportOptions /*options*/) {
    for (const QMetaObject* type : classes)
        Core().RegisterClass(*type);
}

void TJSEngine::registerGlobalFunctions(const QMetaObject& type) {
    Core().RegisterFunctions(type);
}

void TJSEngine::Declare(Integer Value, const string& Name) {
    Core().Declare(Value, Name);
}

bool TJSEngine::Evaluate(const string& Script, const string& ScriptName) {
    return Core().Evaluate(Script, ScriptName);
}

bool TJSEngine::EvaluateFile(const string& FileName, TJSObject* /*Scope*/) {
    QFile file(FileName);
    if (!file.open(QIODevice::ReadOnly)) {
        Report({.ScriptName = FileName, .Text = file.errorString()});
        return false;
    }
    return Evaluate(TJSScript::LoadScript(file), FileName);
}

void TJSEngine::Report(const TJSMessage& message) {
    FLastMessage = message;
    if (OnMessage)
        OnMessage(message);
}

TJSClass::TJSClass(QObject& Instance, TJSEngine& Engine, const string& Name, TJSExportOptions /*options*/) {
    Engine.Core().BindObject(Instance, Name);
}

string TJSScript::LoadScript(QIODevice& Stream) {
    const QByteArray bytes = Stream.readAll();
    const auto marked = QStringConverter::encodingForData(bytes);
    QStringDecoder decode(marked.value_or(QStringConverter::Utf8)); // drops the mark
    return decode(bytes);
}
