#pragma once
// The window in which a script is written, shown by whoever has a desktop. Without one nothing is edited.
#include "scripting/ScriptCompletion.h"

class TJSEngine;

/// A script that lies in a file, which its owner reads and saves.
struct TEditedScript {
    string Name;           ///< for the title
    string Text;           ///< with line ends of any kind
    bool ReadOnly = false; ///< it can't be saved
    /// Saves the text, which has a line feed between lines. False: it is in no file, and the user knows why.
    std::function<bool(const string& text)> Save;
};

class TScriptEditorHost {
public:
    virtual ~TScriptEditorHost() = default;
    /// Shows the script and waits. True if the user confirmed; the new text then stands in `jsSource`, which
    /// stays untouched otherwise. `Engine`, which checks the syntax, and `AutoCompletion` are borrowed for
    /// the call, and each may be null. On the main thread.
    virtual bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) = 0;
    /// Shows the script until the user leaves it, saving on the way as often as the user wants. The rest as
    /// in ScriptEdit. A host that doesn't know files confirms once, and again while saving fails.
    virtual void EditFile(const TEditedScript& script, TJSEngine* Engine, TJSCompletion* AutoCompletion);
};

/// The registered host, or one that answers as if the user had cancelled, with one line in the journal.
[[nodiscard]] TScriptEditorHost& ScriptEditorHost();
/// Not owned; null takes the registered one away.
void SetScriptEditorHost(TScriptEditorHost* host);
