#pragma once
// The window in which a script is written, shown by whoever has a desktop. Without one nothing is edited.
#include "scripting/ScriptCompletion.h"

class TJSEngine;

class TScriptEditorHost {
public:
    virtual ~TScriptEditorHost() = default;
    /// Shows the script and waits. True if the user confirmed; the new text then stands in `jsSource`, which
    /// stays untouched otherwise. `Engine`, which checks the syntax, and `AutoCompletion` are borrowed for
    /// the call, and each may be null. On the main thread.
    virtual bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) = 0;
};

/// The registered host, or one that answers as if the user had cancelled, with one line in the journal.
[[nodiscard]] TScriptEditorHost& ScriptEditorHost();
/// Not owned; null takes the registered one away.
void SetScriptEditorHost(TScriptEditorHost* host);
