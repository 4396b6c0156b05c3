#pragma once
// Tells work that takes its time, as a running script or a wait for a started program, that its thread is to
// end. One for the process: there is one thread that does such work.
#include "platform/Waiting.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>

/// Any thread may use it. As a TWaitable it stays signalled from Raise() to Lower().
class TStopSignal : public TWaitable {
public:
    TStopSignal();

    void Raise();
    /// Work may begin (again).
    void Lower();
    [[nodiscard]] bool Raised() const { return FRaised.load(std::memory_order_relaxed); }
    /// Raised for over a second: what takes that long is cut short where it stands. What is nearly done by
    /// the time of a stop is done by then.
    [[nodiscard]] bool IsOverdue() const;

    [[nodiscard]] int Descriptor() const override { return FCounter.Number(); }
    [[nodiscard]] bool Take() override { return Raised(); }

private:
    friend class TStopListener;
    std::atomic<bool> FRaised = false;
    std::atomic<std::chrono::steady_clock::time_point> FRaisedAt{};
    TDescriptor FCounter;
    std::mutex FLock;
    std::map<const void*, std::function<void()>> FListeners;
};

[[nodiscard]] TStopSignal& StopSignal();

/// Has `called` called on the thread that raises the signal, for as long as this object lives.
class TStopListener {
public:
    explicit TStopListener(std::function<void()> called);
    ~TStopListener(); // NOLINT(bugprone-exception-escape): a lock fails only for who holds it
    TStopListener(const TStopListener&) = delete;
    TStopListener& operator=(const TStopListener&) = delete;
};
