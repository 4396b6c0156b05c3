#pragma once
// What a worker may do beyond the files that are handed to it. A hostile document that takes over a library
// takes over no more than this.
#include "base/Text.h"

class TPDFActionList;

/// What the actions of a list need of the system.
enum class TReach {
    Nothing,  ///< no file but those that are handed over, fonts and libraries apart
    Files,    ///< files that they name
    Programs, ///< whatever their scripts do
};

/// By the run-time table: an action with a member that names a file reaches files.
[[nodiscard]] TReach ReachOf(const TPDFActionList* list);

/// Gives up for good what that reach doesn't need. On the process's only thread. Returns what is in force, as
/// "landlock, seccomp", for people; a system without the one or the other goes without it.
string EnterSandbox(TReach reach);
