#pragma once
// TfrmFoldersAgent: the application's main form. It is never shown; it stands for the agent in the tray,
// starts the folders thread, the control pipe and the watch of the configuration folder, and stops them in
// order.
#include "agent/AgentLedger.h"
#include "agent/AgentStatus.h"
#include "agent/NamedPipeThread.h"
#include "agent/Pauses.h"
#include "agent/RunHost.h"
#include "base/ObjectList.h"
#include "platform/HiddenWindow.h"
#include "platform/TrayIcon.h"
#include "timers/CronJob.h"

#include <QTimer>

#include <atomic>
#include <cstdlib>

class TFolderWatch;
class TWatchedFoldersThread;
struct TRunSettings;

/// What a form's run needs from outside; both outlive the form.
struct TFormHost {
    TRunClock& Clock;
    TFolderFiles& Files;
    int StopLimitMs = 0; ///< how long a stop waits for the work at hand; 0: until it ends
    string Worker = {};  ///< path of the workers' program; empty: the agent does all work itself
};

/// Whether there is still a window system to take events from.
enum class TWindowSystem { Alive, Dead };

/// Lives on the main thread; other threads use it as TTrayHint and TRefreshTarget alone.
class TfrmFoldersAgent final : public TComponent, public TTrayHint, public TRefreshTarget {
    Q_OBJECT
public:
    static constexpr char WindowClass[] = "TfrmFoldersAgent";

    /// Runs FormCreate. A watch that can't be started is shown in a box, and the threads run on.
    explicit TfrmFoldersAgent(TFormHost host);
    /// Runs FormDestroy; the folder watch goes last.
    ~TfrmFoldersAgent() override;

    PUBLISHED(string, Caption, FCaption);
    PUBLISHED(int, ClientWidth, FClientWidth) = 405;
    PUBLISHED(int, ClientHeight, FClientHeight) = 240;
    [[nodiscard]] TWindowHandle Handle() const { return FWindow.Handle(); }

    // Declared in this order because the menu names its item, and the icon its frames and menu.
    TMenuItem OpenLog1;
    TMenuItem Failed1;
    TMenuItem Pause1;
    TMenuItem Exit1;
    TPopupMenu PopupMenu1;
    TImageList ImageList1;
    TTrayIcon TrayIcon1;

    /// Tells the application to end with this exit code, whatever boxes are open.
    void Terminate(int exitCode = EXIT_SUCCESS);
    /// It has been told; the event loop need not be begun.
    [[nodiscard]] bool Terminated() const { return FTerminated; }
    [[nodiscard]] int ExitCode() const { return FExitCode; }

    /// Null where no configuration folder was found, and after the stop.
    [[nodiscard]] const TWatchedFoldersThread* FoldersThread() const { return FWatchedFoldersThread.get(); }
    [[nodiscard]] const TNamedPipeThread* PipeThread() const { return FNamedPipeThread.get(); }

    /// Stops the folders thread, then the control pipe, waiting for each; open boxes are answered, and what
    /// is queued for this thread is delivered meanwhile, with the events of a living window system: the icon
    /// stays and is painted. A second call does nothing.
    void StopThreads(TWindowSystem windows = TWindowSystem::Alive);

    void SetHint(const string& text) override;
    void StatusTold() override;
    void RefreshFolders() override;
    void RefreshActions() override;
    [[nodiscard]] string SetPaused(const string& folder, bool paused) override;

private:
    using TFlag = std::atomic<bool> TWatchedFoldersThread::*;

    void FormCreate();
    void FormDestroy();
    void FillTrayIcon();
    void StartThreads(const string& path, const TRunSettings& settings);
    void StartWatch(const string& path);
    void FolderChanged(TFolderWatch& sender);
    void OpenLog1Click() const;
    void Failed1Click() const;
    void Pause1Click();
    void Exit1Click() { Terminate(); }
    void IconClick() const;
    void ShowMenu();
    [[nodiscard]] string FailureNotice();
    void WndProc(TMessage& message);
    [[nodiscard]] bool Raise(TFlag flag);

    TFormHost FHost;
    TAgentStatus FStatus;
    TPauses FPauses;
    std::unique_ptr<TAgentLedger> FLedger;
    bool FReasonFiles = false;
    QTimer FSignsOfLife;
    string FConfigPath; ///< with a delimiter at its end
    std::vector<TAgentStatus::TTrouble>
        FTroubles; ///< those that were told; of the folders thread alone, as the next
    QMap<string, qint64> FFailuresTold;
    qint64 FNoticeAt = 0;  ///< by the steady clock; 0: never
    QStringList FCaptions; ///< of the menu's items that change, as shown
    bool FTerminated = false;
    int FExitCode = EXIT_SUCCESS;
    THiddenWindow FWindow;
    /// The list of jobs that cron masks would start. Always empty: the folders' schedule is their CheckEvery.
    std::unique_ptr<TObjectList<TZQCronJob>> FCronJobs;
    std::mutex FThreadLock; ///< of the next pointer, which the pipe's thread follows
    std::unique_ptr<TWatchedFoldersThread> FWatchedFoldersThread;
    std::unique_ptr<TNamedPipeThread> FNamedPipeThread;
};

/// The one form; null while there is none.
extern std::atomic<TfrmFoldersAgent*> frmFoldersAgent;
