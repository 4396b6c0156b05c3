#include "base/OutputFile.h"

#include "base/FaultPoint.h"
#include "base/Folder.h"

#include <cerrno>
#include <sys/sendfile.h>
#include <unistd.h>

#include <vector>

EFileError TOutputFile::Failure(int error) const {
    return {QStringLiteral("write"), FPath, error};
}

void TOutputFile::Write(const void* data, size_t size) {
    const char* at = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = WithFaultPoint("write", [&] { return ::write(FDescriptor, at, size); });
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw Failure(errno);
        at += written;
        size -= size_t(written);
    }
}

qint64 TOutputFile::WriteAllOf(int source) {
    constexpr size_t Chunk = 64 << 20;
    off_t offset = 0;
    for (;;) {
        const ssize_t copied =
            WithFaultPoint("sendfile", [&] { return ::sendfile(FDescriptor, source, &offset, Chunk); });
        if (copied < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (copied < 0 && (errno == EINVAL || errno == ENOSYS)) // not every file system can do that
            return WriteByReading(source, offset);
        if (copied < 0)
            throw Failure(errno);
        if (copied == 0)
            return offset;
    }
}

qint64 TOutputFile::WriteByReading(int source, qint64 offset) {
    std::vector<char> buffer(256 << 10);
    for (;;) {
        const ssize_t got = WithFaultPoint(
            "read", [&] { return ::pread(source, buffer.data(), buffer.size(), off_t(offset)); });
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw EFileError(QStringLiteral("read what becomes"), FPath, errno);
        if (got == 0)
            return offset;
        Write(buffer.data(), size_t(got));
        offset += got;
    }
}

void TOutputFile::Flush() {
    if (FFlushed || !FilesAreSynced())
        return;
    if (WithFaultPoint("fsync", [&] { return ::fsync(FDescriptor); }) != 0)
        throw Failure(errno);
    FFlushed = true;
}
