#include "base/Exceptions.h"
#include "testing/Delivery.h"
#include "timers/AccurateTimer.h"
#include "timers/CronJob.h"
#include "timers/ManualClock.h"
#include "timers/TimerManager.h"

#include <QPointer>

#include <gmock/gmock.h>

namespace {

TSystemTime At(int hour, int minute, int second) {
    TSystemTime time{.Year = 2026, .Month = 11, .DayOfWeek = 0, .Day = 15};
    time.Hour = quint16(hour);
    time.Minute = quint16(minute);
    time.Second = quint16(second);
    return time;
}

/// A manager by a clock that the test moves.
class TimerTest : public testing::Test {
protected:
    ~TimerTest() override { EndManager(); }
    void EndManager() {
        FClock.Release();
        FManager.reset();
    }
    std::unique_ptr<TumCustomAccurateTimer> NewTimer(Cardinal interval) {
        auto timer = std::make_unique<TumCustomAccurateTimer>(nullptr, TDesigning::No, FManager.get());
        timer->SetInterval(interval);
        return timer;
    }
    std::unique_ptr<TumCronJob> NewJob(const string& mask) {
        auto job = std::make_unique<TumCronJob>(nullptr, TDesigning::No, FManager.get());
        job->SetCronMask(mask);
        return job;
    }
    static void Deliver() { TMessageQueue::OfThisThread()->Deliver(); }

