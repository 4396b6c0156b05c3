#include "actions/DocumentScriptEngine.h"
#include "apps/script/ScriptCommands.h"
#include "apps/script/ScriptFile.h"
#include "base/Exceptions.h"
#include "platform/MessageBox.h"
#include "scripting/ScriptEditorHost.h"

#include <QFileInfo>

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
bool Saved(TScriptFile& file, const string& text) {
    try {
        return !file.WouldChange(text) || file.Save(text, Replace::No) ||
               (MayReplaceChanged(file) && file.Save(text, Replace::Yes));
    } catch (const Exception& e) {
        (void)ShowBox(e.Message(), MB_OK | MB_ICONERROR);
        return false;
    }
}

/// A file that is there and can't be written may be read at least.
bool IsSavable(const TScriptFile& file) {
    try {
        file.RequireSavable();
        return true;
    } catch (const Exception&) {
        if (!file.Exists())
            throw;
        return false;
    }
}

} // namespace

TExitCode EditScript(const string& path) {
    TScriptFile file(path);
    bool refused = false;
    const TEditedScript script{QFileInfo(path).fileName(), file.Text(), !IsSavable(file),
                               [&file, &refused](const string& text) {
                                   refused = !Saved(file, text);
                                   return !refused;
                               }};
    TJSCompletion completion = BuildCompletion();
    ScriptEditorHost().EditFile(script, &GetDocumentScripting(), &completion);
    return refused ? ExitFailed : ExitDone;
}
