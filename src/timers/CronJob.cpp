#include "timers/CronJob.h"

TumCronJob::TumCronJob(TComponent* owner, TDesigning designing, TumTimerManager* manager, TEntry entry)
    : TumCustomTimer(owner, designing, manager) {
    if (entry == TEntry::Now)
        Enter();
}

TumCronJob::TumCronJob(TComponent* owner, TDesigning designing, TumTimerManager* manager)
    : TumCronJob(owner, designing, manager, TEntry::Now) {}

TumCronJob::~TumCronJob() {
    Leave();
}

void TumCronJob::SetCronMask(const string& mask) {
    if (mask == FCronMask)
        return;
    FCronMask = mask;
    FCron.Init(mask);
    Reset();
}

void TumCronJob::CheckTime(const TSystemTime& time) {
    if (!FCron.IsCron(time))
        return;
    PostAlert();
    const std::lock_guard guard(FLastLock);
    FLastCronTime = time;
    FLastTime = SystemTimeToDateTime(time);
}

TSystemTime TumCronJob::LastCronTime() const {
    const std::lock_guard guard(FLastLock);
    return FLastCronTime;
}

TDateTime TumCronJob::LastTime() const {
    const std::lock_guard guard(FLastLock);
    return FLastTime;
}

void TumCronJob::DoAlert() {
    TumCustomTimer::DoAlert();
    if (FOnAlert)
        FOnAlert(*this);
}

TZQCronJob::TZQCronJob(TComponent* owner, TDesigning designing, TumTimerManager* manager)
    : TumCronJob(owner, designing, manager, TEntry::ByDescendant) {
    Enter();
}

TZQCronJob::~TZQCronJob() {
    Leave();
}
