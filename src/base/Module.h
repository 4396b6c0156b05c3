#pragma once
// Libraries of ours that a program loads when it first needs them, from ../lib/morvane beside its folder.
//
// Program and module are built together and share types whose layout nothing checks. So a running program
// loads the files that were there when it began, also after an upgrade has put others in their place, and
// none of another version.
#include "base/Text.h"

#include <QList>

/// Names of files in lib/morvane.
inline constexpr char ScriptModule[] = "morvane-script.so";
inline constexpr char PainterModule[] = "morvane-painter.so";

/// Opens the modules, so that the files of this moment are what LoadModule loads later. Without it LoadModule
/// takes what is there at its call. Before there are other threads.
void HoldModules();

/// How many modules there are.
inline constexpr int ModuleCount = 2;
/// What is held, in a fixed order; -1 for what isn't. A process that this one starts may be given them.
[[nodiscard]] QList<int> HeldModules();
/// Holds those that the process was given as the descriptors from `first` on, in that order, where they are
/// open; the others as HoldModules() does.
void HoldModulesFrom(int first);

/// Loads a module for the rest of the process and returns its symbol `entry`. Raises Exception where the
/// module is missing, can't be loaded, or is of another version than this program.
[[nodiscard]] void* LoadModule(const char* module, const char* entry);

/// Stands once in each module.
#define MORVANE_MODULE                                                                                       \
    extern "C" [[gnu::visibility("default")]] const char MorvaneModuleVersion[];                             \
    const char MorvaneModuleVersion[] = MORVANE_VERSION;
