#pragma once
// TWatchedFoldersThread: the worker that owns the configuration in memory, ticks once a second and runs
// each due folder's action list over its files.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/ConfigurationFile.h"
#include "agent/FolderPass.h"
#include "agent/RunHost.h"
#include "platform/WorkerThread.h"

#include <atomic>

class TWatchedFoldersThread final : public TWorkerThread {
public:
    /// Runs from here on. `ConfigPath` ends with a delimiter; `host` must outlive the thread.
    TWatchedFoldersThread(const string& ConfigPath, TRunHost host);
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
    void Execute() override;
    void Prepare();
    void Tick();
    void LookForChanges();
    void Refresh();
    void NameLogFile();

    TRunHost FHost;
    string FconfigPath;
    string FLogFileName;
    QDate FLogDate;
    qint32 FTickCounter = 0;
    TPDFWatchedFolders FWatchedFolders;
    TPDFActionManager FActionManager;
    TConfigurationFile FFoldersFile;
    TConfigurationFile FActionsFile;
    TFolderPass FPass;
};
