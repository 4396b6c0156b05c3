#pragma once
// TNamedPipeThread: the control pipe. Other programs of this user ask whether the agent runs, or tell it that
// they have written its configuration.
//
// Commands are compared exactly: "check" is answered "OK", "status" with the agent's status,
// "pause" and "resume", with a folder or without, with "OK" or the reason why not; "refresh.folders" and
// "refresh.actions" have no answer, and anything else is ignored. "check" proves only
// that this thread lives; "status" tells what the others do.
#include "platform/WorkerThread.h"

#include <functional>

class TAgentStatus;

/// Where refresh commands go. Called on the pipe's thread.
class TRefreshTarget {
public:
    virtual ~TRefreshTarget() = default;
    /// Both raise where there is nobody left to refresh: the agent is stopping then, and so does the pipe.
    virtual void RefreshFolders() = 0;
    virtual void RefreshActions() = 0;
    /// Pauses a folder, or ends its pause; an empty name is every folder. Empty, or why it can't be done.
    [[nodiscard]] virtual string SetPaused(const string& folder, bool paused) = 0;
};

class TNamedPipeThread final : public TWorkerThread {
public:
    static constexpr int ReadMs = 500; ///< how long a stop may have to wait

    /// Finds the target for each refresh command anew, on this thread; null is none yet, and the command is
    /// dropped. What it returns must live until this thread has ended.
    using TFindTarget = std::function<TRefreshTarget*()>;

    /// `status` outlives the thread.
    TNamedPipeThread(TFindTarget findTarget, const TAgentStatus& status);
    ~TNamedPipeThread() override;

private:
    void Execute() override;
    void HandleRefresh(const string& command);
    [[nodiscard]] std::optional<string> HandlePause(const string& command) const;

    TFindTarget FFindTarget;
    const TAgentStatus& FStatus;
};
