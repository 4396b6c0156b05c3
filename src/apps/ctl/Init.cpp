#include "apps/ctl/ConfigurationCommands.h"
#include "base/Exceptions.h"
#include "base/Paths.h"
#include "base/Settings.h"

#include <QDir>
#include <QFile>

namespace {

constexpr char ExampleActions[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The action lists that watched folders name. docs/configuration.md has every action. -->
<ActionManager>
  <ManagerActions>
    <ActionList>
      <Name>Received</Name>
      <Actions>
        <!-- A stamp is an annotation: it covers nothing for good, and a reader can move it or take it away. -->
        <Action Class="TPDFActionAddStampAnnotation">
          <x>36</x>
          <y>36</y>
          <Text>Received [date]</Text>
          <Subject>Incoming mail</Subject>
        </Action>
      </Actions>
    </ActionList>
  </ManagerActions>
</ActionManager>
)";

constexpr char ExampleFolders[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The folders that the agent serves, every so many seconds, with which list of actions.xml. -->
<WatchedFolder>
  <Folders>
    <Folder>
      <Name>%1</Name>
      <Enabled>true</Enabled>
      <OverwriteExistingFiles>false</OverwriteExistingFiles>
      <CheckEvery>1</CheckEvery>
      <Action>Received</Action>
      <!-- A file of which anything was lost or refused goes to Error/ instead of leaving half a result. -->
      <Policy>
        <OnDamage>Fail</OnDamage>
        <OnRefused>Fail</OnRefused>
        <OnScriptError>Fail</OnScriptError>
        <RepeatLines>OnChange</RepeatLines>
      </Policy>
    </Folder>
  </Folders>
</WatchedFolder>
)";

/// Never replaces a file, not even one that appears at this moment.
string MakeFile(const string& path, const string& contents) {
    if (NameTaken(path))
        return QStringLiteral("kept %1").arg(path);
    ForceDirectories(ExtractFilePath(path));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || file.write(Narrow(contents)) < 0 ||
        !file.flush())
        throw Exception(QStringLiteral("Cannot make \"%1\": %2").arg(path, file.errorString()));
    return QStringLiteral("made %1").arg(path);
}

/// QSettings reads a value in quotes with backslashes and quotes escaped.
string SettingsText(string folder) {
    folder.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
    return QStringLiteral("[General]\nConfigurationFolder=\"%1\"\n").arg(folder);
}

/// The folder of the example: where people look, unless the configuration is to lie in a place of its own.
string InboxOf(const string& wanted, const string& path) {
    return wanted.isEmpty() ? QDir::homePath() + QStringLiteral("/Morvane") : path + QStringLiteral("/inbox");
}

} // namespace

TCommandResult Init(const TCommandCall& call) {
    const string folder = call.Word();
    const string configured = GetEditorSettings().ConfigurationFolder;
    const string wanted = folder.isEmpty() ? configured : QDir(folder).absolutePath();
    const string path = folder.isEmpty() ? ExpandEnvironment(configured) : wanted;
    if (path.isEmpty())
        throw Exception(QStringLiteral("The configuration folder's path is too long."));
    ForceDirectories(path);
    const string inbox = InboxOf(folder, path);
    QStringList done;
    const bool first = !NameTaken(path + QStringLiteral("/watchedfolders.xml"));
    done += MakeFile(path + QStringLiteral("/watchedfolders.xml"),
                     string(QLatin1String(ExampleFolders)).arg(inbox.toHtmlEscaped()));
    if (first) {
        ForceDirectories(inbox);
        done += QStringLiteral("drop files into %1").arg(inbox);
    }
    done += MakeFile(path + QStringLiteral("/actions.xml"), QLatin1String(ExampleActions));
    done += MakeFile(SettingsFile(), SettingsText(wanted));
    const string used = ExpandEnvironment(GetEditorSettings().ConfigurationFolder);
    if (used != path)
        done += QStringLiteral("The settings name another folder, which the agent uses: %1").arg(used);
    return {ExitDone, done.join(u'\n')};
}
