#pragma once
// TumCronJob: an alarm that comes whenever the local time matches a cron mask. A match in a second that the
// manager skipped is lost.
#include "timers/Cron.h"
#include "timers/CustomTimer.h"

#include <functional>
#include <mutex>

class TumCronJob : public TumCustomTimer {
    Q_OBJECT
public:
    using TNotifyEvent = std::function<void(TumCronJob& sender)>;

private:
    Q_PROPERTY(string CronMask READ CronMask WRITE SetCronMask)
    Q_PROPERTY(TNotifyEvent OnAlert READ OnAlert WRITE SetOnAlert)
    Q_PROPERTY(const TumCron* Cron READ Cron)

public:
    explicit TumCronJob(TComponent* owner, TDesigning designing = TDesigning::No,
                        TumTimerManager* manager = nullptr);
    ~TumCronJob() override;

    /// Empty at first, which matches every second. A new mask resets the alert count; the same one doesn't.
    [[nodiscard]] string CronMask() const { return FCronMask; }
    void SetCronMask(const string& mask);
    [[nodiscard]] const TumCron* Cron() const { return &FCron; }
    /// Called on the thread that made the job.
    [[nodiscard]] TNotifyEvent OnAlert() const { return FOnAlert; }
    void SetOnAlert(TNotifyEvent event) { FOnAlert = std::move(event); }

    /// The local time of the last match, zero before the first. Any thread.
    [[nodiscard]] TSystemTime LastCronTime() const;
    [[nodiscard]] TDateTime LastTime() const;

    /// Posts the alert if the time matches. Called by the manager once a second, on its thread.
    virtual void CheckTime(const TSystemTime& time);

protected:
    /// For a descendant, which enters itself.
    TumCronJob(TComponent* owner, TDesigning designing, TumTimerManager* manager, TEntry entry);
    void DoAlert() override;

private:
    string FCronMask;
    TNotifyEvent FOnAlert;
    mutable std::mutex FLastLock; ///< of the two below
    TSystemTime FLastCronTime;
    TDateTime FLastTime = 0;
    TumCron FCron;
};

/// A cron job that names the action list to be run when its mask comes due.
class TZQCronJob : public TumCronJob {
    Q_OBJECT
public:
    explicit TZQCronJob(TComponent* owner, TDesigning designing = TDesigning::No,
                        TumTimerManager* manager = nullptr);
    ~TZQCronJob() override;

    PUBLISHED(string, ActionName, FActionName);
};
