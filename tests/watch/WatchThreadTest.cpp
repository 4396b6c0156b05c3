#include "watch/WatchThread.h"
#include "base/Exceptions.h"
#include "testing/Delivery.h"

#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;

namespace {

/// What the test and the notifications that it hands out share.
struct TFolders {
    std::mutex Lock;
    std::vector<QString> Opened;
    std::vector<std::thread::id> Threads;
    int Pending = 0; ///< changes not yet armed away; Endless for a burst that doesn't stop
    int Armed = 0;
    std::atomic<int> Held = 0; ///< notifications that the thread has
    TEvent Ready;

    static constexpr int Endless = -1;

    void Change(int count) {
        const std::lock_guard guard(Lock);
        Pending = count;
        if (count != 0)
            Ready.Set();
    }
    template <class T> T Get(T TFolders::*member) {
        const std::lock_guard guard(Lock);
        return this->*member;
    }
};

class TFakeNotification : public TChangeNotification {
public:
    explicit TFakeNotification(TFolders& folders) : FFolders(folders) { ++FFolders.Held; }
    ~TFakeNotification() override { --FFolders.Held; }
    int Descriptor() const override { return FFolders.Ready.Descriptor(); }
    bool Take() override {
        const std::lock_guard guard(FFolders.Lock);
        if (FFolders.Pending == 0)
            (void)FFolders.Ready.Take();
        return FFolders.Pending != 0;
    }
    void FindNext() override {
        const std::lock_guard guard(FFolders.Lock);
        ++FFolders.Armed;
        if (FFolders.Pending > 0)
            --FFolders.Pending;
    }

private:
    TFolders& FFolders;
};

class WatchThreadTest : public testing::Test {
protected:
    void Watch(const QString& directory) {
        const auto open = [this](const string& folder, TSubtree subtree,
                                 Cardinal filters) -> std::unique_ptr<TChangeNotification> {
            const std::lock_guard guard(FFolders.Lock);
            FFolders.Opened.push_back(folder);
            FFolders.Threads.push_back(std::this_thread::get_id());
            EXPECT_TRUE(subtree == TSubtree::Yes && filters == 16);
            EXPECT_EQ(FFolders.Held, 0); // the system gives a user only so many
            if (folder == "raises")
                throw Exception("no such luck");
            return folder == "missing" ? nullptr : std::make_unique<TFakeNotification>(FFolders);
        };
        FThread = std::make_unique<TWatchThread>(
            TWatchOrder{FWindow.Handle(), directory, TSubtree::Yes, /*Filters=*/16, open});
    }
    bool Opens(std::vector<QString> folders) {
        return DeliverUntil([&] { return FFolders.Get(&TFolders::Opened) == folders; });
    }

    TFolders FFolders;
    int FMessages = 0;
    THiddenWindow FWindow{[this](TMessage& message) {
        EXPECT_EQ(message.Number, 1025u);
        ++FMessages;
    }};
    std::unique_ptr<TWatchThread> FThread;
};

TEST_F(WatchThreadTest, ABurstIsOneMessageAndTheNextBurstAnother) {
    Watch("a");
    for (int burst = 1; burst <= 3; ++burst) {
        FFolders.Change(burst * 3);
        EXPECT_TRUE(DeliverUntil([&] { return FMessages == burst; }));
        DeliverFor(50);
        EXPECT_EQ(FMessages, burst);
    }
    EXPECT_EQ(FFolders.Get(&TFolders::Armed), 3 + 6 + 9);
}

TEST_F(WatchThreadTest, ABurstThatDoesNotEndIsNotReportedButHoldsUpNothing) {
    Watch("a");
    FFolders.Change(TFolders::Endless);
    EXPECT_TRUE(DeliverUntil([&] { return FFolders.Get(&TFolders::Armed) > 100; }));
    EXPECT_EQ(FMessages, 0);
    FThread->SetDirectory("b");
    EXPECT_TRUE(Opens({"a", "b"}));
    FFolders.Change(1);
    EXPECT_TRUE(DeliverUntil([&] { return FMessages == 1; }));
    FFolders.Change(TFolders::Endless);
    FThread.reset();
    FFolders.Change(0);
    const int armed = FFolders.Get(&TFolders::Armed);
    DeliverFor(50);
    EXPECT_EQ(FMessages, 1);
    EXPECT_EQ(FFolders.Get(&TFolders::Armed), armed);
}

TEST_F(WatchThreadTest, ASeriesOfDirectoriesEndsInTheLastOnTheSameThread) {
    Watch("a");
    FThread->SetDirectory("a");
    DeliverFor(150);
    EXPECT_TRUE(Opens({"a"}));
    FThread->SetDirectory("b"); // passed over if the next comes soon enough
    FThread->SetDirectory("missing");
    EXPECT_TRUE(DeliverUntil([&] { return FFolders.Get(&TFolders::Opened).back() == "missing"; }));
    const size_t opened = FFolders.Get(&TFolders::Opened).size();
    DeliverFor(150); // it isn't tried again
    EXPECT_EQ(FFolders.Get(&TFolders::Opened).size(), opened);
    FThread->SetDirectory("d");
    EXPECT_TRUE(DeliverUntil([&] { return FFolders.Get(&TFolders::Opened).back() == "d"; }));
    const auto threads = FFolders.Get(&TFolders::Threads);
    // The first is opened by the maker, so that it is watched from the start.
    EXPECT_EQ(threads[0], std::this_thread::get_id());
    EXPECT_NE(threads[1], threads[0]);
    EXPECT_EQ(threads[2], threads[1]);
    FThread->SetDirectory("missing");
    FThread.reset(); // also from there
}

TEST_F(WatchThreadTest, AThreadThatFailedCanStillBeEnded) {
    testing::internal::CaptureStderr();
    Watch("a");
    FThread->SetDirectory("raises");
    EXPECT_TRUE(Opens({"a", "raises"}));
    FThread.reset();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "The thread \"folder watch\" ended: no such luck\n");
}

} // namespace
