// The real program: it runs without a display, stops in order, and can be killed at any instant.
#include "scenarios/RealAgent.h"
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include <QRandomGenerator>

TEST(RealAgent, WorksAndStopsOnSigterm) {
    const TConfiguredWorkspace workspace;
    TRealAgent agent(workspace.Path("settings"));
    TDrops drops(workspace.Path("in"));
    drops.Drop("a.pdf");
    EXPECT_TRUE(Eventually([&] { return workspace.Has("in/process/a.pdf") && !workspace.Has("in/a.pdf"); }));
    EXPECT_EQ(RunProgram("qpdf", {"--check", workspace.Path("in/output/a.pdf")}).Exit, 0);
    agent.FProcess.terminate();
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    EXPECT_EQ(agent.FProcess.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(agent.FProcess.exitCode(), 0);
}

TEST(RealAgent, MissingConfigurationFolderIsTold) {
    const TConfiguredWorkspace workspace;
    QDir(workspace.Path("c")).removeRecursively();
    TRealAgent agent(workspace.Path("settings"));
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    EXPECT_EQ(agent.FProcess.exitCode(), 0);
    EXPECT_TRUE(agent.FProcess.readAllStandardError().contains("Configuration Path is missing or invalid. "));
}

TEST(RealAgent, FileBeingWrittenWaitsForItsWriter) {
    const TConfiguredWorkspace workspace;
    MakePdf(workspace.Path("whole.pdf"), 2);
    const QByteArray whole = workspace.Read("whole.pdf");
    TRealAgent agent(workspace.Path("settings"));
    QFile slow(workspace.Path("in/slow.pdf"));
    ASSERT_TRUE(slow.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    for (int part = 0; part < 4; ++part) {
        slow.write(
            whole.mid(part * whole.size() / 4, (part + 1) * whole.size() / 4 - part * whole.size() / 4));
        ::usleep(600'000);
    }
    EXPECT_TRUE(QDir(workspace.Path("in/output")).isEmpty());
    slow.close();
    EXPECT_TRUE(Eventually([&] { return workspace.Has("in/output/slow.pdf"); }));
    EXPECT_TRUE(Eventually([&] { return workspace.Read("in/process/slow.pdf") == whole; }));
    EXPECT_FALSE(workspace.Has("in/Error/slow.pdf"));
}

TEST(RealAgent, KilledAtRandomInstants) {
    constexpr int Kills = 20;
    int inside = 0;
    for (int round = 0; inside < Kills && round < 2 * Kills; ++round) {
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        for (int i = 0; i < 60; ++i)
            drops.Drop(QStringLiteral("%1.pdf").arg(i), 1 + i % 3);
        TRealAgent agent(workspace.Path("settings"));
        ASSERT_TRUE(Eventually([&] { return !workspace.Names("in/output").isEmpty(); }));
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(20'000)));
        agent.Kill();
        const TConservation found = drops.Look();
        EXPECT_EQ(found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults, 0);
        inside += found.Left > 0 ? 1 : 0;
    }
    EXPECT_EQ(inside, Kills);
    std::printf("%d kills inside the work\n", inside);
}
