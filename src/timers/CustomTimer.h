#pragma once
// TumCustomTimer: what the timer manager drives. The manager only counts and posts; an alert is delivered
// by the timer's hidden window, on the thread that made the timer.
//
// The manager's thread may look at a timer from the moment it is entered until it is taken out. So a class
// that can be made enters itself as the last act of its constructor, and takes itself out as the first of
// its destructor: the manager never sees half a timer.
#include "timers/HandleComponent.h"

#include <atomic>

class TumTimerManager;

inline constexpr Cardinal WM_TIMER_ALERT = 14933;

/// Whether a constructor enters the timer, or leaves that to the constructor of a class derived from it.
enum class TEntry { Now, ByDescendant };

class TumCustomTimer : public TumHandleComponent {
    Q_OBJECT
    Q_PROPERTY(bool Active READ Active WRITE SetActive)
public:
    ~TumCustomTimer() override;

    /// Switches the alerts on and off; the timer stays entered. True at first.
    [[nodiscard]] bool Active() const { return FActive.load(std::memory_order_relaxed); }
    void SetActive(bool active) { FActive.store(active, std::memory_order_relaxed); }

    /// Alerts delivered since the last Reset. For the timer's own thread, as Reset.
    [[nodiscard]] Cardinal AlertsCount() const { return FAlertsCount; }
    virtual void Reset();

protected:
    /// `manager` drives the timer and outlives it, or frees it; without one it is the process's own, which
    /// must be running.
    TumCustomTimer(TComponent* owner, TDesigning designing, TumTimerManager* manager);
    void Enter();
    /// May be called more than once.
    void Leave();

    virtual void DoAlert();
    void PostAlert();
    void WndProc(TMessage& message) override;

private:
    TumTimerManager* FManager; ///< null on a designer's form
    bool FEntered = false;
    std::atomic<bool> FActive = true;
    Cardinal FAlertsCount = 0;
};
