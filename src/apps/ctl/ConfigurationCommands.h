#pragma once
// The commands of morvanectl that work on the configuration folder, whether the agent runs or not.
#include "apps/ctl/CommandLine.h"

/// Makes the folder with both configuration files, an example list and the folder that it serves (Morvane in
/// the home folder, or inbox in the one that is named), and the settings where there are none. What is there
/// already stays as it is. Without a name it is the folder of the settings.
[[nodiscard]] TCommandResult Init(const TCommandCall& call);

/// Reads both files and names with file and line all that the agent could not use or that would come to
/// nothing (apps/ctl/lint).
[[nodiscard]] TCommandResult Lint(const TCommandCall& call);
