#include "actions/ConfigurationPaths.h"

#include "base/Paths.h"
#include "base/Settings.h"

namespace {
string InConfigurationFolder(const string& name) {
    return ExpandEnvironment(GetEditorSettings().ConfigurationFolder) + u'/' + name;
}
} // namespace

string ActionsFile() {
    return InConfigurationFolder(QStringLiteral("actions.xml"));
}
string WatchedFoldersFile() {
    return InConfigurationFolder(QStringLiteral("watchedfolders.xml"));
}
