#include "base/Exceptions.h"
#include "platform/HiddenWindow.h"
#include "platform/MessagePump.h"
#include "platform/WorkerThread.h"
#include "testing/Delivery.h"

#include <QCoreApplication>
#include <QTimer>

#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;

namespace {

TMessageQueue& Queue() {
    return *TMessageQueue::OfThisThread();
}

struct TRecorder {
    std::vector<qint64> Received;
    std::thread::id Thread;
    THiddenWindow Window{[this](TMessage& message) {
        Received.push_back(message.LParam);
        Thread = std::this_thread::get_id();
        message.Result = message.LParam * 2;
    }};
};

TEST(MessageQueue, DeliversPostsOfAllThreadsOnTheOwnersThreadInEachPostersOrder) {
    constexpr int Posters = 4;
    constexpr int Each = 500;
    TRecorder recorder;
    std::vector<std::thread> posters;
    for (int p = 0; p < Posters; ++p)
        posters.emplace_back([p, window = recorder.Window.Handle()] {
            for (int i = 0; i < Each; ++i)
                EXPECT_TRUE(PostMessage(window, {.Number = 1025, .LParam = p * Each + i}));
        });
    EXPECT_TRUE(DeliverUntil([&] { return recorder.Received.size() == size_t(Posters * Each); }));
    for (auto& poster : posters)
        poster.join();
    EXPECT_EQ(recorder.Thread, std::this_thread::get_id());
    std::vector<qint64> next(Posters);
    for (const qint64 number : recorder.Received)
        EXPECT_EQ(number % Each, next[size_t(number / Each)]++);
}

TEST(MessageQueue, AWindowThatHasGoneReceivesNothingAndPostsToItFail) {
    std::optional<TRecorder> recorder(std::in_place);
    const TWindowHandle handle = recorder->Window.Handle();
    EXPECT_EQ(SendMessage(handle, {.LParam = 21}), 42);
    EXPECT_TRUE(PostMessage(handle, {.LParam = 1}));
    recorder.reset();
    EXPECT_FALSE(PostMessage(handle, {.LParam = 2}));
    EXPECT_EQ(Queue().Deliver(), 1); // the queued post finds nobody
    EXPECT_EQ(SendMessage(handle, {.LParam = 21}), 0);
    EXPECT_FALSE(PostMessage(0, {}));
}

TEST(MessageQueue, AWindowMayGoWhileItReceives) {
    std::unique_ptr<THiddenWindow> window;
    int received = 0;
    const auto guard = std::make_shared<int>(7); // freed with the procedure
    window = std::make_unique<THiddenWindow>([&, guard](TMessage&) {
        window.reset();
        received += *guard;
    });
    const TWindowHandle handle = window->Handle();
    PostMessage(handle, {});
    PostMessage(handle, {});
    Queue().Deliver();
    EXPECT_EQ(received, 7);
}

TEST(MessageQueue, FindsWindowsByClassName) {
    const THiddenWindow one([](TMessage&) {}, "TfrmOne");
    const THiddenWindow other([](TMessage&) {}, "TfrmOther");
    const THiddenWindow again([](TMessage&) {}, "TfrmOne");
    EXPECT_THAT(FindWindows("TfrmOne"), ElementsAre(one.Handle(), again.Handle()));
    EXPECT_THAT(FindWindows("TfrmNone"), ElementsAre());
}

TEST(MessageQueue, IsBoundedAndKeepsWhatItHas) {
    TRecorder recorder;
    for (size_t i = 0; i < TMessageQueue::Limit; ++i)
        ASSERT_TRUE(PostMessage(recorder.Window.Handle(), {.LParam = qint64(i)}));
    EXPECT_FALSE(PostMessage(recorder.Window.Handle(), {.LParam = -1}));
    EXPECT_EQ(Queue().Deliver(), int(TMessageQueue::Limit));
    EXPECT_EQ(recorder.Received.back(), qint64(TMessageQueue::Limit) - 1);
    EXPECT_TRUE(PostMessage(recorder.Window.Handle(), {}));
    Queue().Deliver();
}

TEST(MessageQueue, OneDeliveryRunsOnlyWhatWasPostedBefore) {
    std::vector<int> ran;
    Queue().Post([&] {
        ran.push_back(1);
        Queue().Post([&] { ran.push_back(3); });
    });
    Queue().Post([&] { ran.push_back(2); });
    EXPECT_EQ(Queue().Deliver(), 2);
    EXPECT_THAT(ran, ElementsAre(1, 2));
    EXPECT_EQ(Queue().Deliver(), 1);
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

TEST(MessageQueue, ACallMayDeliverTheRestItself) {
    std::vector<int> ran;
    Queue().Post([&] {
        Queue().Deliver();
        ran.push_back(1);
    });
    Queue().Post([&] { ran.push_back(2); });
    EXPECT_EQ(Queue().Deliver(), 1);
    EXPECT_THAT(ran, ElementsAre(2, 1));
}

TEST(MessagePump, DeliversInTheEventLoopAndSurvivesExceptions) {
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    TMessagePump pump;
    std::vector<int> ran;
    const auto queue = TMessageQueue::OfThisThread();
    testing::internal::CaptureStderr();
    std::thread poster([&] {
        queue->Post([&] { ran.push_back(1); });
        queue->Post([] { throw Exception("out of a handler"); });
        queue->Post([&] {
            ran.push_back(2); // stays queued behind the exception, and comes in the next turn
            QCoreApplication::quit();
        });
    });
    QTimer::singleShot(10'000, &application, &QCoreApplication::quit);
    QCoreApplication::exec();
    poster.join();
    EXPECT_THAT(ran, ElementsAre(1, 2));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unhandled exception: out of a handler\n");
}

/// Asks its owner for a call and ends when the owner has made it.
class TAskingThread final : public TWorkerThread {
public:
    explicit TAskingThread(std::shared_ptr<TMessageQueue> owner)
        : TWorkerThread("asking"), FOwner(std::move(owner)) {
        Start();
    }
    ~TAskingThread() override { Stop(); }

private:
    void Execute() override {
        std::atomic<bool> answered = false;
        FOwner->Post([&] { answered = true; });
        while (!answered)
            Sleep(1);
    }
    std::shared_ptr<TMessageQueue> FOwner;
};

TEST(WorkerThread, TheOwnerCanDeliverWhileItWaits) {
    TMessageQueue::OfThisThread()->Post([] { throw std::runtime_error("a handler's fault"); });
    TAskingThread thread(TMessageQueue::OfThisThread());
    testing::internal::CaptureStderr();
    int calls = 0;
    thread.WaitForDelivering([&] { ++calls; });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unhandled exception: a handler's fault\n");
    EXPECT_GT(calls, 0);
    EXPECT_TRUE(thread.Finished());
    EXPECT_FALSE(thread.Terminated());
}

/// Sleeps for an hour, then raises.
class TSleepingThread final : public TWorkerThread {
public:
    TSleepingThread() : TWorkerThread("sleeping", TThreadPriority::Lowest) { Start(); }
    ~TSleepingThread() override { Stop(); }

private:
    void Execute() override {
        Sleep(3'600'000);
        throw Exception("woken");
    }
};

TEST(WorkerThread, TerminateEndsASleepAndAnEscapingExceptionEndsOnlyTheThread) {
    testing::internal::CaptureStderr();
    {
        TSleepingThread thread;
        EXPECT_FALSE(thread.Finished());
        thread.Terminate();
        thread.WaitFor();
        EXPECT_TRUE(thread.Finished());
        thread.WaitFor();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "The thread \"sleeping\" ended: woken\n");
}

} // namespace
