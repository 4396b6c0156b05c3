#pragma once
// Is a file still being written? Anybody can open a file here that its writer still holds, so the run
// asks before it lists a file, and again when it opens it.
#include "base/Lease.h"

/// How long a file must have been quiet, in seconds.
struct TQuietTime {
    int Leased = 1;      ///< where nobody holds it for writing, as the file system says
    int Unanswered = 3;  ///< where the file system doesn't say
    int Empty = 60 * 60; ///< of an empty file, which is somebody's placeholder
};

/// Remembers what it saw of files whose change time lies in the future, and of the folders' leases, so one
/// object serves one folder or many over time. Not for two threads.
class TBusyFileTest {
public:
    /// True if the regular file `name` can be read, nobody holds it for writing as far as the file system can
    /// tell, and it has been quiet. `now` is the time of day in nanoseconds since 1970. A change time in the
    /// future counts as old once it is unchanged since the last call.
    [[nodiscard]] bool IsReady(const TFolder& folder, const string& name, qint64 now,
                               const TQuietTime& quiet = {});
    /// The same of a file in the folder that is open for reading, and for reading alone.
    [[nodiscard]] bool IsReady(const TFolder& folder, const string& name, int descriptor, qint64 now,
                               const TQuietTime& quiet = {});
    /// Whether anybody has the open file open for writing, as far as the file system can tell.
    [[nodiscard]] bool IsHeld(const TFolder& folder, int descriptor);

private:
    [[nodiscard]] bool IsQuiet(const string& path, qint64 changed, qint64 quiet, qint64 now);

    TLeases FLeases;
    QHash<string, qint64> FFuture;
};
