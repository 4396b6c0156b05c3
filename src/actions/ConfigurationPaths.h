#pragma once
#include "base/Text.h"

/// `actions.xml` and `watchedfolders.xml` in the configuration folder of the settings, its references
/// expanded.
[[nodiscard]] string ActionsFile();
[[nodiscard]] string WatchedFoldersFile();
