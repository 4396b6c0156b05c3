#pragma once
// The commands of morvanectl that speak to the running agent through its control pipe.
#include "apps/ctl/CommandLine.h"

/// Whether the agent answers. `argument` is empty.
[[nodiscard]] TOutcome Check(const string& argument, int timeoutMs);

/// Has the agent reload "folders" or "actions" at its next tick. Done once the agent has taken the command.
[[nodiscard]] TOutcome Refresh(const string& argument, int timeoutMs);
