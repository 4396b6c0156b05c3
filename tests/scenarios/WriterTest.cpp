// Writers that stall, append, map and rename while the agent serves their folder: whatever they do and
// whenever, what they wrote lies whole in one of the folders in the end.
#include "agent/SystemRunHost.h"
#include "scenarios/PlayedAgent.h"
#include "scenarios/RealAgent.h"
#include "testing/Failing.h"
#include "testing/SamplePdf.h"

#include <QRandomGenerator>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>

namespace {

enum class TManner { HoldOpen, CloseBetween, Mapped, ReadWrite, RenameOver, Count };

/// Writes `contents` in parts with pauses, of which some are longer than any quiet time.
class TWriter {
public:
    /// `heldUp` tells afterwards that a busy machine held a pause up beyond the quiet time.
    TWriter(const string& path, QByteArray contents, TManner manner, std::atomic<bool>& heldUp)
        : FPath(path.toUtf8()), FContents(std::move(contents)), FManner(manner), FHeldUp(heldUp),
          FRandom(QRandomGenerator::global()->generate()) {}

    void operator()() {
        switch (FManner) {
        case TManner::Mapped:
            Map();
            return;
        case TManner::RenameOver:
            WriteParts(FPath + ".tmp", /*keepOpen=*/true);
            ::rename((FPath + ".tmp").constData(), FPath.constData());
            return;
        case TManner::ReadWrite: // an editor that opens a whole file and changes it
            WriteParts(FPath, /*keepOpen=*/true, O_RDWR);
            return;
        default:
            WriteParts(FPath, FManner == TManner::HoldOpen);
        }
    }

private:
    static constexpr int Parts = 4;

    void Pause() {
        ::usleep(useconds_t(FRandom.bounded(2) == 0 ? FRandom.bounded(900'000) : FRandom.bounded(4'500'000)));
    }
    [[nodiscard]] QByteArray Part(int i) const {
        const qsizetype begin = i * FContents.size() / Parts;
        return FContents.mid(begin, (i + 1) * FContents.size() / Parts - begin);
    }
    void WriteParts(const QByteArray& path, bool keepOpen, int access = O_WRONLY) {
        int file = ::open(path.constData(), access | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        for (int i = 0; i < Parts; ++i) {
            const QByteArray part = Part(i);
            ASSERT_EQ(::write(file, part.constData(), size_t(part.size())), part.size());
            if (i + 1 == Parts)
                break;
            if (keepOpen) {
                Pause();
                continue;
            }
            ::close(file);
            const auto begin = std::chrono::steady_clock::now();
            ::usleep(useconds_t(FRandom.bounded(700'000))); // within the quiet time
            file = ::open(path.constData(), access | O_APPEND | O_CLOEXEC);
            FHeldUp = file < 0 && std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(950);
            if (FHeldUp)
                return;
            ASSERT_GE(file, 0) << "taken within the quiet time";
        }
        ::close(file);
    }
    void Map() {
        const int file = ::open(FPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        const auto size = size_t(FContents.size());
        ASSERT_EQ(::ftruncate(file, off_t(size)), 0);
        char* bytes = static_cast<char*>(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        ::close(file); // the mapping still writes
        for (int i = 0; i < Parts; ++i) {
            const QByteArray part = Part(i);
            std::memcpy(bytes + i * FContents.size() / Parts, part.constData(), size_t(part.size()));
            Pause();
        }
        ::munmap(bytes, size);
    }

    QByteArray FPath;
    QByteArray FContents;
    TManner FManner;
    std::atomic<bool>& FHeldUp;
    QRandomGenerator FRandom;
};

/// How often a text lies whole in one of the folders.
int Copies(const TWorkspace& workspace, const QByteArray& contents) {
    int copies = 0;
    for (const char* folder : {"in", "in/process", "in/Error"})
        for (const string& name : workspace.Names(folder))
            copies += workspace.Read(string(folder) + u'/' + name) == contents ? 1 : 0;
    return copies;
}

} // namespace

/// Without leases, as on other people's files and on many shares, only quiet time tells.
class Writers : public testing::TestWithParam<int> {};

TEST_P(Writers, LoseNothing) {
    const int schedules = qEnvironmentVariableIntValue("MORVANE_SCHEDULES");
    const int count = schedules > 0 ? schedules : 20;
    const TConfiguredWorkspace workspace;
    RegisterActionClasses();
    TSystemClock clock;
    TSystemFolderFiles files;
    TNotedHint hint;
    TAgentStatus status;
    std::vector<QByteArray> contents;
    std::vector<std::atomic<bool>> heldUp(static_cast<size_t>(count));
    {
        TWatchedFoldersThread agent(workspace.Path("c/"), {clock, files, hint, status});
        ASSERT_TRUE(Eventually([&] { return QDir(workspace.Path("in/output")).exists(); }));
        const TFailing poor({"lease", "probe lease"}, GetParam());
        std::vector<std::thread> writers;
        for (int i = 0; i < count; ++i) {
            const string path = workspace.Path(QStringLiteral("whole %1.pdf").arg(i));
            MakePdf(path, 1 + i % 3, {.Title = "writer " + QByteArray::number(i)});
            contents.push_back(workspace.Read(QStringLiteral("whole %1.pdf").arg(i)));
            writers.emplace_back(TWriter(workspace.Path(QStringLiteral("in/%1.pdf").arg(i)), contents.back(),
                                         TManner(i % int(TManner::Count)), heldUp[size_t(i)]));
        }
        for (std::thread& writer : writers)
            writer.join();
        EXPECT_TRUE(Eventually([&] { return workspace.Names("in").filter(".pdf").isEmpty(); }));
    }
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(heldUp[size_t(i)] || Copies(workspace, contents[size_t(i)]) == 1) << "writer " << i;
}

INSTANTIATE_TEST_SUITE_P(, Writers, testing::Values(0, EACCES, EAGAIN), [](const auto& param) {
    return param.param == 0 ? "Leases" : param.param == EACCES ? "NotOurs" : "Share";
});
