#include "scripting/ScriptEditorHost.h"

#include "base/Journal.h"

#include <atomic>

namespace {

class THeadlessScriptEditorHost : public TScriptEditorHost {
public:
    bool ScriptEdit(string& /*jsSource*/, TJSEngine* /*Engine*/, TJSCompletion* /*AutoCompletion*/) override {
        JournalLine(QStringLiteral("A script was to be edited, and there is no desktop to edit it on."));
        return false;
    }
};

std::atomic<TScriptEditorHost*> RegisteredHost = nullptr;

} // namespace

TScriptEditorHost& ScriptEditorHost() {
    static THeadlessScriptEditorHost headless;
    TScriptEditorHost* host = RegisteredHost.load();
    return host ? *host : headless;
}

void SetScriptEditorHost(TScriptEditorHost* host) {
    RegisteredHost.store(host);
}