    TManualClock FClock{4'294'967'290u}; // 6 ms before the count wraps
    std::unique_ptr<TumTimerManager> FManager = std::make_unique<TumTimerManager>(FClock);
};

TEST_F(TimerTest, TheManagerSleepsToTheNextMultipleOfTenMilliseconds) {
    const auto timer = NewTimer(1000);
    for (const Cardinal ms : {0u, 3u, 9u, 12u}) {
        FClock.Advance(ms);
        EXPECT_EQ(FClock.LastSleep(), 10 - int(FClock.TickCount() % 10));
    }
}

TEST_F(TimerTest, TimePastTheIntervalIsKeptAlsoAcrossTheWrapOfTheTickCount) {
    const auto timer = NewTimer(1000);
    FClock.Advance(0);
    EXPECT_EQ(timer->AlertsCount(), 0u);
    FClock.Advance(995);
    EXPECT_EQ(timer->Current(), 995u);
    FClock.Advance(8);
    EXPECT_EQ(timer->Current(), 3u);
    EXPECT_EQ(timer->AlertsCount(), 0u); // posted, not delivered
    Deliver();
    EXPECT_EQ(timer->AlertsCount(), 1u);
    timer->Reset();
    EXPECT_EQ(timer->AlertsCount(), 0u);
    EXPECT_EQ(timer->Current(), 0u);
}

TEST_F(TimerTest, SeveralIntervalsInOneCycleAreOneAlertOnTheMakersThread) {
    const auto timer = NewTimer(5);
    FClock.Advance(0);
    std::vector<std::thread::id> alerts;
    timer->SetOnTimer([&](TumCustomAccurateTimer& sender) {
        EXPECT_EQ(&sender, timer.get());
        alerts.push_back(std::this_thread::get_id());
    });
    for (int i = 0; i < 3; ++i)
        FClock.Advance(10);
    Deliver();
    EXPECT_THAT(alerts, testing::ElementsAre(std::this_thread::get_id(), std::this_thread::get_id(),
                                             std::this_thread::get_id()));
}

TEST_F(TimerTest, NoOldTimeIsCredited) {
    FClock.Pass(700); // no timers: nobody sleeps by this clock
    EXPECT_FALSE(FClock.WasAskedToSleep());
    const auto timer = NewTimer(1000);
    FClock.Advance(100);
    EXPECT_EQ(timer->Current(), 100u);
    timer->SetActive(/*active=*/false);
    FClock.Advance(5000);
    timer->SetActive(/*active=*/true);
    FClock.Advance(50);
    EXPECT_EQ(timer->Current(), 150u);
    Deliver();
    EXPECT_EQ(timer->AlertsCount(), 0u);
}

TEST_F(TimerTest, AnIntervalOfZeroEndsTheThreadAndFreesTheList) {
    const auto first = NewTimer(0);
    const auto second = NewTimer(1000);
    testing::internal::CaptureStderr();
    FClock.Release();
    FManager->WaitFor();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "The thread \"timers\" ended: A timer's interval is 0.\n");
    EXPECT_EQ(second->Current(), 0u);
    const auto third = NewTimer(10); // the lock is free
    EXPECT_EQ(FManager->Timers().Count(), 3);
}

TEST_F(TimerTest, AlarmsAreCheckedOnceForEachChangeOfTheSecond) {
    const auto every = NewJob("");
    const auto noon = NewJob("0 0 12");
    std::vector<const TumCronJob*> alerted;
    for (TumCronJob* job : {every.get(), noon.get()})
        job->SetOnAlert([&](TumCronJob& sender) { alerted.push_back(&sender); });
    EXPECT_EQ(every->LastCronTime(), TSystemTime());
    const struct {
        TSystemTime Time;
        size_t Alerts;
    } looks[] = {
        {At(11, 59, 59), 1}, {At(11, 59, 59), 0}, {At(12, 0, 0), 2},
        {At(12, 0, 0), 0},   {At(12, 0, 1), 1},   {At(12, 0, 0), 2}, // set back: looked at again
        {At(12, 1, 0), 0},                                           // exactly a minute later: skipped
    };
    for (const auto& look : looks) {
        alerted.clear();
        FClock.Advance(10, look.Time);
        Deliver();
        EXPECT_EQ(alerted.size(), look.Alerts) << look.Time.Minute << ':' << look.Time.Second;
    }
    EXPECT_EQ(noon->AlertsCount(), 2u);
    EXPECT_EQ(noon->LastCronTime(), At(12, 0, 0));
    EXPECT_EQ(noon->LastTime(), 46341.5);
    noon->SetActive(/*active=*/false);
    FClock.Advance(10, At(12, 0, 1));
    FClock.Advance(10, At(12, 0, 0));
    Deliver();
    EXPECT_EQ(noon->AlertsCount(), 2u);
}

TEST_F(TimerTest, ATimerThatGoesTakesItsAlertWithIt) {
    auto timer = NewTimer(10);
    int alerts = 0;
    timer->SetOnTimer([&](TumCustomAccurateTimer&) { ++alerts; });
    FClock.Advance(10);
    timer.reset();
    EXPECT_EQ(FManager->Timers().Count(), 0);
    Deliver();
    EXPECT_EQ(alerts, 0);
}

TEST_F(TimerTest, EachKindHasItsListAndTheEndOfTheManagerFreesAllOfBoth) {
    std::vector<QPointer<TumCustomTimer>> timers;
    for (int i = 0; i < 3; ++i) {
        timers.emplace_back(NewTimer(1000).release());
        timers.emplace_back(NewJob("* *").release());
    }
    timers.emplace_back(new TZQCronJob(nullptr, TDesigning::No, FManager.get()));
    EXPECT_EQ(FManager->Timers().Count(), 3);
    EXPECT_EQ(FManager->Alarms().Count(), 4);
    EndManager();
    for (const auto& timer : timers)
        EXPECT_TRUE(timer.isNull());
}

TEST(TimerManagerUse, TheProcessHasOneManagerWhileAnybodyUsesIt) {
    EXPECT_THROW((void)TimerManager(), Exception);
    EXPECT_THROW(TumCustomAccurateTimer(nullptr), Exception);
    const TumCustomAccurateTimer designed(nullptr, TDesigning::Yes);
    EXPECT_EQ(designed.Handle(), 0u);
    const auto first = std::make_unique<TTimerManagerUse>();
    TumTimerManager* manager = &TimerManager();
    {
        const TTimerManagerUse second;
        EXPECT_EQ(&TimerManager(), manager);
    }
    EXPECT_EQ(&TimerManager(), manager);
    TumCustomAccurateTimer timer(nullptr); // on the machine's clock
    timer.SetInterval(20);
    EXPECT_TRUE(DeliverUntil([&] { return timer.AlertsCount() >= 3; }));
}

/// Timers come, change and go while the manager walks its lists.
TEST(TimerManagerUse, TimersMayComeAndGoOnManyThreads) {
    const TTimerManagerUse use;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([] {
            Cardinal alerts = 0;
            for (int i = 0; i < 40 || alerts == 0; ++i) {
                TumCustomAccurateTimer timer(nullptr);
                TZQCronJob job(nullptr);
                timer.SetInterval(1);
                job.SetCronMask("0+2");
                job.SetCronMask("* * *");
                DeliverFor(5);
                job.SetActive(/*active=*/false);
                timer.Reset();
                DeliverFor(2);
                alerts += timer.AlertsCount();
            }
            EXPECT_GT(alerts, 0u);
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(TimerManager().Timers().Count() + TimerManager().Alarms().Count(), 0);
}

} // namespace
