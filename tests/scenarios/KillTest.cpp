// kill -9 at random instants, and at every file-system call of one file.
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include <QRandomGenerator>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

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

/// `Copies` are allowed where file systems meet.
int Copies = 0;
void ExpectConserved(const TConservation& found) {
    EXPECT_EQ(found.Lost, 0);
    EXPECT_LE(found.SecondCopies, Copies);
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
    int doubled = 0;
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
        // Inside the work: some files are done, or the first has at least been begun.
        inside += found.Left < FilesARound || QDir(workspace.Path("in/output")).exists() ? 1 : 0;
        // The next start finishes what was left, and nothing is lost by that either.
        ASSERT_TRUE(WaitForChild(InChild([&] { PlayTicks(workspace, 1); })));
        const TConservation after = drops.Look();
        ExpectConserved(after);
        EXPECT_EQ(after.Left, 0);
        EXPECT_EQ(after.Hidden, 0) << "a leftover was not swept";
        doubled += after.Results - after.Left > 9 ? 1 : 0;
        if (testing::Test::HasFailure())
            break;
    }
    SetFileSync(FileSync::On);
    EXPECT_EQ(inside, Kills);
    std::printf("%d kills inside the work, %d left a second result\n", inside, doubled);
}

/// What a run meets while it is killed before each of its calls.
struct TSweepCase {
    const char* Name;
    bool Good;
    std::vector<std::string> Failing;
    int Error;
};

void PrintTo(const TSweepCase& sweep, std::ostream* out) {
    *out << sweep.Name;
}

class KillSweep : public testing::TestWithParam<TSweepCase> {
protected:
    static int CountFailAndDie(const char* call) {
        (void)CountAndDie(call);
        for (const std::string& name : Case->Failing)
            if (name == call)
                return Case->Error;
        return 0;
    }
    static inline const TSweepCase* Case = nullptr;
};

TEST_P(KillSweep, AtEachFileSystemCall) {
    Case = &GetParam();
    const bool poor = qEnvironmentVariableIsSet("MORVANE_POOR_FILES"); // the file system itself
    int doubled = 0;
    int at = 1;
    for (bool through = false; !through; ++at) {
        SCOPED_TRACE("before call " + std::to_string(at));
        const TConfiguredWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        if (Case->Good)
            drops.Drop("a.pdf", 2);
        else
            drops.DropText("a.pdf", "no PDF");
        const auto run = [&](int die) {
            return WaitForChild(InChild([&] {
                CallsMade = 0;
                DieAt = die;
                SetFaultHook(CountFailAndDie);
                PlayTicks(workspace,
                          poor || Case->Error == ENOLCK ? 4 : 1); // the configuration is looked at twice, too
            }));
        };
        through = run(at);
        const TConservation found = drops.Look();
        EXPECT_EQ(found.Lost + found.MoreCopies, 0);
        EXPECT_LE(found.SecondCopies, poor || !Case->Failing.empty() ? 1 : 0);
        EXPECT_LE(found.BadResults, poor || Case->Failing.size() > 3 ? 1 : 0)
            << "but for a name that is reserved";
        Copies = Case->Error == EXDEV ? 1 : 0;
        ASSERT_TRUE(run(0));
        const TConservation after = drops.Look();
        ExpectConserved(after);
        EXPECT_EQ(after.Left, 0);
        EXPECT_EQ(after.Hidden, 0) << "a leftover was not swept";
        doubled += after.Results > 1 ? 1 : 0;
        ASSERT_LT(at, 200) << "the run never gets through";
    }
    Copies = 0;
    EXPECT_GT(at, Case->Good ? 12 : 8) << "calls are no longer seen by the seam";
    EXPECT_LT(doubled, at / 2) << "a second result only where the first one has its name already";
    std::printf("killed before each of %d calls, %d times with a second result\n", at - 2, doubled);
}

INSTANTIATE_TEST_SUITE_P(
    , KillSweep,
    testing::Values(TSweepCase{"GoodFile", true, {}, 0}, TSweepCase{"BadFile", false, {}, 0},
                    TSweepCase{"NoExclusiveRename", true, {"publish", "settle", "give back"}, EINVAL},
                    TSweepCase{
                        "NeitherThatNorLinks", true, {"publish", "settle", "give back", "link"}, EINVAL},
                    TSweepCase{"BadFileThere", false, {"publish", "settle", "give back", "link"}, EINVAL},
                    TSweepCase{"NoLocksNoLeases", true, {"flock", "lease", "probe lease"}, ENOLCK},
                    TSweepCase{"ProcessElsewhere", true, {"settle"}, EXDEV}),
    [](const auto& param) { return param.param.Name; });
