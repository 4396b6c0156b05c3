#include "base/BusyFile.h"

#include "base/FaultPoint.h"
#include "base/Paths.h"
#include "base/RunToken.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 Second = 1'000'000'000;

/// A read lease is refused, with EAGAIN, while anybody has the file open for writing. 0 or an errno value.
int TakeLease(int descriptor) {
    // The default signal of a broken lease would end the process; this one is ignored by default.
    const int taken = WithFaultPoint("lease", [&] {
        return ::fcntl(descriptor, F_SETSIG, SIGURG) != 0 ? -1 : ::fcntl(descriptor, F_SETLEASE, F_RDLCK);
    });
    return taken == 0 ? 0 : errno;
}

int TryLease(int descriptor) {
    const int error = TakeLease(descriptor);
    if (error == 0)
        (void)::fcntl(descriptor, F_SETLEASE, F_UNLCK);
    return error;
}

/// Whether a file of our own in the folder, which nobody writes, gets a lease. Nothing where none can be
/// made.
std::optional<bool> ProbeLease(const TFolder& folder) {
    const QByteArray name = ".morvane-lease0-" + RunToken() + ".part"; // swept as a part file is
    const int made = ::openat(folder.Descriptor(), name.constData(),
                              O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (made < 0)
        return std::nullopt;
    ::close(made);
    const int descriptor = ::openat(folder.Descriptor(), name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    const bool granted = descriptor >= 0 && TryLease(descriptor) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    (void)::unlinkat(folder.Descriptor(), name.constData(), 0);
    return granted;
}

} // namespace

bool HeldForWriting(const string& path) {
    return TReadLease(path).Refused();
}

TReadLease::TReadLease(const string& path)
    : FDescriptor(::open(PathBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (FDescriptor >= 0)
        FRefused = TakeLease(FDescriptor) == EAGAIN;
}

TReadLease::~TReadLease() {
    if (FDescriptor >= 0)
        ::close(FDescriptor); // which gives the lease back
}

bool TBusyFileTest::GrantsLeases(const TFolder& folder, quint64 device) {
    const auto known = FProbed.constFind(folder.Path());
    if (known != FProbed.constEnd() && known->Device == device)
        return known->Grants;
    const std::optional<bool> grants = ProbeLease(folder);
    if (grants)
        FProbed.insert(folder.Path(), {device, *grants});
    return grants.value_or(false);
}

TBusyFileTest::TLease TBusyFileTest::AskLease(const TFolder& folder, int descriptor) {
    const int error = TryLease(descriptor);
    if (error == 0)
        return TLease::Free;
    struct stat info {};
    return error == EAGAIN && ::fstat(descriptor, &info) == 0 && GrantsLeases(folder, info.st_dev)
               ? TLease::Busy
               : TLease::NoAnswer;
}

bool TBusyFileTest::IsHeld(const TFolder& folder, int descriptor) {
    return AskLease(folder, descriptor) == TLease::Busy;
}

bool TBusyFileTest::IsReady(const TFolder& folder, const string& name, qint64 now, const TQuietTime& quiet) {
    const int descriptor = ::openat(folder.Descriptor(), PathBytes(name).constData(),
                                    O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool ready = IsReady(folder, name, descriptor, now, quiet);
    ::close(descriptor);
    return ready;
}

bool TBusyFileTest::IsReady(const TFolder& folder, const string& name, int descriptor, qint64 now,
                            const TQuietTime& quiet) {
    struct stat info {};
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    const TLease lease = AskLease(folder, descriptor);
    if (lease == TLease::Busy)
        return false;
    const qint64 changed = qint64(info.st_ctim.tv_sec) * Second + info.st_ctim.tv_nsec;
    const int seconds = info.st_size == 0       ? quiet.Empty
                        : lease == TLease::Free ? quiet.Leased
                                                : quiet.Unanswered;
    return IsQuiet(folder.Path() + name, changed, seconds * Second, now);
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
