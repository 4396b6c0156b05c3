// Full disks and long nights: what goes wrong loses nothing and uses up nothing.
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include <QRegularExpression>

#include <cerrno>
#include <string>

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes(); // the compiler comes without its header
#endif

namespace {

std::string FullCall;
int DiskFull(const char* call) {
    return FullCall == call ? ENOSPC : 0;
}

int OpenDescriptors() {
    return int(QDir("/proc/self/fd").entryList(QDir::AllEntries).size());
}

/// What the process occupies. The address sanitizer keeps freed memory, but counts what is in use.
qint64 OccupiedBytes() {
#ifdef __SANITIZE_ADDRESS__
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly)
               ? file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE)
               : 0;
#endif
}

} // namespace

struct TFullDisk {
    const char* Name;
    const char* Call;
    const char* Where; // of the source while the disk is full
};

void PrintTo(const TFullDisk& disk, std::ostream* out) {
    *out << disk.Name;
}

class FullDisk : public testing::TestWithParam<TFullDisk> {};

TEST_P(FullDisk, LosesNothingAndGoesOnWhenThereIsRoom) {
    const TConfiguredWorkspace workspace;
    TDrops drops(workspace.Path("in"));
    drops.Drop("a.pdf");
    FullCall = GetParam().Call;
    SetFaultHook(DiskFull);
    PlayTicks(workspace, 2);
    SetFaultHook(nullptr);
    TConservation found = drops.Look();
    EXPECT_EQ(found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults, 0);
    EXPECT_TRUE(workspace.Has(GetParam().Where)) << workspace.Names("in").join(u' ').toStdString();
    EXPECT_TRUE(workspace.Names("in/output").filter(".part").isEmpty());
    PlayTicks(workspace, 1);
    found = drops.Look();
    EXPECT_EQ(found.Lost + found.Left + found.BadResults, 0);
}

INSTANTIATE_TEST_SUITE_P(, FullDisk,
                         testing::Values(TFullDisk{"Output", "write", "in/a.pdf"},
                                         TFullDisk{"Process", "mkdir claims", "in/a.pdf"},
                                         TFullDisk{"Publishing", "publish", "in/a.pdf"},
                                         TFullDisk{"Log", "write log", "in/process/a.pdf"},
                                         TFullDisk{"NewLog", "open log", "in/process/a.pdf"},
                                         TFullDisk{"Subfolders", "mkdir", "in/a.pdf"}),
                         [](const auto& param) { return param.param.Name; });

TEST(LongNight, FiveThousandFailuresUseUpNothing) {
    constexpr int Failures = 5000;
    const TConfiguredWorkspace workspace;
    SetFileSync(FileSync::Off);
    RegisterActionClasses();
    TPlayedClock clock;
    TPlainFiles files;
    TNotedHint hint;
    TAgentStatus status;
    TWatchedFoldersThread thread(workspace.Path("c/"), {clock, files, hint, status});
    // Files that fail early, and documents whose action fails once they are open.
    MakePdf(workspace.Path("good.pdf"), 3);
    const QByteArray good = workspace.Read("good.pdf");
    const auto drop = [&](int count) {
        for (int i = 0; i < count; ++i)
            workspace.Write(QStringLiteral("in/%1.pdf").arg(i), i % 2 == 0 ? good : QByteArray("no PDF"));
        clock.Play(1);
        QDir(workspace.Path("in/Error")).removeRecursively();
    };
    workspace.Write("c/actions.xml", "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>"
                                     "<Action Class=\"TPDFActionInsertPages\"/></Actions></ActionList>"
                                     "</ManagerActions></ActionManager>");
    thread.FRefreshActions = true;
    drop(500);
    const int descriptors = OpenDescriptors();
    const qint64 memory = OccupiedBytes();
    for (int done = 0; done < Failures; done += 500)
        drop(500);
    SetFileSync(FileSync::On);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    const qint64 growth = OccupiedBytes() - memory;
    std::printf("%d failures: %lld bytes of growth each\n", Failures,
                static_cast<long long>(growth / Failures));
    EXPECT_LT(growth / Failures, 4096) << "a failed document keeps more than its shell";
}
