#include "bates/SchemeUpdate.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "platform/StopSignal.h"
#include "xml/XmlFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int PollMs = 20; // nothing wakes a process that waits for a file lock and for a stop at once
constexpr int LongestWaitMs = 60'000;

/// Where the file itself lies, whichever links lead to it: the one place for its lock.
string RealPath(const string& fileName) {
    const QFileInfo file(fileName);
    string real = file.canonicalFilePath();
    if (!real.isEmpty())
        return real;
    const string folder = QFileInfo(file.path()).canonicalFilePath();
    return folder.isEmpty() ? fileName : IncludeTrailingDelimiter(folder) + file.fileName();
}

/// Before anything is made beside it: a device or a pipe is no place for schemes.
void CheckReplaceable(const string& path) {
    struct stat info {};
    const QByteArray bytes = PathBytes(path);
    if (::lstat(bytes.constData(), &info) != 0)
        return;
    if (!S_ISREG(info.st_mode))
        throw EFileError(QStringLiteral("Cannot write \"%1\": it is not a file").arg(path), EINVAL);
    if (::access(bytes.constData(), W_OK) != 0)
        throw EFileError(QStringLiteral("write"), path, errno);
    // A file that is mounted by itself can't be replaced by another.
    struct statx more {};
    if (::statx(AT_FDCWD, bytes.constData(), AT_SYMLINK_NOFOLLOW, 0, &more) == 0 &&
        (more.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0)
        throw EFileError(
            QStringLiteral("Cannot write \"%1\": it is mounted by itself; mount its folder instead")
                .arg(path),
            EBUSY);
}

bool LocksAreUnknown(int error) {
    return error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL;
}

std::optional<TFileLock> TryLock(const string& path, const string& lockPath) {
    try {
        return TFileLock::Try(lockPath, TLockUsers::All);
    } catch (const EFileError& e) {
        if (LocksAreUnknown(e.Error()))
            throw EFileError(
                QStringLiteral("Cannot write \"%1\": its file system knows no locks, and numbers could be "
                               "given twice; keep it on another one")
                    .arg(path),
                e.Error());
        throw EFileError(QStringLiteral("write"), path, e.Error());
    }
}

TFileLock Lock(const string& path) {
    CheckReplaceable(path);
    const string lockPath = ExtractFilePath(path) + u'.' + ExtractFileName(path) + QStringLiteral(".lock");
    for (int waited = 0;; waited += PollMs) {
        if (auto lock = TryLock(path, lockPath))
            return std::move(*lock);
        if (waited >= LongestWaitMs)
            throw EFileError(
                QStringLiteral("Cannot write \"%1\": another process has held it for a minute").arg(path),
                ETIMEDOUT);
        if (WaitForSingleObject(StopSignal(), PollMs))
            throw Exception(QStringLiteral("Cannot write \"%1\": the agent is stopping").arg(path));
    }
}

} // namespace

TSchemeUpdate::TSchemeUpdate(const string& fileName)
    : FFileName(RealPath(fileName)), FLock(Lock(FFileName)), FDocument(ReadSchemes(FFileName)) {}

TSchemeUpdate::~TSchemeUpdate() = default;

void TSchemeUpdate::Prepare() {
    FPrepared = PrepareXmlFile(FFileName, FDocument->CheckedBytes(FFileName));
}

void TSchemeUpdate::Publish() {
    FPrepared->PublishReplacing();
}

std::unique_ptr<TSchemeDocument> ReadSchemes(const string& fileName) {
    try {
        return std::make_unique<TSchemeDocument>(fileName);
    } catch (const EFileError& e) {
        if (e.Error() != ENOENT)
            throw;
        return std::make_unique<TSchemeDocument>();
    }
}
