#pragma once
// What one thread asks another to do: a queue of calls that its owner runs, in order, on its own thread.
//
// Every thread has one. The main thread's is run by its event loop (platform/MessagePump.h); a thread
// without an event loop, or one that waits for another, runs its own by hand.
#include "platform/Waiting.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

class TMessageQueue {
public:
    using TCall = std::function<void()>;
    /// As on a desktop system, so that a thread that hangs costs its posters no memory.
    static constexpr size_t Limit = 10'000;

    /// The calling thread's queue. Others keep it alive by holding it, but what is posted after its thread
    /// has ended is never run.
    [[nodiscard]] static std::shared_ptr<TMessageQueue> OfThisThread();

    /// Any thread. False if the queue is full, and then the call is dropped.
    bool Post(TCall call);

    /// The owner's thread only, as the two below: runs what was posted before this call and returns how
    /// many calls it ran. An exception out of a call passes, and what is left stays queued.
    int Deliver();
    /// Runs what comes until `done` says so or the time is over (WaitForever for no limit); `done` is asked
    /// after every delivery and every 10 ms. Returns what it said last.
    bool DeliverUntil(const std::function<bool()>& done, int timeoutMs);
    /// Readable while something is queued.
    [[nodiscard]] int Descriptor() const { return FSignal.Descriptor(); }

private:
    [[nodiscard]] TCall Next();

    std::mutex FLock;
    std::deque<TCall> FCalls;
    TEvent FSignal;
};
