#include "agent/HeadlessAgent.h"

#include "actions/ActionClasses.h"
#include "agent/FoldersThread.h"
#include "agent/SystemRunHost.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "base/Settings.h"
#include "platform/Signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

namespace {

/// With a delimiter at its end; empty if there is no such folder.
string ConfigurationPath() {
    const string path = ExpandEnvironment(IncludeTrailingDelimiter(GetEditorSettings().ConfigurationFolder));
    return DirectoryExists(path) ? path : string();
}

} // namespace

int RunHeadlessAgent() {
    IgnoreDisruptiveSignals();
    TTerminationSignals endSignals;
    const string path = ConfigurationPath();
    if (path.isEmpty()) {
        JournalLine(ApplicationTitle() + QStringLiteral(": Configuration Path is missing or invalid. "));
        return 0;
    }
    RegisterActionClasses();
    TSystemClock clock;
    TSystemFolderFiles files;
    TNoTrayHint hint;
    TWatchedFoldersThread thread(path, {clock, files, hint});

    QSocketNotifier ended(endSignals.Descriptor(), QSocketNotifier::Read);
    QObject::connect(&ended, &QSocketNotifier::activated, [&] {
        if (endSignals.Take())
            QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
