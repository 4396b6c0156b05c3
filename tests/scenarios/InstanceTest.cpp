// One agent a user: of two that are started at once exactly one stays, whatever became of the one before.
#include "agent/ControlPipe.h"
#include "platform/NamedPipe.h"
#include "scenarios/PlayedAgent.h"
#include "scenarios/RealAgent.h"

namespace {

bool Answers() {
    try {
        TNamedPipeClient pipe{QLatin1String(ControlPipe::Name)};
        pipe.OpenPipe();
        pipe.WritePipe(QLatin1String(ControlPipe::Check));
        return pipe.Read(60'000) == QLatin1String(ControlPipe::CheckReply);
    } catch (const EPipeError&) {
        return false;
    }
}

bool Runs(TRealAgent& agent) {
    agent.FProcess.waitForFinished(1);
    return agent.FProcess.state() == QProcess::Running;
}

/// The agents of this user are those of one runtime folder.
class Instances : public testing::Test {
protected:
    Instances() { qputenv("XDG_RUNTIME_DIR", FWorkspace.Path("settings").toUtf8()); }
    ~Instances() override { qunsetenv("XDG_RUNTIME_DIR"); }
    const TConfiguredWorkspace FWorkspace;
};

} // namespace

TEST_F(Instances, OfTwoStartedAtOnceExactlyOneStays) {
    constexpr int Rounds = 20;
    for (int round = 0; round < Rounds; ++round) {
        TRealAgent first(FWorkspace.Path("settings"));
        TRealAgent second(FWorkspace.Path("settings"));
        ASSERT_TRUE(Eventually([&] { return !Runs(first) || !Runs(second); })) << round;
        ASSERT_TRUE(Eventually(Answers)) << round;
        ASSERT_NE(Runs(first), Runs(second)) << round;
        TRealAgent& stays = Runs(first) ? first : second;
        TRealAgent& leaves = Runs(first) ? second : first;
        EXPECT_EQ(leaves.FProcess.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(leaves.FProcess.exitCode(), 0);
        EXPECT_EQ(leaves.FProcess.readAllStandardError() + leaves.FProcess.readAllStandardOutput(), "");
        if (round % 4 == 0) {
            stays.FProcess.terminate();
            EXPECT_TRUE(stays.FProcess.waitForFinished(60'000)) << round;
            EXPECT_EQ(stays.FProcess.exitCode(), 0);
        } // else it is killed, and leaves its lock and its sockets to the next
    }
}

TEST_F(Instances, ALaterOneLeavesTheFirstAtItsWork) {
    TRealAgent first(FWorkspace.Path("settings"));
    ASSERT_TRUE(Eventually(Answers));
    ASSERT_TRUE(Eventually([&] { return !FWorkspace.Names("c/logs").isEmpty(); }));
    TRealAgent second(FWorkspace.Path("settings"));
    EXPECT_TRUE(second.FProcess.waitForFinished(60'000));
    EXPECT_TRUE(Runs(first) && Answers());
    for (const string& log : FWorkspace.Names("c/logs"))
        EXPECT_EQ(FWorkspace.Read("c/logs/" + log), "");
}

TEST_F(Instances, ADisplayThatNobodyServesIsNone) {
    qputenv("DISPLAY", ":998");
    TRealAgent agent(FWorkspace.Path("settings"), TRealAgent::TDisplay::OfTest);
    qunsetenv("DISPLAY");
    EXPECT_TRUE(Eventually(Answers));
    agent.FProcess.terminate();
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    EXPECT_EQ(agent.FProcess.exitCode(), 0);
}
