#include "base/BusyFile.h"

#include "base/FileState.h"
#include "base/Paths.h"

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr qint64 Second = 1'000'000'000;
}

bool TBusyFileTest::IsHeld(const TFolder& folder, int descriptor) {
    return FLeases.Ask(folder, descriptor) == TLease::Busy;
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
    const TLease lease = FLeases.Ask(folder, descriptor);
    if (lease == TLease::Busy)
        return false;
    const int seconds = info.st_size == 0       ? quiet.Empty
                        : lease == TLease::Free ? quiet.Leased
                                                : quiet.Unanswered;
    return IsQuiet(folder.Path() + name, StateOf(info).ChangeTime, seconds * Second, now);
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
