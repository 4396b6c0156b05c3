#pragma once
// The hidden file ".morvane-folder" in a watched folder that several agents may serve. It says how all agents
// know the folder, since its path is another on each machine, and which agent served it last.
#include "base/Folder.h"

#include <limits>

inline constexpr char FolderMarkFile[] = ".morvane-folder";

/// The folder's identifier; makes the file where it is missing. Agents that do so at once agree on one.
/// Raises EFileError where it can't be had, or where that file holds none.
[[nodiscard]] string FolderKeyOf(const TFolderPtr& folder);

/// How agents without a common ledger notice each other: each looks once a minute whether another has written
/// itself into the file since, and writes itself over that. No clock of another machine is compared.
class THeartbeat {
public:
    /// It is time to look; `now` is by the steady clock.
    [[nodiscard]] bool IsDue(qint64 now) const { return now >= FNext; }
    /// The other agent that serves the folder, as it names itself; empty while none is known, and for a
    /// folder that nobody else may serve. Raises EFileError.
    [[nodiscard]] string Look(const TFolderPtr& folder, const string& agent, qint64 now);

private:
    qint64 FNext = std::numeric_limits<qint64>::min();
    bool FWritten = false; // ours stood there when others could write
};
