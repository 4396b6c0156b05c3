#pragma once
// Which file a name leads to, and whether it was written to.
#include "base/Text.h"

#include <sys/stat.h>

/// Renaming changes the ctime of a file and nothing else here.
struct TFileState {
    quint64 Device = 0;
    quint64 Inode = 0;
    qint64 Size = -1;
    qint64 ModifyTime = 0; ///< nanoseconds since 1970
    qint64 ChangeTime = 0; ///< ctime, likewise: copying tools can't set it
    bool operator==(const TFileState&) const = default;
    /// The same file with the same contents, renamed or not.
    [[nodiscard]] bool SameContents(const TFileState& other) const;
};
[[nodiscard]] TFileState StateOf(const struct stat& info);
