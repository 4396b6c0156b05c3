#include "base/PartFile.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/FolderListing.h"
#include "base/NewName.h"
#include "base/Paths.h"
#include "base/RunToken.h"
#include "base/UniqueName.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char Prefix[] = ".morvane-";
constexpr char Suffix[] = ".part";
constexpr int RandomLength = 6;
constexpr time_t Day = 86'400;

QByteArray TemporaryName() {
    static constexpr char Letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    QByteArray name(Prefix);
    for (int i = 0; i < RandomLength; ++i)
        name.append(Letters[QRandomGenerator::global()->bounded(int(sizeof Letters) - 1)]);
    return name + '-' + RunToken() + Suffix;
}

/// What stands between the ends of a temporary's name: random letters, and the run that made it, which
/// earlier versions left out. Empty for other names.
QByteArray MiddleOf(const QByteArray& name) {
    if (!name.startsWith(Prefix) || !name.endsWith(Suffix))
        return {};
    const QByteArray middle = name.mid(int(sizeof Prefix) - 1).chopped(int(sizeof Suffix) - 1);
    return middle.size() == RandomLength || middle.indexOf('-') == RandomLength ? middle : QByteArray();
}

TFolderPtr FolderOf(const string& path) {
    const string folder = ExtractFilePath(path);
    try {
        return TFolder::Open(folder.isEmpty() ? QStringLiteral(".") : folder);
    } catch (const EFileError& e) {
        throw EFileError(QStringLiteral("write"), path, e.Error());
    }
}

/// The process's mask, which can't be asked without changing it for other threads, too.
mode_t Mask() {
    static const mode_t mask = [] {
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly))
            for (const QByteArray& line : status.readAll().split('\n'))
                if (line.startsWith("Umask:"))
                    return mode_t(line.mid(6).trimmed().toUInt(nullptr, 8));
        return mode_t(022);
    }();
    return mask;
}

/// Whether somebody who lives may still write to the temporary.
bool InUse(int descriptor, const QByteArray& middle) {
    const TRunState run = StateOfRun(middle.mid(RandomLength + 1));
    if (run == TRunState::Dead)
        return false;
    struct stat info {};
    const bool foreign = run == TRunState::Unknown && middle.size() > RandomLength;
    if (foreign && ::fstat(descriptor, &info) == 0)
        return ::time(nullptr) - info.st_mtime < Day;
    const int locked = WithFaultPoint("flock", [&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); });
    return locked != 0 && (errno == EWOULDBLOCK || run == TRunState::Alive);
}

} // namespace

TPartFile::TPartFile(const string& finalPath) : TPartFile(FolderOf(finalPath), ExtractFileName(finalPath)) {}

TPartFile::TPartFile(TFolderPtr folder, const string& name)
    : TOutputFile(-1, folder->Path() + name), FFolder(std::move(folder)) {
    Create();
}

TPartFile::~TPartFile() {
    if (!FTemporary.isEmpty())
        (void)WithFaultPoint("unlink part",
                             [&] { return ::unlinkat(FFolder->Descriptor(), FTemporary.constData(), 0); });
    if (FDescriptor >= 0)
        ::close(FDescriptor);
}

void TPartFile::Create() {
    do {
        FTemporary = TemporaryName();
        FDescriptor = WithFaultPoint("create part", [&] {
            return ::openat(FFolder->Descriptor(), FTemporary.constData(),
                            O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
        });
        if (FDescriptor < 0 && errno != EEXIST) {
            const int error = errno;
            FTemporary.clear();
            throw Failure(error);
        }
    } while (FDescriptor < 0 || !Lock());
}

/// False where a sweep was faster: it saw the file before the lock stood and has taken it away.
bool TPartFile::Lock() {
    const int locked = WithFaultPoint("flock", [&] { return ::flock(FDescriptor, LOCK_EX | LOCK_NB); });
    struct stat info {};
    // A file system without locks has only the name to tell by; a sweep goes by that, too.
    if ((locked == 0 || errno != EWOULDBLOCK) && ::fstat(FDescriptor, &info) == 0 && info.st_nlink > 0)
        return true;
    ::close(FDescriptor);
    FDescriptor = -1;
    return false;
}

void TPartFile::TakeModeOf(int source) {
    struct stat info {};
    if (::fstat(source, &info) == 0)
        FMode = int(info.st_mode & 0777);
}

void TPartFile::TakeModeOf(const string& path) {
    struct stat info {};
    if (::stat(PathBytes(path).constData(), &info) == 0)
        FMode = int(info.st_mode & 0777);
}

void TPartFile::Published() {
    FTemporary.clear();
    ::close(FDescriptor);
    FDescriptor = -1;
    if (FSyncFolder)
        FFolder->Sync();
}

void TPartFile::PublishReplacing() {
    Flush();
    const QByteArray name = PathBytes(ExtractFileName(FPath));
    struct stat there {};
    if (FFolder->Look(name, there) && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode))
        throw EFileError(
            QStringLiteral("Cannot write \"%1\": what has this name is no file.").arg(FinalPath()),
            S_ISDIR(there.st_mode) ? EISDIR : EINVAL);
    (void)::fchmod(FDescriptor, FMode < 0 ? 0666 & ~Mask() : mode_t(FMode));
    const int done = WithFaultPoint("publish over", [&] {
        return ::renameat(FFolder->Descriptor(), FTemporary.constData(), FFolder->Descriptor(),
                          name.constData());
    });
    if (done != 0)
        throw Failure(errno);
    Published();
}

bool TPartFile::PublishNew() {
    Flush();
    (void)::fchmod(FDescriptor, FMode < 0 ? 0666 & ~Mask() : mode_t(FMode));
    const int error =
        MoveToNewName("publish", *FFolder, FTemporary, *FFolder, PathBytes(ExtractFileName(FPath)));
    if (error == EEXIST)
        return false;
    if (error != 0)
        throw Failure(error);
    Published();
    return true;
}

void PublishFree(TPartFile& file) {
    while (!file.PublishNew())
        file.SetFinalName(ExtractFileName(UniqueFileName(file.FinalPath(), file.Folder())));
}

void SweepPartFiles(const TFolder& folder) {
    for (const QByteArray& name : ListAll(folder)) {
        const QByteArray middle = MiddleOf(name);
        if (middle.isEmpty())
            continue;
        const int descriptor =
            ::openat(folder.Descriptor(), name.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        if (descriptor < 0)
            continue;
        if (!InUse(descriptor, middle))
            (void)WithFaultPoint("unlink part",
                                 [&] { return ::unlinkat(folder.Descriptor(), name.constData(), 0); });
        ::close(descriptor);
    }
}
