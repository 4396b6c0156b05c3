#include "base/Lease.h"

#include "base/FaultPoint.h"
#include "base/RunToken.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

/// 0 or an errno value: EAGAIN while anybody has the file open for writing.
int TakeLease(const char* step, int descriptor) {
    // The default signal of a broken lease would end the process; this one is ignored by default.
    const int taken = WithFaultPoint(step, [&] {
        return ::fcntl(descriptor, F_SETSIG, SIGURG) != 0 ? -1 : ::fcntl(descriptor, F_SETLEASE, F_RDLCK);
    });
    return taken == 0 ? 0 : errno;
}

/// Whether a file of our own in the folder, which nobody writes, gets a lease. Nothing where none can be made
/// there on that device, as for a file behind a link.
std::optional<bool> Probe(const TFolder& folder, quint64 device) {
    const QByteArray name = ".morvane-lease0-" + RunToken() + ".part"; // swept as a part file is
    const int made = ::openat(folder.Descriptor(), name.constData(),
                              O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (made < 0)
        return std::nullopt;
    ::close(made);
    const int descriptor = ::openat(folder.Descriptor(), name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    struct stat info {};
    const bool comparable = descriptor >= 0 && ::fstat(descriptor, &info) == 0 && info.st_dev == device;
    const bool granted = comparable && TakeLease("probe lease", descriptor) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    (void)::unlinkat(folder.Descriptor(), name.constData(), 0);
    return comparable ? std::optional(granted) : std::nullopt;
}

} // namespace

bool TLeases::Grants(const TFolder& folder, quint64 device) {
    const auto known = FProbed.constFind(folder.Path());
    if (known != FProbed.constEnd() && known->Device == device)
        return known->Grants;
    const std::optional<bool> grants = Probe(folder, device);
    if (grants)
        FProbed.insert(folder.Path(), {device, *grants});
    return grants.value_or(false);
}

TLease TLeases::Take(const TFolder& folder, int descriptor) {
    const int error = TakeLease("lease", descriptor);
    if (error == 0)
        return TLease::Free;
    struct stat info {};
    return error == EAGAIN && ::fstat(descriptor, &info) == 0 && Grants(folder, info.st_dev)
               ? TLease::Busy
               : TLease::Unknown;
}

TLease TLeases::Ask(const TFolder& folder, int descriptor) {
    const TLease lease = Take(folder, descriptor);
    if (lease == TLease::Free)
        (void)::fcntl(descriptor, F_SETLEASE, F_UNLCK);
    return lease;
}
