// kill -9 at random instants, and at every file-system call of one file.
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include <QRandomGenerator>

#include <atomic>
#include <chrono>

namespace {

std::atomic<int> CallsMade = 0;
std::atomic<int> DieAt = 0;

/// Counts the calls and dies before the one that it is told.
int CountAndDie(const char*) {
    if (++CallsMade == DieAt)
        ::kill(::getpid(), SIGKILL);
    return 0;
}

constexpr int FilesARound = 12;

void DropMany(TDrops& drops) {
    for (int i = 0; i < FilesARound; ++i) {
        if (i % 4 == 3)
            drops.DropText(QStringLiteral("bad %1.pdf").arg(i), "no PDF " + QByteArray::number(i));
        else
            drops.Drop(QStringLiteral("file %1.pdf").arg(i), 1 + i % 3);
    }
}

void ExpectConserved(const TConservation& found) {
    EXPECT_EQ(found.Lost, 0);
    EXPECT_EQ(found.MoreCopies, 0);
    EXPECT_EQ(found.BadResults, 0);
}

} // namespace

TEST(Kill, AtRandomInstants) {
    constexpr int Kills = 200;
    SetFileSync(FileSync::Off); // a kill loses nothing that the system has taken
    using TClock = std::chrono::steady_clock;
    const auto begin = TClock::now();
    {
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        DropMany(drops);
        WaitForChild(InChild([&] { PlayTicks(workspace, 1); }));
    }
    auto length = std::chrono::duration_cast<std::chrono::microseconds>(TClock::now() - begin).count();

    int inside = 0;
    int secondCopies = 0;
    for (int round = 0; inside < Kills && round < 5 * Kills; ++round) {
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        DropMany(drops);
        const pid_t child = InChild([&] { PlayTicks(workspace, 1); });
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(int(length))));
        ::kill(child, SIGKILL);
        if (WaitForChild(child)) { // it was through already: the machine was busier when it was timed
            length -= length / 20;
            continue;
        }
        const TConservation found = drops.Look();
        ExpectConserved(found);
        EXPECT_LE(found.SecondCopies, 1);
        secondCopies += found.SecondCopies;
        // Inside the work: some files are done, or the first has at least been begun.
        inside += found.Left < FilesARound || QDir(workspace.Path("in/output")).exists() ? 1 : 0;
        // The next start finishes what was left, and nothing is lost by that either.
        ASSERT_TRUE(WaitForChild(InChild([&] { PlayTicks(workspace, 1); })));
        const TConservation after = drops.Look();
        ExpectConserved(after);
        EXPECT_EQ(after.Left, 0);
        for (const char* folder : {"in/output", "in/process", "in/Error"})
            EXPECT_TRUE(workspace.Names(folder).filter(".part").isEmpty()) << "a leftover was not swept";
        if (testing::Test::HasFailure())
            break;
    }
    SetFileSync(FileSync::On);
    EXPECT_EQ(inside, Kills);
    std::printf("%d kills inside the work, %d left a second copy\n", inside, secondCopies);
}

class KillSweep : public testing::TestWithParam<bool> {};

TEST_P(KillSweep, AtEachFileSystemCall) {
    const bool good = GetParam();
    const auto dropOne = [good](TDrops& drops) {
        if (good)
            drops.Drop("a.pdf", 2);
        else
            drops.DropText("a.pdf", "no PDF");
    };
    int secondCopies = 0;
    int at = 1;
    for (bool through = false; !through; ++at) {
        SCOPED_TRACE("before call " + std::to_string(at));
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        dropOne(drops);
        through = WaitForChild(InChild([&] {
            DieAt = at;
            SetFaultHook(CountAndDie);
            PlayTicks(workspace, 1);
        }));
        const TConservation found = drops.Look();
        ExpectConserved(found);
        secondCopies += found.SecondCopies;
        ASSERT_TRUE(WaitForChild(InChild([&] { PlayTicks(workspace, 1); })));
        const TConservation after = drops.Look();
        ExpectConserved(after);
        EXPECT_EQ(after.Left, 0);
        ASSERT_LT(at, 200) << "the run never gets through";
    }
    // Between the copy and the delete there are at least the folder's sync and the delete itself.
    EXPECT_GE(secondCopies, 2);
    EXPECT_GT(at, good ? 15 : 10) << "calls are no longer seen by the seam";
    std::printf("killed before each of %d calls, %d times with a second copy\n", at - 2, secondCopies);
}

INSTANTIATE_TEST_SUITE_P(, KillSweep, testing::Bool(),
                         [](const auto& param) { return param.param ? "GoodFile" : "BadFile"; });
