#include "base/BusyFile.h"

#include "base/Paths.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 Second = 1'000'000'000;

enum class Lease { Free, Busy, NoAnswer };

/// A read lease is refused while anybody has the file open for writing.
Lease TakeLease(int descriptor) {
    // The default signal of a broken lease would end the process; this one is ignored by default.
    if (::fcntl(descriptor, F_SETSIG, SIGURG) != 0)
        return Lease::NoAnswer;
    if (::fcntl(descriptor, F_SETLEASE, F_RDLCK) != 0)
        return errno == EAGAIN ? Lease::Busy : Lease::NoAnswer;
    return Lease::Free;
}

Lease AskLease(int descriptor) {
    const Lease lease = TakeLease(descriptor);
    if (lease == Lease::Free)
        (void)::fcntl(descriptor, F_SETLEASE, F_UNLCK);
    return lease;
}

} // namespace

bool HeldForWriting(const string& path) {
    return TReadLease(path).Refused();
}

TReadLease::TReadLease(const string& path)
    : FDescriptor(::open(PathBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (FDescriptor >= 0)
        FRefused = TakeLease(FDescriptor) == Lease::Busy;
}

TReadLease::~TReadLease() {
    if (FDescriptor >= 0)
        ::close(FDescriptor); // which gives the lease back
}

bool TBusyFileTest::IsReady(const string& path, qint64 now) {
    const int descriptor =
        ::open(PathBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat info {};
    const bool regular = ::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode);
    const Lease lease = regular ? AskLease(descriptor) : Lease::Busy;
    ::close(descriptor);
    if (lease == Lease::Busy)
        return false;
    const qint64 changed = qint64(info.st_ctim.tv_sec) * Second + info.st_ctim.tv_nsec;
    const qint64 quiet = info.st_size == 0 ? 5 * Second : lease == Lease::Free ? Second : 3 * Second;
    return IsQuiet(path, changed, quiet, now);
}

bool TBusyFileTest::IsQuiet(const string& path, qint64 changed, qint64 quiet, qint64 now) {
    if (changed <= now) {
        if (!FFuture.isEmpty())
            FFuture.remove(path);
        return now - changed >= quiet;
    }
    const auto seen = FFuture.constFind(path);
    if (seen != FFuture.constEnd() && *seen == changed)
        return true;
    FFuture.insert(path, changed);
    return false;
}
