#pragma once
// Is a file still being written? Anybody can open a file here that its writer still holds, so the run
// asks before it lists a file.
#include "base/Text.h"

#include <QHash>

/// True while anybody has the file open for writing, as far as the file system can tell.
[[nodiscard]] bool HeldForWriting(const string& path);

/// Keeps writers out of a file while it is read: whoever opens it for writing waits until this goes. Where
/// the file system knows no leases, it does nothing.
class TReadLease {
public:
    explicit TReadLease(const string& path);
    ~TReadLease();
    TReadLease(const TReadLease&) = delete;
    TReadLease& operator=(const TReadLease&) = delete;
    /// Somebody has the file open for writing already.
    [[nodiscard]] bool Refused() const { return FRefused; }

private:
    int FDescriptor;
    bool FRefused = false;
};

/// Remembers what it saw of files whose change time lies in the future, so one object serves one folder or
/// many over time. Not for two threads.
class TBusyFileTest {
public:
    /// True if the regular file `path` can be read, nobody holds it for writing as far as the file system
    /// can tell, and it has been quiet: for 1 s, for 3 s where the file system has no answer, for 5 s while
    /// it is empty. `now` is the time of day in nanoseconds since 1970. A change time in the future counts
    /// as old once it is unchanged since the last call.
    [[nodiscard]] bool IsReady(const string& path, qint64 now);

private:
    [[nodiscard]] bool IsQuiet(const string& path, qint64 changed, qint64 quiet, qint64 now);

    QHash<string, qint64> FFuture;
};
