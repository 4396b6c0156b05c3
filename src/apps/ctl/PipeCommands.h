#pragma once
// How morvanectl speaks to the running agent through its control pipe.
#include "apps/ctl/CommandLine.h"

#include <optional>

struct TPipeReply {
    string Text;
    std::optional<TCommandResult> Failure; ///< where there is no reply
};

/// Sends a command that has an answer, and waits for it.
[[nodiscard]] TPipeReply AskAgent(const string& command, int timeoutMs);

/// Has the agent leave a folder alone until the next; no folder is all of them.
[[nodiscard]] TCommandResult Pause(const TCommandCall& call);
[[nodiscard]] TCommandResult Resume(const TCommandCall& call);

/// Has the agent reload "folders" or "actions" at its next tick. Done once the agent has taken the command.
[[nodiscard]] TCommandResult Refresh(const TCommandCall& call);
