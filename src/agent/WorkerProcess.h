#pragma once
// One worker, as the agent sees it: a process of ours at the other end of a channel.
#include "work/Channel.h"
#include "work/Sandbox.h"

#include <sys/types.h>

class TWorkerProcess {
public:
    /// Starts `program`, an open file, with what that reach leaves it. Raises Exception where that can't be
    /// done.
    TWorkerProcess(const TDescriptor& program, TReach reach);
    /// Kills it if it hasn't ended.
    ~TWorkerProcess();
    TWorkerProcess(const TWorkerProcess&) = delete;
    TWorkerProcess& operator=(const TWorkerProcess&) = delete;

    /// May be held by whoever has something to send later.
    [[nodiscard]] const std::shared_ptr<TChannel>& Channel() const { return FChannel; }
    [[nodiscard]] pid_t Process() const { return FProcess; }
    /// Tells it that its work is to stop.
    void Stop() const;
    /// Ends it and waits for its end. The result is wait's status of a process that had ended by itself.
    int End();

private:
    std::shared_ptr<TChannel> FChannel;
    TDescriptor FLeash;
    pid_t FProcess = -1;
    int FStatus = 0;
};
