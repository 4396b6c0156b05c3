#include "actions/DocumentScriptEngine.h"
#include "apps/script/ScriptCommands.h"
#include "apps/script/ScriptFile.h"
#include "base/Exceptions.h"
#include "platform/MessageBox.h"
#include "scripting/ScriptEditorHost.h"

namespace {

int ShowBox(const string& text, int flags) {
    return MessageBoxHost().Show(text, QStringLiteral("Morvane Script Editor"), flags);
}

bool MayReplaceChanged(const TScriptFile& file) {
    const string question =
        QStringLiteral(
            "\"%1\" has been changed by another program meanwhile. Replace it by what is in the editor?")
            .arg(file.Path());
    return ShowBox(question, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) == IDYES;
}

/// False if the text is in no file yet; the user knows.
bool Saved(const TScriptFile& file, const string& text) {
    try {
        return file.Save(text, Replace::No) || (MayReplaceChanged(file) && file.Save(text, Replace::Yes));
    } catch (const Exception& e) {
        (void)ShowBox(e.Message(), MB_OK | MB_ICONERROR);
        return false;
    }
}

} // namespace

TExitCode EditScript(const string& path) {
    const TScriptFile file(path);
    file.RequireSavable();
    TJSCompletion completion = BuildCompletion();
    string text = file.Text();
    TExitCode cancelled = ExitDone;
    while (ScriptEditorHost().ScriptEdit(text, &GetDocumentScripting(), &completion)) {
        if (!file.WouldChange(text) || Saved(file, text))
            return ExitDone;
        cancelled = ExitFailed;
    }
    return cancelled;
}
