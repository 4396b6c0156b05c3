#pragma once
// The commands of morvanectl that tell how the agent fares.
#include "apps/ctl/CommandLine.h"

/// What the agent says of itself, for people or as its line of JSON.
[[nodiscard]] TCommandResult Status(const TCommandCall& call);

/// Whether folders are served: ExitNotServing where the agent answers and serves none.
[[nodiscard]] TCommandResult Check(const TCommandCall& call);
