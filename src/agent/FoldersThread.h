#pragma once
// TWatchedFoldersThread: the worker that owns the configuration in memory, ticks once a second and runs
// each due folder's action list over its files.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/AgentStatus.h"
#include "agent/ConfigurationFile.h"
#include "agent/FolderPass.h"
#include "agent/RunHost.h"
#include "platform/WorkerThread.h"

#include <atomic>
#include <memory>

/// What is set for a run outside the two configuration files.
struct TRunSettings {
    int KeepDays = 0;     ///< day logs that are older go; 0 keeps all
    qint32 FirstTick = 0; ///< where the tick counter starts
    TWorkerSettings Workers = {};
};

class TWatchedFoldersThread final : public TWorkerThread {
public:
    /// Runs from here on. `ConfigPath` ends with a delimiter; `host` must outlive the thread.
    TWatchedFoldersThread(const string& ConfigPath, const TRunHost& host, const TRunSettings& settings = {});
    /// Terminates and waits.
    ~TWatchedFoldersThread() override;

    /// The thread ends between files and between actions; a running script, and a wait for a program that it
    /// has started, end at once.
    void Terminate() override;

    // Raised by other threads, consumed between passes; no order among them is promised.
    std::atomic<bool> FDirChanged = false;     ///< something was written in the configuration folder
    std::atomic<bool> FRefreshFolders = false; ///< load `watchedfolders.xml` whatever its time
    std::atomic<bool> FRefreshActions = false; ///< the same for `actions.xml`

private:
    using TFlag = std::atomic<bool>;

    void Execute() override;
    void Serve();
    void Tick();
    void CountTick();
    [[nodiscard]] std::optional<qint32> TickDuringPass();
    void LookForChanges();
    [[nodiscard]] bool Look(TConfigurationFile& file, TListKind kind, TConfigurationFile::TLook look);
    void ShowFolders();
    void TellState();
    void TellLedger();
    void RunPass();
    void NameLogFile();

    TRunHost FHost;
    string FconfigPath;
    TRunSettings FSettings;
    string FLogFileName;
    QDate FLogDate;
    qint32 FTickCounter;
    // What is in force; another version takes the place of the whole.
    std::shared_ptr<TPDFWatchedFolders> FWatchedFolders;
    std::shared_ptr<TPDFActionManager> FActionManager;
    TConfigurationFile FFoldersFile;
    TConfigurationFile FActionsFile;
    TFolderPass FPass;
};
