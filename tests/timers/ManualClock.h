#pragma once
// A clock that stands still until a test moves it, and with it the manager that sleeps by it.
#include "platform/Clock.h"

#include <condition_variable>
#include <mutex>

class TManualClock : public TClock {
public:
    explicit TManualClock(Cardinal ticks = 0) : FTicks(ticks) {}

    Cardinal TickCount() override {
        const std::lock_guard guard(FLock);
        return FTicks;
    }
    TSystemTime LocalTime() override {
        const std::lock_guard guard(FLock);
        return FTime;
    }
    void Sleep(int ms) override {
        std::unique_lock lock(FLock);
        FLastSleep = ms;
        FAsleep = true;
        FChanged.notify_all();
        FChanged.wait(lock, [&] { return !FAsleep || FReleased; });
        FAsleep = false;
    }

    /// Lets the sleeper run one cycle, `ms` later and at that time of day, up to its next sleep.
    void Advance(Cardinal ms, const TSystemTime& time) {
        std::unique_lock lock(FLock);
        FChanged.wait(lock, [&] { return FAsleep; });
        FTicks += ms;
        FTime = time;
        FAsleep = false;
        FChanged.notify_all();
        FChanged.wait_for(lock, std::chrono::minutes(1), [&] { return FAsleep; });
    }
    void Advance(Cardinal ms) { Advance(ms, FTime); }
    /// Time goes by with nobody asleep.
    void Pass(Cardinal ms) {
        const std::lock_guard guard(FLock);
        FTicks += ms;
    }
    bool WasAskedToSleep() {
        const std::lock_guard guard(FLock);
        return FLastSleep != 0;
    }
    /// From now on nobody is held.
    void Release() {
        const std::lock_guard guard(FLock);
        FReleased = true;
        FChanged.notify_all();
    }
    int LastSleep() {
        const std::lock_guard guard(FLock);
        return FLastSleep;
    }

private:
    std::mutex FLock;
    std::condition_variable FChanged;
    Cardinal FTicks;
    TSystemTime FTime;
    bool FAsleep = false;
    bool FReleased = false;
    int FLastSleep = 0;
};
