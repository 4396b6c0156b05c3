#pragma once
// Libraries of ours that a program loads when it first needs them, from ../lib/morvane beside its folder.
//
// Program and module are built together and share types whose layout nothing checks. So a running program
// loads the files that were there when it began, also after an upgrade has put others in their place, and
// none of another version.
#include "base/Text.h"

/// Names of files in lib/morvane.
inline constexpr char ScriptModule[] = "morvane-script.so";
inline constexpr char PainterModule[] = "morvane-painter.so";

/// Opens the modules, so that the files of this moment are what LoadModule loads later. Without it LoadModule
/// takes what is there at its call. Before there are other threads.
void HoldModules();

/// Loads a module for the rest of the process and returns its symbol `entry`. Raises Exception where the
/// module is missing, can't be loaded, or is of another version than this program.
[[nodiscard]] void* LoadModule(const char* module, const char* entry);

/// Stands once in each module.
#define MORVANE_MODULE                                                                                       \
    extern "C" [[gnu::visibility("default")]] const char MorvaneModuleVersion[];                             \
    const char MorvaneModuleVersion[] = MORVANE_VERSION;
