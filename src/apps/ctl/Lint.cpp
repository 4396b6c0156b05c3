#include "actions/ActionClasses.h"
#include "apps/ctl/ConfigurationCommands.h"
#include "apps/ctl/lint/LintActions.h"
#include "apps/ctl/lint/LintFolders.h"
#include "base/Paths.h"
#include "base/Settings.h"

TCommandResult Lint(const TCommandCall& call) {
    const string folder = call.Word();
    const string path = IncludeTrailingDelimiter(
        folder.isEmpty() ? ExpandEnvironment(GetEditorSettings().ConfigurationFolder) : folder);
    if (!DirectoryExists(path))
        return {ExitFaults, QStringLiteral("The configuration folder \"%1\" does not exist.").arg(path)};
    RegisterActionClasses();
    TPDFActionManager manager;
    TLintedFile actions(path + QStringLiteral("actions.xml"), manager);
    if (actions.IsRead())
        LintLists(actions, manager);
    TPDFWatchedFolders folders;
    TLintedFile served(path + QStringLiteral("watchedfolders.xml"), folders);
    LintFolders(served, folders, actions.IsRead() ? &manager : nullptr);
    const QStringList faults = actions.Faults() + served.Faults();
    if (!faults.isEmpty())
        return {ExitFaults, faults.join(u'\n')};
    return {ExitDone, QStringLiteral("No faults: %1 folders, %2 action lists.")
                          .arg(folders.FFolders.size())
                          .arg(manager.Count())};
}
