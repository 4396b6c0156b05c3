#include "agent/FoldersThread.h"

#include "agent/AgentLedger.h"
#include "base/Exceptions.h"
#include "base/Interrupt.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "platform/StopSignal.h"

#include <QScopeGuard>

#include <limits>

namespace {

using TLook = TConfigurationFile::TLook;

/// Reads a version beside the one in force, whose place it then takes.
template <class TLists> TConfigurationFile::TRead ReadInto(std::shared_ptr<TLists>& inForce) {
    return [&inForce](const string& path) {
        auto fresh = std::make_shared<TLists>();
        fresh->Load(path);
        return [&inForce, fresh] { inForce = fresh; };
    };
}

} // namespace

TWatchedFoldersThread::TWatchedFoldersThread(const string& ConfigPath, const TRunHost& host,
                                             const TRunSettings& settings)
    : TWorkerThread("folders"), FHost(host), FconfigPath(ConfigPath), FSettings(settings),
      FTickCounter(settings.FirstTick),
      FFoldersFile(ConfigPath + "watchedfolders.xml", ReadInto(FWatchedFolders)),
      FActionsFile(ConfigPath + "actions.xml", ReadInto(FActionManager)),
      FPass(
          host, [this] { return Terminated(); }, settings.Workers) {
    StopSignal().Lower();
    SetInterruptTest([] { return StopSignal().IsOverdue(); });
    Start();
}

TWatchedFoldersThread::~TWatchedFoldersThread() {
    Stop();
    StopSignal().Lower(); // nothing is left to be stopped by it
}

void TWatchedFoldersThread::Terminate() {
    TWorkerThread::Terminate();
    StopSignal().Raise();
    FHost.Clock.Wake();
}

/// An exception outside a pass ends the thread: no folder is served any more, and status and journal say why.
void TWatchedFoldersThread::Execute() {
    const auto cleared = qScopeGuard([this] {
        FWatchedFolders.reset();
        FActionManager.reset();
        if (FHost.Ledger != nullptr)
            FHost.Ledger->Leave();
    });
    try {
        Serve();
    } catch (const std::exception& e) {
        FHost.Status.SetAgent(TAgentState::Ended,
                              QStringLiteral("No folder is served any more: %1").arg(MessageOf(e)));
        FHost.Hint.StatusTold();
        throw;
    }
}

void TWatchedFoldersThread::Serve() {
    FRefreshFolders = !Look(FFoldersFile, TListKind::Folders, TLook::Always) || FRefreshFolders;
    FRefreshActions = !Look(FActionsFile, TListKind::Actions, TLook::Always) || FRefreshActions;
    NameLogFile();
    TellState();
    while (!Terminated()) {
        FHost.Clock.WaitTick();
        if (!Terminated())
            Tick();
    }
}

void TWatchedFoldersThread::NameLogFile() {
    FLogDate = FHost.Clock.Now().date();
    const string folder = FconfigPath + QStringLiteral("logs/");
    FLogFileName = folder + LogFileName(FLogDate);
    RemoveOldLogs(folder, FLogDate, FSettings.KeepDays);
}

void TWatchedFoldersThread::CountTick() {
    if (++FTickCounter == std::numeric_limits<qint32>::max())
        FTickCounter = 0;
    FHost.Status.Ticked();
}

/// A pass with much to do doesn't hold up what it hasn't begun, but for a change of the configuration.
std::optional<qint32> TWatchedFoldersThread::TickDuringPass() {
    CountTick();
    TellLedger();
    FHost.Hint.StatusTold();
    if (Terminated() || FDirChanged || FRefreshFolders || FRefreshActions ||
        FLogDate != FHost.Clock.Now().date())
        return std::nullopt;
    return FTickCounter;
}

void TWatchedFoldersThread::Tick() {
    CountTick();
    LookForChanges();
    if (FLogDate.daysTo(FHost.Clock.Now().date()) > 0)
        NameLogFile();
    if (FWatchedFolders && FActionManager)
        RunPass();
    if (!Terminated())
        TellState();
}

void TWatchedFoldersThread::RunPass() {
    static const string Subject = QStringLiteral("pass");
    try {
        FPass.Run({*FWatchedFolders, *FActionManager, FLogFileName, FTickCounter,
                   [this] { return TickDuringPass(); }});
        FHost.Hint.SetHint(ApplicationTitle());
        JournalSettled(Subject);
    } catch (const std::exception& e) {
        JournalChange(Subject, QStringLiteral("The pass ended early: %1").arg(MessageOf(e)));
    } catch (...) {
        JournalChange(Subject, QStringLiteral("The pass ended early: unknown failure."));
    }
}

/// The flags go down before the look, so that what comes during it asks for another; they go up again for a
/// file that couldn't be looked at. Times are compared at every tick: no watch tells of a file that is
/// written through another name, or of a folder that takes the place of the configuration's.
void TWatchedFoldersThread::LookForChanges() {
    const bool changed = FDirChanged.exchange(false, std::memory_order_relaxed);
    const auto lookAt = [&](TConfigurationFile& file, TListKind kind, TFlag& refresh) {
        if (refresh.exchange(false, std::memory_order_relaxed)) {
            if (!Look(file, kind, TLook::Always))
                refresh.store(true, std::memory_order_relaxed);
        } else if ((changed || file.Differs()) && !Look(file, kind, TLook::IfChanged)) {
            FDirChanged.store(true, std::memory_order_relaxed);
        }
    };
    lookAt(FFoldersFile, TListKind::Folders, FRefreshFolders);
    lookAt(FActionsFile, TListKind::Actions, FRefreshActions);
}

/// False if the file has to be looked at again.
bool TWatchedFoldersThread::Look(TConfigurationFile& file, TListKind kind, TLook look) {
    const int versions = file.Versions();
    const bool seen = file.Look(look) == TConfigurationFile::TFound::Read;
    if (file.Versions() != versions) {
        FHost.Status.ListsLoaded(kind, FHost.Clock.Now());
        if (kind == TListKind::Folders)
            ShowFolders();
    }
    if (file.Fault().isEmpty())
        FHost.Status.ConfigurationFaultCleared(kind);
    else if (FHost.Status.ConfigurationFault(kind, file.Fault()))
        JournalLine(file.Fault() +
                    (file.InForce() ? QStringLiteral(" The last good version stays in force.")
                                    : QStringLiteral(" No folder is served until there is a good version.")));
    return seen;
}

void TWatchedFoldersThread::ShowFolders() {
    QStringList names;
    for (const TPDFWatchedFolder& folder : FWatchedFolders->FFolders)
        names.append(folder.Name);
    FHost.Status.SetFolders(names);
    for (const TPDFWatchedFolder& folder : FWatchedFolders->FFolders)
        if (!folder.Enabled)
            FHost.Status.SetState(folder.Name, TFolderState::Paused, QStringLiteral("disabled"));
}

void TWatchedFoldersThread::TellLedger() {
    if (FHost.Ledger != nullptr)
        FHost.Status.SetLedger(FHost.Ledger->State());
}

void TWatchedFoldersThread::TellState() {
    TellLedger();
    if (FWatchedFolders && FActionManager)
        FHost.Status.SetAgent(TAgentState::Serving);
    else
        FHost.Status.SetAgent(
            TAgentState::Waiting,
            QStringLiteral("No folder is served until there is a good version of \"%1\".")
                .arg(FconfigPath + (FWatchedFolders ? "actions.xml" : "watchedfolders.xml")));
    FHost.Hint.StatusTold();
}
