#include "agent/NamedPipeThread.h"

#include "agent/AgentStatus.h"
#include "base/Exceptions.h"
#include "platform/NamedPipeServer.h"
#include "testing/RuntimeFolder.h"

#include <QFileInfo>

#include <chrono>
#include <gmock/gmock.h>

namespace {

/// The form, as the pipe sees it.
struct TTarget : TRefreshTarget {
    void RefreshFolders() override {
        if (Gone)
            throw Exception("The folders thread has ended.");
        ++Folders;
    }
    void RefreshActions() override { ++Actions; }
    string SetPaused(const string& /*folder*/, bool /*paused*/) override { return {}; }

    std::atomic<int> Folders = 0;
    std::atomic<int> Actions = 0;
    std::atomic<bool> Gone = false;
};

class NamedPipeThreadTest : public TRuntimeFolderTest {
protected:
    /// What the agent answers to these messages on one connection, the last of them being "check".
    static QString Say(const QStringList& messages) {
        TNamedPipeClient client("morvane_watched_folders");
        const auto patience = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (true) {
            try {
                client.OpenPipe();
                break;
            } catch (const EPipeError&) { // the thread has yet to bring the pipe up
                if (std::chrono::steady_clock::now() > patience)
                    throw;
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
        for (const QString& message : messages)
            client.WritePipe(message);
        client.WritePipe("check");
        QStringList replies;
        while (replies.size() <= messages.count("check"))
            replies += client.Read(60'000);
        return replies.join(' ') + client.Read(0);
    }

    TTarget FTarget;
    TAgentStatus FStatus;
    std::atomic<TRefreshTarget*> FForm = nullptr;
    const TNamedPipeThread::TFindTarget FFind = [this] { return FForm.load(); };
};

TEST_F(NamedPipeThreadTest, AnswersCheckAndPassesRefreshesOnExactly) {
    const TNamedPipeThread thread(FFind, FStatus);
    EXPECT_EQ(Say({"refresh.folders"}), "OK"); // no form yet: the command is dropped
    FForm = &FTarget;
    EXPECT_EQ(FTarget.Folders, 0);
    EXPECT_EQ(Say({"CHECK", " check", "check ", "chec", "refresh", "Refresh.folders", "refresh.folders "}),
              "OK");
    EXPECT_EQ(FTarget.Folders + FTarget.Actions, 0);
    EXPECT_EQ(Say({"refresh.folders", "check", "refresh.folders"}), "OK OK");
    EXPECT_EQ(FTarget.Folders, 2);
    EXPECT_EQ(FTarget.Actions, 0);
    EXPECT_EQ(Say({"refresh.actions"}), "OK");
    EXPECT_EQ(FTarget.Folders, 2);
    EXPECT_EQ(FTarget.Actions, 1);
}

TEST_F(NamedPipeThreadTest, AnswersStatusHoweverLongItIs) {
    for (int i = 0; i < 2000; ++i)
        FStatus.CountDone(QStringLiteral("/folder\n%1").arg(i));
    const TNamedPipeThread thread(FFind, FStatus);
    EXPECT_EQ(Say({}), "OK");
    TNamedPipeClient client("morvane_watched_folders");
    client.OpenPipe();
    client.WritePipe("status");
    client.WritePipe("check");
    const QString line = client.Read(60'000);
    EXPECT_GT(line.size(), 100'000);
    EXPECT_TRUE(line.startsWith('{') && line.endsWith('}'));
    EXPECT_EQ(client.Read(60'000), "OK");
}

TEST_F(NamedPipeThreadTest, StopsUnaskedAndTakesThePipeAway) {
    {
        const TNamedPipeThread thread(FFind, FStatus);
        EXPECT_EQ(Say({}), "OK");
    }
    EXPECT_FALSE(QFileInfo::exists(Path("morvane_watched_folders")));
}

TEST_F(NamedPipeThreadTest, NobodyLeftToRefreshEndsThePipeAndNothingElse) {
    FForm = &FTarget;
    FTarget.Gone = true;
    testing::internal::CaptureStderr();
    TNamedPipeThread thread(FFind, FStatus);
    EXPECT_EQ(Say({}), "OK");
    TNamedPipeClient client("morvane_watched_folders");
    client.OpenPipe();
    client.WritePipe("refresh.folders");
    thread.WaitFor();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "The thread \"control pipe\" ended: The folders thread has ended.\n");
    EXPECT_THROW(client.OpenPipe(), EPipeError);
}

TEST_F(NamedPipeThreadTest, APipeThatIsTakenEndsTheThreadWithALine) {
    const TNamedPipeThread first(FFind, FStatus);
    EXPECT_EQ(Say({}), "OK");
    testing::internal::CaptureStderr();
    TNamedPipeThread second(FFind, FStatus);
    second.WaitFor();
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "The thread \"control pipe\" ended: Another process serves the pipe \"morvane_watched_folders\".\n");
    EXPECT_EQ(Say({}), "OK");
}

} // namespace
