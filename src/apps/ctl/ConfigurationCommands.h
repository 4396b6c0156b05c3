#pragma once
// The commands of morvanectl that work on the configuration folder, whether the agent runs or not.
#include "apps/ctl/CommandLine.h"

/// Makes the folder with both configuration files, an example list and the folder that it serves, and the
/// settings where there are none. What is there already stays as it is. An empty `folder` is that of the
/// settings.
[[nodiscard]] TCommandResult Init(const string& folder, const TCommandOptions& options);

/// Reads both files as the agent would, and names with file and line what it could not use: malformed XML,
/// unknown classes and elements, values that are none, lists and folders that don't exist.
[[nodiscard]] TCommandResult Lint(const string& folder, const TCommandOptions& options);
