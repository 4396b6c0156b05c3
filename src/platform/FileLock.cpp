#include "platform/FileLock.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/Paths.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

std::optional<TFileLock> TFileLock::Try(const string& path, TLockUsers users) {
    // The sticky bit keeps the file from those who sweep old ones away (XDG base directory rules): with the
    // name gone, a second holder would lock a file of its own.
    const mode_t mode = users == TLockUsers::All ? 0666 : 01600;
    const QByteArray bytes = PathBytes(path);
    constexpr int Flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    TDescriptor file(::open(bytes.constData(), O_RDWR | O_CREAT | Flags, mode));
    if (!file && errno == EACCES) // another user's; a lock needs no right to write everywhere
        file = TDescriptor(::open(bytes.constData(), O_RDONLY | Flags));
    if (!file)
        throw EFileError(QStringLiteral("open"), path, errno);
    if (WithFaultPoint("flock", [&] { return ::flock(file.Number(), LOCK_EX | LOCK_NB); }) == 0)
        return TFileLock(std::move(file));
    if (errno == EWOULDBLOCK)
        return std::nullopt;
    throw EFileError(QStringLiteral("lock"), path, errno);
}
