#include "base/Folder.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/Paths.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::atomic<bool> SyncFiles = true;

/// A folder that may be written but not read opens as a mere place, which can't be synced by anybody.
int OpenPlace(int parent, const char* name, int flags) {
    const int readable = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | flags);
    return readable < 0 && errno == EACCES ? ::openat(parent, name, O_PATH | O_DIRECTORY | O_CLOEXEC | flags)
                                           : readable;
}

/// The folder behind a link whose own owner may be trusted with it; the link is read once, so that what was
/// looked at is what is followed. -1 with errno otherwise.
int OpenBehindLink(int parent, const QByteArray& name) {
    const int link = ::openat(parent, name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (link < 0)
        return -1;
    struct stat info {};
    std::array<char, PATH_MAX> target{};
    const bool isLink = ::fstat(link, &info) == 0 && S_ISLNK(info.st_mode);
    const ssize_t length = isLink ? ::readlinkat(link, "", target.data(), target.size() - 1) : -1;
    ::close(link);
    if (!isLink)
        return errno = ENOTDIR, -1;
    if (info.st_uid != ::geteuid() && info.st_uid != 0)
        return errno = ELOOP, -1;
    return length < 0 ? -1 : OpenPlace(parent, target.data(), 0);
}

int MakeBelow(const TFolder& parent, const QByteArray& name) {
    const int made =
        WithFaultPoint("mkdir", [&] { return ::mkdirat(parent.Descriptor(), name.constData(), 0700); });
    if (made != 0 && errno != EEXIST)
        return -1;
    const int folder = OpenPlace(parent.Descriptor(), name.constData(), O_NOFOLLOW);
    struct stat like {};
    if (folder < 0 || made != 0 || ::fstat(parent.Descriptor(), &like) != 0)
        return folder;
    // The mode last: a change of the group takes the set-group bit away.
    [[maybe_unused]] const int grouped = ::fchown(folder, uid_t(-1), like.st_gid);
    (void)::fchmod(folder, like.st_mode & 06777);
    return folder;
}

} // namespace

void SetFileSync(FileSync mode) {
    SyncFiles.store(mode == FileSync::On, std::memory_order_relaxed);
}

bool FilesAreSynced() {
    return SyncFiles.load(std::memory_order_relaxed);
}

TFolder::TFolder(const string& path, int descriptor)
    : FPath(IncludeTrailingDelimiter(path)), FDescriptor(descriptor) {}

TFolder::~TFolder() {
    ::close(FDescriptor);
}

TFolderPtr TFolder::Open(const string& path) {
    const int descriptor = OpenPlace(AT_FDCWD, PathBytes(path).constData(), 0);
    if (descriptor < 0)
        throw EFileError(QStringLiteral("open the folder"), path, errno);
    return TFolderPtr(new TFolder(path, descriptor));
}

TFolderPtr TFolder::OpenBelow(const TFolderPtr& parent, const string& name) {
    const QByteArray bytes = PathBytes(name);
    int descriptor = OpenPlace(parent->Descriptor(), bytes.constData(), O_NOFOLLOW);
    if (descriptor < 0 && errno == ENOENT)
        descriptor = MakeBelow(*parent, bytes);
    else if (descriptor < 0 && (errno == ENOTDIR || errno == ELOOP))
        descriptor = OpenBehindLink(parent->Descriptor(), bytes);
    if (descriptor < 0)
        throw EFileError(errno == ENOENT ? QStringLiteral("make the folder")
                                         : QStringLiteral("open the folder"),
                         parent->Path() + name, errno);
    return TFolderPtr(new TFolder(parent->Path() + name, descriptor));
}

bool TFolder::IsSameAs(const TFolder& other) const {
    struct stat one {};
    struct stat two {};
    return ::fstat(FDescriptor, &one) == 0 && ::fstat(other.FDescriptor, &two) == 0 &&
           one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

bool TFolder::Look(const QByteArray& name, struct stat& info) const {
    return ::fstatat(FDescriptor, name.constData(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

bool TFolder::Holds(const QByteArray& name) const {
    struct stat info {};
    return Look(name, info);
}

quint64 TFolder::Rights() const {
    struct stat info {};
    if (::fstat(FDescriptor, &info) != 0)
        return 0;
    return quint64(info.st_mode) ^ (quint64(info.st_uid) << 16) ^ (quint64(info.st_gid) << 40);
}

void TFolder::Sync() const {
    if (!FilesAreSynced())
        return;
    const int synced = WithFaultPoint("fsync folder", [&] { return ::fsync(FDescriptor); });
    // Some file systems know no fsync on folders; their rename is as durable as they can make it.
    if (synced != 0 && errno != EINVAL && errno != ENOTSUP && errno != EBADF)
        throw EFileError(QStringLiteral("write the folder"), FPath, errno);
}
