#include "agent/WorkerProcess.h"

#include "base/Exceptions.h"
#include "base/Module.h"
#include "work/Worker.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What a new process begins with: signals as they come, and its end of the channel.
struct TStart {
    TStart(int socket, int leash) {
        ::posix_spawnattr_init(&Attributes);
        ::posix_spawn_file_actions_init(&Files);
        sigset_t all;
        sigset_t none;
        ::sigfillset(&all);
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigdefault(&Attributes, &all);
        ::posix_spawnattr_setsigmask(&Attributes, &none);
        ::posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        ::posix_spawn_file_actions_addopen(&Files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        // By way of numbers that nothing is moved to: one may stand where another is to come.
        const QList<int> modules = HeldModules();
        Move(socket, WorkerSocket);
        Move(leash, WorkerLeash);
        for (int i = 0; i < ModuleCount; ++i)
            if (modules.at(i) >= 0)
                Move(modules.at(i), WorkerModules + i);
        for (const auto& [from, to] : Moves)
            ::posix_spawn_file_actions_adddup2(&Files, from.Number(), to);
    }
    ~TStart() {
        ::posix_spawn_file_actions_destroy(&Files);
        ::posix_spawnattr_destroy(&Attributes);
    }
    TStart(const TStart&) = delete;
    TStart& operator=(const TStart&) = delete;

    /// The same open file under a number that nothing is moved to.
    [[nodiscard]] static TDescriptor Apart(int file) {
        return TDescriptor(::fcntl(file, F_DUPFD_CLOEXEC, WorkerModules + ModuleCount));
    }
    void Move(int from, int to) { Moves.emplace_back(Apart(from), to); }

    std::vector<std::pair<TDescriptor, int>> Moves;
    posix_spawnattr_t Attributes{};
    posix_spawn_file_actions_t Files{};
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
    const TStart start(theirs.Number(), held.Number());
    const TDescriptor apart = TStart::Apart(program.Number());
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(apart.Number());
    char name[] = "morvane-worker";
    QByteArray argument = QByteArray::number(int(reach));
    char* const arguments[] = {name, argument.data(), nullptr};
    const int error =
        ::posix_spawn(&FProcess, path.constData(), &start.Files, &start.Attributes, arguments, environ);
    if (error != 0)
        throw EFileError(QStringLiteral("start"), QStringLiteral("morvane-worker"), error);
    FChannel = std::make_shared<TChannel>(std::move(ours));
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
