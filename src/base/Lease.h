#pragma once
// Does anybody have a file open for writing? A read lease tells, where the file system grants any.
#include "base/Folder.h"

#include <QHash>

enum class TLease {
    Free,    ///< nobody has
    Busy,    ///< somebody has
    Unknown, ///< the file system doesn't say: another owner's file, or no leases at all
};

/// Network file systems may refuse every lease although nobody writes. So a refusal counts only where a file
/// of our own in the same folder gets one, which is tried once for each folder and device. Not for two
/// threads.
class TLeases {
public:
    /// Of a file in `folder` that is open for reading, and for reading alone. The lease is given back at
    /// once.
    [[nodiscard]] TLease Ask(const TFolder& folder, int descriptor);
    /// The same, and a lease that was granted is kept until the descriptor is closed: who opens the file for
    /// writing then waits until then.
    [[nodiscard]] TLease Take(const TFolder& folder, int descriptor);

private:
    struct TProbed {
        quint64 Device;
        bool Grants;
    };
    [[nodiscard]] bool Grants(const TFolder& folder, quint64 device);

    QHash<string, TProbed> FProbed; // by folder
};
