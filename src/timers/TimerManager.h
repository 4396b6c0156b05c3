#pragma once
// TumTimerManager: the one thread that drives all timers of a process, on a beat of 10 ms. While there are
// none it waits for one, and nothing wakes it.
//
// Its work under a list's lock is to count, to compare and to post; no handler ever runs on it. The two
// lists are never held at once.
#include "platform/Clock.h"
#include "platform/WorkerThread.h"
#include "timers/ThreadList.h"

class TumCustomTimer;

class TumTimerManager final : public TWorkerThread {
public:
    explicit TumTimerManager(TClock& clock = MachineClock());
    /// Ends the thread and frees the timers that still live, those of TimerList first: they must have been
    /// made with new, by the calling thread or one that has ended.
    ~TumTimerManager() override;

    /// Any thread. Interval timers go to TimerList, all others to AlarmList; blocks while that list is
    /// walked.
    void AddTimer(TumCustomTimer* timer);
    void DeleteTimer(TumCustomTimer* timer, TFreeIt freeIt);

    [[nodiscard]] const TumThreadList& Timers() const { return TimerList; }
    [[nodiscard]] const TumThreadList& Alarms() const { return AlarmList; }

private:
    void Execute() override;
    [[nodiscard]] bool HasTimers() const;
    void WaitForTimers();
    void Cycle();
    void TickTimers(Cardinal elapsed);
    void CheckAlarms(const TSystemTime& now);
    [[nodiscard]] TumThreadList& ListOf(const TumCustomTimer* timer);
    static void FreeAll(TumThreadList& list);

    TClock& FClock;
    TumThreadList TimerList;
    TumThreadList AlarmList;
    Cardinal LastTicks = 0; ///< of the last cycle
    quint16 LastSecond = 0; ///< for which the alarms were last checked
};

/// Runs the process's manager while any of these lives: it is made with the first and freed with the last.
class TTimerManagerUse {
public:
    TTimerManagerUse();
    ~TTimerManagerUse();
    TTimerManagerUse(const TTimerManagerUse&) = delete;
    TTimerManagerUse& operator=(const TTimerManagerUse&) = delete;
};

/// The process's manager. Raises Exception if none is running.
[[nodiscard]] TumTimerManager& TimerManager();
