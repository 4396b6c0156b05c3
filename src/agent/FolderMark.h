#pragma once
// The hidden file ".morvane-folder" in a watched folder that several agents may serve. It says how all agents
// know the folder, since its path is another on each machine, and which agent served it last.
#include "base/Folder.h"

inline constexpr char FolderMarkFile[] = ".morvane-folder";

/// The folder's identifier; makes the file where it is missing. Agents that do so at once agree on one.
/// Raises EFileError where it can't be had, or where that file holds none.
[[nodiscard]] string FolderKeyOf(const TFolderPtr& folder);

/// Whether others may serve the folder, too: it is on a network, or somebody else may write to it.
[[nodiscard]] bool MayBeShared(const TFolder& folder);

/// How agents without a common ledger notice each other: each writes itself into the file once a minute, and
/// sees whether another has since. No clock of another machine is compared.
class THeartbeat {
public:
    /// The other agent that serves the folder, as it names itself; empty while none is known. `now` is by the
    /// steady clock. Raises EFileError.
    [[nodiscard]] const string& Look(const TFolderPtr& folder, const string& agent, qint64 now);

private:
    qint64 FNext = 0;
    bool FWritten = false; // ours stood there when others could write
    string FOther;
};
