#include "base/FileCopy.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "base/UniqueName.h"

#include <QScopeGuard>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

TFileIdentity Identity(const struct stat& info) {
    return {info.st_dev, info.st_ino, info.st_size,
            qint64(info.st_ctim.tv_sec) * 1'000'000'000 + info.st_ctim.tv_nsec};
}

int OpenSource(const string& path) {
    const QByteArray bytes = PathBytes(path);
    const int descriptor =
        WithFaultPoint("open source", [&] { return ::open(bytes.constData(), O_RDONLY | O_CLOEXEC); });
    if (descriptor < 0)
        throw EFileError("open", path, errno);
    return descriptor;
}

} // namespace

void CopyFileContents(const string& source, const string& dest) {
    TPartFile to(dest);
    const int from = OpenSource(source);
    const auto close = qScopeGuard([from] { ::close(from); });
    to.WriteAllOf(from);
    to.TakeModeOf(from);
    to.PublishReplacing();
}

TSourceFile::TSourceFile(const string& path) : FPath(path), FDescriptor(OpenSource(path)) {
    struct stat info {};
    if (::fstat(FDescriptor, &info) == 0)
        FOpened = Identity(info);
}

TSourceFile::~TSourceFile() {
    ::close(FDescriptor);
}

bool TSourceFile::IsUnchanged() const {
    struct stat info {};
    return ::lstat(PathBytes(FPath).constData(), &info) == 0 && Identity(info) == FOpened;
}

/// The open file still holds what was opened. Losing its last name changes the ctime too, but not the
/// contents.
bool TSourceFile::ContentsAreWhole() const {
    struct stat info {};
    return ::fstat(FDescriptor, &info) == 0 &&
           (Identity(info) == FOpened || (info.st_nlink == 0 && info.st_size == FOpened.Size));
}

void TSourceFile::MoveTo(const string& dest) {
    if (!ContentsAreWhole())
        return;
    string name = dest;
    TPartFile to(name);
    const qint64 copied = to.WriteAllOf(FDescriptor);
    if (copied != FOpened.Size || !ContentsAreWhole())
        return;
    to.TakeModeOf(FDescriptor);
    while (!to.PublishNew()) {
        name = UniqueFileName(name);
        to.SetFinalPath(name);
    }
    if (!IsUnchanged())
        return;
    const QByteArray path = PathBytes(FPath);
    // A source that can't be deleted stays and is served again at the folder's next turn.
    (void)WithFaultPoint("unlink source", [&] { return ::unlink(path.constData()); });
}
