#include "platform/FileLock.h"

#include "base/Exceptions.h"
#include "base/Paths.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

std::optional<TFileLock> TFileLock::Try(const string& path) {
    // The sticky bit keeps the file from those who sweep old ones away (XDG base directory rules): with the
    // name gone, a second holder would lock a file of its own.
    TDescriptor file(::open(PathBytes(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 01600));
    if (!file)
        throw EFileError(QStringLiteral("open"), path, errno);
    if (::flock(file.Number(), LOCK_EX | LOCK_NB) == 0)
        return TFileLock(std::move(file));
    if (errno == EWOULDBLOCK)
        return std::nullopt;
    throw EFileError(QStringLiteral("lock"), path, errno);
}
