#pragma once
// The base of the long-lived threads: a request to end, and a wait for the end.
//
// A derived class is final, calls Start() as the last thing in its constructor and Stop() as the first in its
// destructor, so that the thread never sees half an object.
#include "base/Text.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

enum class TThreadPriority { Lowest, Normal, TimeCritical };

/// Gives the calling thread a name of at most 15 characters and, as far as the system permits, a priority.
void DescribeThisThread(const char* name, TThreadPriority priority);

class TWorkerThread {
public:
    virtual ~TWorkerThread() = default;
    TWorkerThread(const TWorkerThread&) = delete;
    TWorkerThread& operator=(const TWorkerThread&) = delete;

    /// Asks the thread to end; returns at once.
    virtual void Terminate();
    [[nodiscard]] bool Terminated() const { return FTerminated.load(std::memory_order_relaxed); }
    /// True once Execute is through, however it ended.
    [[nodiscard]] bool Finished() const { return FFinished.load(std::memory_order_acquire); }
    /// Waits for the end. One thread waits; a second call does nothing.
    void WaitFor();
    /// The same, while the calling thread's queued calls go on being delivered; `meanwhile` is called after
    /// each delivery and every 10 ms. What escapes from a call becomes a line in the journal.
    void WaitForDelivering(const std::function<void()>& meanwhile);

protected:
    explicit TWorkerThread(const char* name, TThreadPriority priority = TThreadPriority::Normal)
        : FName(name), FPriority(priority) {}
    void Start();
    void Stop();
    /// The thread's body. What escapes from it ends the thread with a line in the journal.
    virtual void Execute() = 0;
    /// Sleeps, but not past Terminate(). On the thread itself.
    void Sleep(int ms);
    /// Waits until `isSo` or Terminate(). It is asked again after each Wake(). On the thread itself.
    void WaitUntil(const std::function<bool()>& isSo);
    /// Any thread: what WaitUntil waits for may be so now.
    void Wake();

private:
    void Run() noexcept;

    const char* FName;
    TThreadPriority FPriority;
    std::atomic<bool> FTerminated = false;
    std::atomic<bool> FFinished = false;
    std::mutex FSleepLock;
    std::condition_variable FWake;
    std::thread FThread;
};
