#include "base/FileCopy.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "base/UniqueName.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class TSource {
public:
    explicit TSource(const string& path)
        : FDescriptor(WithFaultPoint(
              "open source", [&] { return ::open(PathBytes(path).constData(), O_RDONLY | O_CLOEXEC); })) {
        if (FDescriptor < 0)
            throw EFileError("open", path, errno);
    }
    ~TSource() { ::close(FDescriptor); }
    TSource(const TSource&) = delete;
    TSource& operator=(const TSource&) = delete;
    [[nodiscard]] int Descriptor() const { return FDescriptor; }

private:
    int FDescriptor;
};

TFileIdentity IdentityOf(const struct stat& info) {
    return {info.st_dev, info.st_ino, info.st_size,
            qint64(info.st_ctim.tv_sec) * 1'000'000'000 + info.st_ctim.tv_nsec};
}

} // namespace

TFileIdentity IdentityOf(int descriptor) {
    struct stat info {};
    return ::fstat(descriptor, &info) == 0 ? IdentityOf(info) : TFileIdentity{};
}

TFileIdentity IdentityOf(const string& path) {
    struct stat info {};
    return ::lstat(PathBytes(path).constData(), &info) == 0 ? IdentityOf(info) : TFileIdentity{};
}

void CopyFileContents(const string& source, const string& dest) {
    const TSource from(source);
    TPartFile to(dest);
    to.WriteAllOf(from.Descriptor());
    to.TakeModeOf(from.Descriptor());
    to.PublishReplacing();
}

string MoveFileByCopy(const string& source, const string& dest) {
    const TSource from(source);
    const TFileIdentity before = IdentityOf(from.Descriptor());
    string name = dest;
    TPartFile to(name);
    const qint64 copied = to.WriteAllOf(from.Descriptor());
    to.TakeModeOf(from.Descriptor());
    while (!to.PublishNew()) {
        name = UniqueFileName(name);
        to.SetFinalPath(name);
    }
    // Only what was copied whole and is still the same file may go.
    if (copied == before.Size && IdentityOf(source) == before) {
        const QByteArray path = PathBytes(source);
        (void)WithFaultPoint("unlink source", [&] { return ::unlink(path.constData()); });
    }
    return name;
}
