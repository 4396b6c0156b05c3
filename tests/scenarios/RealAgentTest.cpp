// The real program: it runs without a display, stops in order, and can be killed at any instant.
#include "scenarios/RealAgent.h"
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include <QRandomGenerator>

#include <csignal>
#include <sys/resource.h>

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

TEST(RealAgent, MayHaveAsManyFilesOpenAsTheSystemAllows) {
    const TConfiguredWorkspace workspace;
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit low{256, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
    TRealAgent agent(workspace.Path("settings"));
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
    EXPECT_TRUE(Eventually([&] {
        rlimit limit{};
        return ::prlimit(pid_t(agent.FProcess.processId()), RLIMIT_NOFILE, nullptr, &limit) == 0 &&
               limit.rlim_cur == former.rlim_max;
    }));
}

TEST(RealAgent, MissingConfigurationFolderIsTold) {
    const TConfiguredWorkspace workspace;
    QDir(workspace.Path("c")).removeRecursively();
    TRealAgent agent(workspace.Path("settings"));
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    EXPECT_EQ(agent.FProcess.exitCode(), 1) << "a service starts again";
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

/// More where asked for.
static int KillsWanted() {
    const int wanted = qEnvironmentVariableIntValue("MORVANE_KILLS");
    return wanted > 0 ? wanted : 20;
}

TEST(RealAgent, KilledAtRandomInstants) {
    const int kills = KillsWanted();
    int inside = 0;
    for (int round = 0; inside < kills && round < 2 * kills; ++round) {
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        for (int i = 0; i < 60; ++i)
            drops.Drop(QStringLiteral("%1.pdf").arg(i), 1 + i % 3);
        TRealAgent agent(workspace.Path("settings"));
        ASSERT_TRUE(Eventually([&] { return !workspace.Names("in/output").isEmpty(); }));
        const QList<pid_t> workers = agent.Workers();
        EXPECT_FALSE(workers.isEmpty());
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(20'000)));
        agent.Kill();
        for (const pid_t worker : workers)
            EXPECT_TRUE(Eventually([&] { return ::kill(worker, 0) != 0; })) << "a worker outlives its agent";
        const TConservation found = drops.Look();
        EXPECT_EQ(found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults, 0);
        inside += found.Left > 0 ? 1 : 0;
    }
    EXPECT_EQ(inside, kills);
    std::printf("%d kills inside the work\n", inside);
}

TEST(RealAgent, ItsWorkersKilledAtRandomInstants) {
    const int kills = KillsWanted();
    const TConfiguredWorkspace workspace;
    TDrops drops(workspace.Path("in"));
    TRealAgent agent(workspace.Path("settings"));
    int dropped = 0;
    int killed = 0;
    while (killed < kills) {
        for (; workspace.Names("in").filter(".pdf").size() < 300; ++dropped)
            drops.Drop(QStringLiteral("%1.pdf").arg(dropped), 1 + dropped % 3);
        // Longer than a worker takes to begin, or none ever would.
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(150'000)));
        const QList<pid_t> workers = agent.Workers();
        if (workers.isEmpty())
            continue;
        const pid_t worker = workers.at(QRandomGenerator::global()->bounded(int(workers.size())));
        killed += ::kill(worker, SIGKILL) == 0 ? 1 : 0;
    }
    EXPECT_TRUE(Eventually([&] {
        return workspace.Names("in").filter(".pdf").isEmpty() &&
               workspace.Names("in/process").filter(".morvane").isEmpty();
    }));
    agent.FProcess.terminate();
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    const TConservation found = drops.Look();
    EXPECT_EQ(
        found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults + found.Left + found.Hidden, 0);
    // A file whose worker was killed twice has had its two tries.
    EXPECT_EQ(found.Results + workspace.Names("in/Error").size(), dropped);
    EXPECT_LE(workspace.Names("in/Error").size(), killed / 2);
    std::printf("%d files, %d kills of workers, %d files failed\n", dropped, killed,
                int(workspace.Names("in/Error").size()));
}

/// Of two users, or of two configurations, over one folder: each source has one result, but for those whose
/// agent was killed between publishing and settling.
TEST(RealAgent, TwoOverOneFolderShareTheWorkWhateverDies) {
    const int wanted = qEnvironmentVariableIntValue("MORVANE_FILES");
    const int files = wanted > 0 ? wanted : 300;
    const TConfiguredWorkspace workspace;
    workspace.Write("other/morvane/settings.ini", workspace.Read("settings/morvane/settings.ini"));
    TDrops drops(workspace.Path("in"));
    for (int i = 0; i < files; ++i)
        drops.Drop(QStringLiteral("%1.pdf").arg(i), 1 + i % 3);
    const string settings[2] = {workspace.Path("settings"), workspace.Path("other")};
    std::unique_ptr<TRealAgent> agents[2];
    const auto done = [&] {
        return workspace.Names("in").filter(".pdf").isEmpty() &&
               workspace.Names("in/process").filter(".morvane").isEmpty();
    };
    int kills = 0;
    for (int round = 0; round < 10; ++round) {
        for (int i = 0; i < 2; ++i)
            if (agents[i] == nullptr)
                agents[i] = std::make_unique<TRealAgent>(settings[i]);
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(1'500'000)));
        agents[round % 2].reset();
        ++kills;
    }
    for (int i = 0; i < 2; ++i) { // what the last ones took is given back at a start
        agents[i].reset();
        agents[i] = std::make_unique<TRealAgent>(settings[i]);
    }
    EXPECT_TRUE(Eventually(done));
    agents[0].reset();
    agents[1].reset();
    const TConservation found = drops.Look();
    EXPECT_EQ(found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults + found.Left, 0);
    EXPECT_GE(found.Results, files);
    EXPECT_LE(found.Results, files + 16 * kills);
    EXPECT_TRUE(workspace.Names("in/Error").isEmpty());
    std::printf("%d files, %d kills, %d second results\n", files, kills, found.Results - files);
}
