#include "actions/DocumentScriptEngine.h"

#include "actions/ActionDocument.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "scripting/Occasion.h"

#include <atomic>

namespace {

constexpr Cardinal HeapLimit = 0x4000000; // 64 MiB
constexpr TJSExportOptions DocumentOptions = 0b1001;

std::atomic<bool> EngineExists = false;

/// Goes with its thread.
struct TScriptEngine {
    TScriptEngine() : Document(ActionDocument()), Engine(/*Document=*/nullptr, HeapLimit) {
        const TJSClass bound(Document, Engine, QStringLiteral("Document"), DocumentOptions);
        Engine.OnMessage = [](const TJSMessage& message) {
            const string occasion = TScriptOccasion::Text();
            JournalLine(message.ScriptName +
                        QStringLiteral(":%1:%2: ").arg(message.Line).arg(message.Column) + message.Text +
                        (occasion.isEmpty() ? QString() : QStringLiteral(" (") + occasion + u')'));
        };
    }
    ~TScriptEngine() { EngineExists.store(false); }
    TScriptEngine(const TScriptEngine&) = delete;
    TScriptEngine& operator=(const TScriptEngine&) = delete;

    TJSPDFDocument& Document; // made first, so that it goes last
    TJSDocumentScripting Engine;
};

thread_local std::unique_ptr<TScriptEngine> ScriptEngine;

} // namespace

TJSDocumentScripting& GetDocumentScripting() {
    if (ScriptEngine == nullptr) {
        if (EngineExists.exchange(true))
            throw Exception(QStringLiteral("The script engine belongs to another thread."));
        try {
            ScriptEngine = std::make_unique<TScriptEngine>();
        } catch (...) {
            EngineExists.store(false);
            throw;
        }
    }
    return ScriptEngine->Engine;
}
