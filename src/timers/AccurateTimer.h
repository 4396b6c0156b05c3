#pragma once
// TumCustomAccurateTimer: an interval timer with the manager's resolution of 10 ms, which doesn't drift.
#include "timers/CustomTimer.h"

#include <functional>

class TumCustomAccurateTimer : public TumCustomTimer {
    Q_OBJECT
public:
    using TNotifyEvent = std::function<void(TumCustomAccurateTimer& sender)>;

    explicit TumCustomAccurateTimer(TComponent* owner, TDesigning designing = TDesigning::No,
                                    TumTimerManager* manager = nullptr);
    ~TumCustomAccurateTimer() override;

    /// Milliseconds, 1,000 at first. At 0 the next tick raises, which ends the manager's thread and with it
    /// all timers of the process.
    [[nodiscard]] Cardinal Interval() const { return FInterval.load(std::memory_order_relaxed); }
    void SetInterval(Cardinal ms) { FInterval.store(ms, std::memory_order_relaxed); }
    /// Milliseconds counted towards the next alert.
    [[nodiscard]] Cardinal Current() const { return FCurrent.load(std::memory_order_relaxed); }
    void SetOnTimer(TNotifyEvent event) { FOnTimer = std::move(event); }

    /// Counts `elapsed` milliseconds. Time past the interval is kept; several intervals passed at once are
    /// one alert. Called by the manager.
    void Tick(Cardinal elapsed);
    void Reset() override;

protected:
    void DoAlert() override;

private:
    std::atomic<Cardinal> FCurrent = 0;
    std::atomic<Cardinal> FInterval = 1000;
    TNotifyEvent FOnTimer;
};
