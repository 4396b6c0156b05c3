#include "agent/FoldersThread.h"

#include "base/Exceptions.h"
#include "base/Interrupt.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "platform/StopSignal.h"

#include <QScopeGuard>

#include <limits>

TWatchedFoldersThread::TWatchedFoldersThread(const string& ConfigPath, TRunHost host)
    : TWorkerThread("folders"), FHost(host), FconfigPath(ConfigPath),
      FFoldersFile(ConfigPath + "watchedfolders.xml",
                   [this](const string& path) { FWatchedFolders.Load(path); }),
      FActionsFile(ConfigPath + "actions.xml", [this](const string& path) { FActionManager.Load(path); }),
      FPass(host, [this] { return Terminated(); }) {
    StopSignal().Lower();
    SetInterruptTest([] { return StopSignal().IsOverdue(); });
    Start();
}

TWatchedFoldersThread::~TWatchedFoldersThread() {
    Stop();
}

void TWatchedFoldersThread::Terminate() {
    TWorkerThread::Terminate();
    StopSignal().Raise();
    FHost.Clock.Wake();
}

/// An exception outside a pass ends the thread quietly: no folder is served any more, and the journal says
/// why.
void TWatchedFoldersThread::Execute() {
    const auto cleared = qScopeGuard([this] {
        FWatchedFolders.Clear();
        FActionManager.Clear();
    });
    Prepare();
    while (!Terminated()) {
        FHost.Clock.WaitTick();
        if (!Terminated())
            Tick();
    }
}

void TWatchedFoldersThread::Prepare() {
    const bool folders = FFoldersFile.LoadFirst();
    const bool actions = FActionsFile.LoadFirst();
    if (!folders || !actions)
        FDirChanged.store(true, std::memory_order_relaxed); // the next tick looks again
    ForceDirectories(FconfigPath + "logs");
    NameLogFile();
}

void TWatchedFoldersThread::NameLogFile() {
    FLogDate = FHost.Clock.Now().date();
    FLogFileName = FconfigPath + "logs/" + LogFileName(FLogDate);
}

void TWatchedFoldersThread::Tick() {
    if (++FTickCounter == std::numeric_limits<qint32>::max())
        FTickCounter = 0;
    if (FDirChanged.load(std::memory_order_relaxed))
        LookForChanges();
    if (FLogDate.daysTo(FHost.Clock.Now().date()) > 0)
        NameLogFile();
    try {
        Refresh();
        FPass.Run({FWatchedFolders, FActionManager, FLogFileName, FTickCounter});
        FHost.Hint.SetHint(ApplicationTitle());
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("The pass ended early: %1").arg(MessageOf(e)));
    } catch (...) {
        JournalLine(QStringLiteral("The pass ended early: unknown failure."));
    }
}

/// The flag goes down after the look, so that a change during it is absorbed; it stays up for a file that
/// couldn't be looked at.
void TWatchedFoldersThread::LookForChanges() {
    const bool folders = FFoldersFile.LoadIfChanged();
    const bool actions = FActionsFile.LoadIfChanged();
    if (folders && actions)
        FDirChanged.store(false, std::memory_order_relaxed);
}

/// The flags go down first: a command that comes while the file is read asks for another reading.
void TWatchedFoldersThread::Refresh() {
    if (FRefreshFolders.exchange(false, std::memory_order_relaxed))
        FFoldersFile.Reload();
    if (FRefreshActions.exchange(false, std::memory_order_relaxed))
        FActionsFile.Reload();
}
