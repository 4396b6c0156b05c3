#include "timers/CustomTimer.h"

#include "timers/TimerManager.h"

TumCustomTimer::TumCustomTimer(TComponent* owner, TDesigning designing, TumTimerManager* manager)
    : TumHandleComponent(owner, designing), FManager(manager) {
    if (designing == TDesigning::Yes)
        FManager = nullptr;
    else if (!FManager)
        FManager = &TimerManager();
}

TumCustomTimer::~TumCustomTimer() {
    Leave();
}

void TumCustomTimer::Enter() {
    if (!FManager)
        return;
    FEntered = true;
    FManager->AddTimer(this);
}

void TumCustomTimer::Leave() {
    if (!FEntered)
        return;
    FEntered = false;
    FManager->DeleteTimer(this, TFreeIt::No);
}

void TumCustomTimer::Reset() {
    FAlertsCount = 0;
}

void TumCustomTimer::DoAlert() {
    ++FAlertsCount;
}

void TumCustomTimer::PostAlert() {
    PostMessage(Handle(), {.Number = WM_TIMER_ALERT});
}

void TumCustomTimer::WndProc(TMessage& message) {
    if (message.Number == WM_TIMER_ALERT)
        DoAlert();
    else
        TumHandleComponent::WndProc(message);
}
