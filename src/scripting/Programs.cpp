#include "scripting/Programs.h"

#include "base/Paths.h"
#include "platform/ProcessLimits.h"
#include "platform/SpawnSettings.h"
#include "platform/StopSignal.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// Programs that nobody waits for. Those that have ended are asked about at each later start, so that at most
/// the last ones stay in the system's table.
class TUnawaited {
public:
    void Add(pid_t process) {
        const std::lock_guard guard(FLock);
        FProcesses.push_back(process);
    }
    void Collect() {
        const std::lock_guard guard(FLock);
        std::erase_if(FProcesses, [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
    }

private:
    std::mutex FLock;
    std::vector<pid_t> FProcesses;
};

TUnawaited& Unawaited() {
    static TUnawaited programs;
    return programs;
}

/// Signalled when the process has ended.
class TProcessEnd : public TWaitable {
public:
    explicit TProcessEnd(pid_t process)
        : FProcess(process), FDescriptor(int(::syscall(SYS_pidfd_open, process, 0))) {}
    [[nodiscard]] int Descriptor() const override { return FDescriptor.Number(); }
    [[nodiscard]] bool Take() override {
        siginfo_t info{};
        return ::waitid(P_PID, id_t(FProcess), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid == FProcess;
    }

private:
    pid_t FProcess;
    TDescriptor FDescriptor;
};

bool IsExecutableFile(const string& path) {
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

} // namespace

string AgainstFolder(const string& name, const string& folder) {
    return folder.isEmpty() || name.startsWith(u'/') ? name : IncludeTrailingDelimiter(folder) + name;
}

string FindProgram(const string& name, const string& folder, AnyFile any) {
    if (name.isEmpty())
        return {};
    if (name.contains(u'/')) {
        string path = AgainstFolder(name, folder);
        return any == AnyFile::Yes || IsExecutableFile(path) ? path : QString();
    }
    const QStringList folders = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts);
    for (const string& candidate : folders)
        if (string path = IncludeTrailingDelimiter(candidate) + name; IsExecutableFile(path))
            return path;
    return {};
}

int ReadError(const string& path) {
    return ::access(PathBytes(path).constData(), R_OK) == 0 ? 0 : errno;
}

TStartedProgram StartProgram(const string& path, const QStringList& arguments, const string& folder) {
    Unawaited().Collect();
    std::vector<QByteArray> words{PathBytes(QFileInfo(path).absoluteFilePath())}; // it starts in `folder`
    for (const string& argument : arguments)
        words.push_back(PathBytes(argument));
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    TSpawnSettings settings(TProcessGroup::OfItsOwn);
    if (!folder.isEmpty())
        ::posix_spawn_file_actions_addchdir_np(&settings.Files, PathBytes(folder).constData());
    const TFormerMemoryLimit memory;
    TStartedProgram started;
    started.Error = ::posix_spawn(&started.Process, words.front().constData(), &settings.Files,
                                  &settings.Attributes, pointers.data(), environ);
    if (started.Error == 0) {
        RestoreDescriptorLimit(started.Process);
        Unawaited().Add(started.Process);
    }
    return started;
}

int WaitForProgram(const TStartedProgram& program) {
    TProcessEnd end(program.Process);
    if (WaitForMultipleObjects({&end, &StopSignal()}, WaitForever) != 0)
        return ECANCELED;
    int status = 0;
    ::waitpid(program.Process, &status, 0);
    constexpr int BySignal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : BySignal + WTERMSIG(status);
}
