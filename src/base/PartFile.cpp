#include "base/PartFile.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/Paths.h"

#include <QRandomGenerator>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<bool> SyncFiles = true;

constexpr char Prefix[] = ".morvane-";
constexpr char Suffix[] = ".part";
constexpr int RandomLength = 6;

QByteArray TemporaryName() {
    static constexpr char Letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    QByteArray name(Prefix);
    for (int i = 0; i < RandomLength; ++i)
        name.append(Letters[QRandomGenerator::global()->bounded(int(sizeof Letters) - 1)]);
    return name.append(Suffix);
}

bool IsTemporaryName(const QByteArray& name) {
    return name.size() == int(sizeof Prefix) - 1 + RandomLength + int(sizeof Suffix) - 1 &&
           name.startsWith(Prefix) && name.endsWith(Suffix);
}

QByteArray FolderOf(const string& path) {
    const QByteArray folder = PathBytes(ExtractFilePath(path));
    return folder.isEmpty() ? QByteArray("./") : folder;
}

void SyncFolder(const string& path) {
    if (!SyncFiles.load(std::memory_order_relaxed))
        return;
    const int folder = ::open(FolderOf(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return; // a folder that may be written but not read cannot be synced by anybody
    const int synced = WithFaultPoint("fsync folder", [&] { return ::fsync(folder); });
    const int error = errno;
    ::close(folder);
    // Some file systems know no fsync on folders; their rename is as durable as they can make it.
    if (synced != 0 && error != EINVAL && error != ENOTSUP)
        throw EFileError("write the folder of", path, error);
}

} // namespace

void SetFileSync(FileSync mode) {
    SyncFiles.store(mode == FileSync::On, std::memory_order_relaxed);
}

TPartFile::TPartFile(const string& finalPath) : FFinalPath(finalPath) {
    Create();
}

TPartFile::~TPartFile() {
    if (!FTemporary.isEmpty())
        (void)WithFaultPoint("unlink part", [&] { return ::unlink(FTemporary.constData()); });
    if (FDescriptor >= 0)
        ::close(FDescriptor);
}

void TPartFile::Create() {
    for (;;) {
        const QByteArray path = FolderOf(FFinalPath) + TemporaryName();
        FDescriptor = WithFaultPoint("create part", [&] {
            return ::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
        });
        if (FDescriptor < 0 && errno == EEXIST)
            continue;
        if (FDescriptor < 0)
            throw EFileError("write", FFinalPath, errno);
        // A sweep may have seen the file before the lock stood; it has then unlinked it.
        struct stat info {};
        if (::flock(FDescriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(FDescriptor, &info) == 0 &&
            info.st_nlink > 0) {
            FTemporary = path;
            return;
        }
        ::close(FDescriptor);
        FDescriptor = -1;
    }
}

void TPartFile::Write(const void* data, size_t size) {
    const char* at = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = WithFaultPoint("write", [&] { return ::write(FDescriptor, at, size); });
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw EFileError("write", FFinalPath, errno);
        at += written;
        size -= size_t(written);
    }
}

qint64 TPartFile::WriteAllOf(int source) {
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
            throw EFileError("write", FFinalPath, errno);
        if (copied == 0)
            return offset;
    }
}

qint64 TPartFile::WriteByReading(int source, qint64 offset) {
    std::vector<char> buffer(256 << 10);
    for (;;) {
        const ssize_t got = WithFaultPoint(
            "read", [&] { return ::pread(source, buffer.data(), buffer.size(), off_t(offset)); });
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw EFileError("read what becomes", FFinalPath, errno);
        if (got == 0)
            return offset;
        Write(buffer.data(), size_t(got));
        offset += got;
    }
}

void TPartFile::TakeModeOf(int source) {
    struct stat info {};
    if (::fstat(source, &info) == 0)
        (void)::fchmod(FDescriptor, info.st_mode & 0777);
}

void TPartFile::TakeModeOf(const string& path) {
    struct stat info {};
    if (::stat(PathBytes(path).constData(), &info) == 0)
        (void)::fchmod(FDescriptor, info.st_mode & 0777);
}

void TPartFile::Flush() {
    if (FFlushed || !SyncFiles.load(std::memory_order_relaxed))
        return;
    if (WithFaultPoint("fsync", [&] { return ::fsync(FDescriptor); }) != 0)
        throw EFileError("write", FFinalPath, errno);
    FFlushed = true;
}

void TPartFile::Published() {
    FTemporary.clear();
    ::close(FDescriptor);
    FDescriptor = -1;
    SyncFolder(FFinalPath);
}

void TPartFile::PublishReplacing() {
    Flush();
    const QByteArray final = PathBytes(FFinalPath);
    if (WithFaultPoint("rename", [&] { return ::rename(FTemporary.constData(), final.constData()); }) != 0)
        throw EFileError("write", FFinalPath, errno);
    Published();
}

bool TPartFile::PublishNew() {
    Flush();
    const QByteArray final = PathBytes(FFinalPath);
    int done = WithFaultPoint("rename new", [&] {
        return ::renameat2(AT_FDCWD, FTemporary.constData(), AT_FDCWD, final.constData(), RENAME_NOREPLACE);
    });
    if (done != 0 && (errno == EINVAL || errno == ENOSYS)) { // not every file system knows the flag
        done = WithFaultPoint("link", [&] { return ::link(FTemporary.constData(), final.constData()); });
        if (done == 0)
            (void)WithFaultPoint("unlink part", [&] { return ::unlink(FTemporary.constData()); });
    }
    if (done != 0 && errno == EEXIST)
        return false;
    if (done != 0)
        throw EFileError("write", FFinalPath, errno);
    Published();
    return true;
}

void SweepPartFiles(const string& folder) {
    const QByteArray path = PathBytes(IncludeTrailingDelimiter(folder));
    const std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(path.constData()), ::closedir);
    if (dir == nullptr)
        return;
    while (const dirent* entry = ::readdir(dir.get())) {
        if (!IsTemporaryName(entry->d_name))
            continue;
        const QByteArray part = path + entry->d_name;
        const int descriptor = ::open(part.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        if (descriptor < 0)
            continue;
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
            (void)WithFaultPoint("unlink part", [&] { return ::unlink(part.constData()); });
        ::close(descriptor);
    }
}
