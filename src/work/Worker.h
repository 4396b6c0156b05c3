#pragma once
// A worker process: it has one end of a channel, works on the files that come through it, one after the
// other, and ends with the agent.
#include "platform/Descriptor.h"

/// Where the agent puts the worker's end of the channel.
inline constexpr int WorkerSocket = 3;
/// A pipe from the agent: a byte means that the work is to stop, its end that the agent is gone.
inline constexpr int WorkerLeash = 4;
/// And, from here on, the modules that it holds (base/Module.h).
inline constexpr int WorkerModules = 5;

/// Works until the agent wants no more; returns the process's exit code. `reach`, a number of TReach, is what
/// the process's first argument says. The action classes are registered, and there is no other thread yet.
int RunWorker(TDescriptor socket, TDescriptor leash, const char* reach);
