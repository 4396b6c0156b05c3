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

void TScriptEditorHost::EditFile(const TEditedScript& script, TJSEngine* Engine,
                                 TJSCompletion* AutoCompletion) {
    string text = script.Text;
    while (ScriptEdit(text, Engine, AutoCompletion)) {
        const bool added = text.endsWith(u'\n') && !script.Text.isEmpty() && !script.Text.endsWith(u'\n') &&
                           !script.Text.endsWith(u'\r');
        if (script.Save(added ? text.chopped(1) : text)) // a line end that this editor adds
            return;
    }
}

TScriptEditorHost& ScriptEditorHost() {
    return Slot.Get();
}

void SetScriptEditorHost(TScriptEditorHost* host) {
    Slot.Set(host);
}
