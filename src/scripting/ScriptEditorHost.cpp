#include "scripting/ScriptEditorHost.h"

#include "base/Journal.h"
#include "platform/HostSlot.h"

namespace {

class THeadlessScriptEditorHost : public TScriptEditorHost {
public:
    bool ScriptEdit(string& /*jsSource*/, TJSEngine* /*Engine*/, TJSCompletion* /*AutoCompletion*/) override {
        JournalLine(QStringLiteral("A script was to be edited, and there is no desktop to edit it on."));
        return false;
    }
};

THostSlot<TScriptEditorHost, THeadlessScriptEditorHost> Slot;

} // namespace

TScriptEditorHost& ScriptEditorHost() {
    return Slot.Get();
}

void SetScriptEditorHost(TScriptEditorHost* host) {
    Slot.Set(host);
}
