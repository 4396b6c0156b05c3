#include "engine/file/SourceStore.h"

#include "base/Exceptions.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <unistd.h>

namespace {

int OpenNameless(const NarrowString& folder) {
    const int descriptor = ::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR))
        return descriptor;
    NarrowString name = folder + "/morvane-XXXXXX";
    const int named = ::mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0)
        ::unlink(name.constData());
    return named;
}

/// /tmp is memory on many systems.
NarrowString TemporaryFolder() {
    NarrowString chosen = qgetenv("TMPDIR");
    if (!chosen.isEmpty())
        return chosen;
    return ::access("/var/tmp", W_OK) == 0 ? "/var/tmp" : "/tmp";
}

} // namespace

TSourceStore::TSourceStore() : FDescriptor(OpenNameless(TemporaryFolder())) {
    if (FDescriptor < 0)
        throw EFileError("make a temporary file in", Widen(TemporaryFolder()), errno);
}

TSourceStore::~TSourceStore() {
    ::close(FDescriptor);
}

qint64 TSourceStore::Take(int descriptor, qint64 size, const string& path) {
    constexpr qint64 Chunk = 8 << 20;
    const qint64 start = FSize;
    if (::lseek(FDescriptor, start, SEEK_SET) < 0)
        throw EFileError("keep", path, errno);
    for (off_t done = 0; done < size;) {
        const ssize_t copied =
            ::sendfile(FDescriptor, descriptor, &done, size_t(std::min<qint64>(Chunk, size - done)));
        if (copied > 0 || (copied < 0 && errno == EINTR))
            continue;
        throw EFileError("keep", path, copied == 0 ? EIO : errno);
    }
    FSize += size;
    return start;
}
