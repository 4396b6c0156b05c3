#include "timers/TimerManager.h"

#include "base/Exceptions.h"
#include "timers/AccurateTimer.h"
#include "timers/CronJob.h"

namespace {

struct TProcessManager {
    std::mutex Lock;
    int Uses = 0;
    std::unique_ptr<TumTimerManager> Manager;
};

TProcessManager& ProcessManager() {
    static TProcessManager manager;
    return manager;
}

} // namespace

TumTimerManager::TumTimerManager(TClock& clock)
    : TWorkerThread("timers", TThreadPriority::TimeCritical), FClock(clock) {
    Start();
}

TumTimerManager::~TumTimerManager() {
    Stop();
    FreeAll(TimerList);
    FreeAll(AlarmList);
}

void TumTimerManager::FreeAll(TumThreadList& list) {
    // A timer that is freed takes itself out of the list, so the walk must not trust a count taken before.
    const TLockedList locked(list);
    while (locked->Count() > 0)
        locked->Delete(0, TFreeIt::Yes);
}

TumThreadList& TumTimerManager::ListOf(const TumCustomTimer* timer) {
    return qobject_cast<const TumCustomAccurateTimer*>(timer) ? TimerList : AlarmList;
}

void TumTimerManager::AddTimer(TumCustomTimer* timer) {
    ListOf(timer).Add(timer);
    Wake();
}

void TumTimerManager::DeleteTimer(TumCustomTimer* timer, TFreeIt freeIt) {
    ListOf(timer).Remove(timer, freeIt);
}

void TumTimerManager::Execute() {
    LastTicks = FClock.TickCount();
    while (!Terminated()) {
        if (!HasTimers())
            WaitForTimers();
        // To the next multiple of 10 ms, so that all ticks fall on a common beat.
        FClock.Sleep(10 - int(FClock.TickCount() % 10));
        Cycle();
    }
}

bool TumTimerManager::HasTimers() const {
    return TimerList.Count() > 0 || AlarmList.Count() > 0;
}

/// The first timer finds the manager as if it had gone on all the time: no old time is credited, and the
/// second at hand has been looked at.
void TumTimerManager::WaitForTimers() {
    WaitUntil([this] { return HasTimers(); });
    LastTicks = FClock.TickCount();
    LastSecond = FClock.LocalTime().Second;
}

void TumTimerManager::Cycle() {
    const Cardinal now = FClock.TickCount();
    if (TimerList.Count() > 0)
        TickTimers(now - LastTicks); // unsigned, so that the count's wrap after 49.7 days is no jump
    LastTicks = now;                 // also without interval timers: the first gets no pile of old time
    const TSystemTime time = FClock.LocalTime();
    if (time.Second == LastSecond)
        return;
    // That it differs, not that time went forward: a clock set back has its alarms looked at again, and a
    // cycle of exactly a minute skips one look.
    LastSecond = time.Second;
    CheckAlarms(time);
}

void TumTimerManager::TickTimers(Cardinal elapsed) {
    const TLockedList timers(TimerList);
    for (int i = 0; i < timers->Count() && !Terminated(); ++i) {
        auto* timer = static_cast<TumCustomAccurateTimer*>((*timers)[i]);
        if (timer->Active())
            timer->Tick(elapsed);
    }
}

void TumTimerManager::CheckAlarms(const TSystemTime& now) {
    const TLockedList alarms(AlarmList);
    for (int i = 0; i < alarms->Count() && !Terminated(); ++i) {
        auto* job = qobject_cast<TumCronJob*>((*alarms)[i]);
        if (job && job->Active())
            job->CheckTime(now);
    }
}

TTimerManagerUse::TTimerManagerUse() {
    TProcessManager& process = ProcessManager();
    const std::lock_guard guard(process.Lock);
    if (!process.Manager)
        process.Manager = std::make_unique<TumTimerManager>();
    ++process.Uses;
}

TTimerManagerUse::~TTimerManagerUse() {
    std::unique_ptr<TumTimerManager> last; // goes outside the lock
    TProcessManager& process = ProcessManager();
    const std::lock_guard guard(process.Lock);
    if (--process.Uses == 0)
        last = std::move(process.Manager);
}

TumTimerManager& TimerManager() {
    TProcessManager& process = ProcessManager();
    const std::lock_guard guard(process.Lock);
    if (!process.Manager)
        throw Exception(QStringLiteral("The timer manager isn't running."));
    return *process.Manager;
}
