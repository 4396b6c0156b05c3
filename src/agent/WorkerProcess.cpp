#include "agent/WorkerProcess.h"

#include "base/Exceptions.h"
#include "base/Module.h"
#include "platform/ProcessLimits.h"
#include "platform/SpawnSettings.h"
#include "work/Worker.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// The same open file under a number that nothing is moved to.
TDescriptor Apart(int file) {
    return TDescriptor(::fcntl(file, F_DUPFD_CLOEXEC, WorkerModules + ModuleCount));
}

/// Files that a new process finds under numbers of its own. They go there by way of numbers that nothing is
/// moved to: one may stand where another is to come.
class TMoves {
public:
    explicit TMoves(TSpawnSettings& settings) : FSettings(settings) {}
    void Move(int from, int to) {
        const TDescriptor& apart = FApart.emplace_back(Apart(from));
        ::posix_spawn_file_actions_adddup2(&FSettings.Files, apart.Number(), to);
    }

private:
    TSpawnSettings& FSettings;
    std::vector<TDescriptor> FApart; // until the process has them
};

} // namespace

TWorkerProcess::TWorkerProcess(const TDescriptor& program, TReach reach) {
    TDescriptor ours;
    TDescriptor theirs;
    TChannel::MakePair(ours, theirs);
    int leash[2];
    if (::pipe2(leash, O_CLOEXEC) != 0)
        throw EFileError(QStringLiteral("make"), QStringLiteral("pipe"), errno);
    const TDescriptor held(leash[0]);
    FLeash = TDescriptor(leash[1]);
    TSpawnSettings settings(TProcessGroup::OfParent);
    TMoves moves(settings);
    moves.Move(theirs.Number(), WorkerSocket);
    moves.Move(held.Number(), WorkerLeash);
    const QList<int> modules = HeldModules();
    for (int i = 0; i < ModuleCount; ++i)
        if (modules.at(i) >= 0)
            moves.Move(modules.at(i), WorkerModules + i);
    const TDescriptor apart = Apart(program.Number());
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(apart.Number());
    char name[] = "morvane-worker";
    QByteArray argument = QByteArray::number(int(reach));
    QByteArray limit = QByteArray::number(FormerDescriptorLimit());
    char* const arguments[] = {name, argument.data(), limit.data(), nullptr};
    const int error =
        ::posix_spawn(&FProcess, path.constData(), &settings.Files, &settings.Attributes, arguments, environ);
    if (error != 0)
        throw EFileError(QStringLiteral("start"), QStringLiteral("morvane-worker"), error);
    FChannel = std::make_shared<TChannel>(std::move(ours), TChannel::MostToAgent);
}

TWorkerProcess::~TWorkerProcess() {
    End();
}

void TWorkerProcess::Stop() const {
    [[maybe_unused]] const ssize_t written = ::write(FLeash.Number(), "", 1);
}

int TWorkerProcess::End() {
    if (FProcess < 0)
        return FStatus;
    // One that has ended keeps its own status.
    ::kill(FProcess, SIGKILL);
    while (::waitpid(FProcess, &FStatus, 0) < 0 && errno == EINTR)
        ;
    FProcess = -1;
    return FStatus;
}
