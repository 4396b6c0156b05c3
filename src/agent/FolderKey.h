#pragma once
// How all agents that share a folder know it, since its path is another on each machine: by an identifier in
// the hidden file ".morvane-folder" in it.
#include "base/Folder.h"

inline constexpr char FolderKeyFile[] = ".morvane-folder";

/// Reads it; makes the file where it is missing. Agents that do so at once agree on one. Raises EFileError
/// where it can't be had, or where that file holds none.
[[nodiscard]] string FolderKeyOf(const TFolderPtr& folder);
