#include "timers/AccurateTimer.h"

#include "base/Exceptions.h"

TumCustomAccurateTimer::TumCustomAccurateTimer(TComponent* owner, TDesigning designing,
                                               TumTimerManager* manager)
    : TumCustomTimer(owner, designing, manager) {
    // A descendant may be under construction, but the manager calls nothing here that it could override.
    Enter();
}

TumCustomAccurateTimer::~TumCustomAccurateTimer() {
    Leave();
}

void TumCustomAccurateTimer::Tick(Cardinal elapsed) {
    const Cardinal interval = Interval();
    if (interval == 0)
        throw Exception(QStringLiteral("A timer's interval is 0."));
    const Cardinal current = Current() + elapsed;
    FCurrent.store(current % interval, std::memory_order_relaxed);
    if (current >= interval)
        PostAlert();
}

void TumCustomAccurateTimer::Reset() {
    TumCustomTimer::Reset();
    FCurrent.store(0, std::memory_order_relaxed);
}

void TumCustomAccurateTimer::DoAlert() {
    TumCustomTimer::DoAlert();
    if (FOnTimer)
        FOnTimer(*this);
}
