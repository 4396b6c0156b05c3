#include "agent/HeadlessAgent.h"

#include "actions/ActionClasses.h"
#include "agent/FoldersThread.h"
#include "agent/NamedPipeThread.h"
#include "agent/SystemRunHost.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "base/Settings.h"
#include "platform/MessagePump.h"
#include "platform/Signals.h"
#include "watch/FolderWatch.h"

#include <QCoreApplication>

namespace {

/// With a delimiter at its end; empty if there is no such folder.
string ConfigurationPath() {
    const string path = ExpandEnvironment(IncludeTrailingDelimiter(GetEditorSettings().ConfigurationFolder));
    return DirectoryExists(path) ? path : string();
}

/// What the control pipe raises.
class TRefreshFlags : public TRefreshTarget {
public:
    explicit TRefreshFlags(TWatchedFoldersThread& folders) : FFolders(folders) {}
    void RefreshFolders() override { FFolders.FRefreshFolders.store(true, std::memory_order_relaxed); }
    void RefreshActions() override { FFolders.FRefreshActions.store(true, std::memory_order_relaxed); }

private:
    TWatchedFoldersThread& FFolders;
};

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
    TMessagePump pump;
    pump.Watch(endSignals.Descriptor(), [&endSignals] {
        if (endSignals.Take())
            QCoreApplication::quit();
    });
    TSystemClock clock;
    TSystemFolderFiles files;
    TNoTrayHint hint;
    // Stopped in the opposite order of their making, but for the folders thread, which ends first.
    TFolderWatch watch(nullptr);
    TWatchedFoldersThread folders(path, {clock, files, hint});
    TRefreshFlags refresh(folders);
    TNamedPipeThread pipe([&refresh] { return &refresh; });
    watch.SetDirectory(path);
    watch.SetOnChange(
        [&folders](TFolderWatch&) { folders.FDirChanged.store(true, std::memory_order_relaxed); });
    watch.SetNotifyFilters(TFolderWatch::nfLastWrite);
    watch.SetActive(true);

    const int exitCode = QCoreApplication::exec();
    folders.Terminate();
    folders.WaitForDelivering();
    return exitCode;
}
