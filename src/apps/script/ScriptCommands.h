#pragma once
// What morvane-script does.
#include "apps/script/CommandLine.h"

#include <QStringList>

/// Opens the file in the script editor and saves it once the user confirms; a text that could not be saved
/// comes back into the editor. Raises Exception, before anything is shown, for a file that can't be edited.
[[nodiscard]] TExitCode EditScript(const string& path);

/// Compiles the files without running them. Writes one line for each that has a fault or can't be used,
/// "FILE:LINE:COLUMN: message", to standard error. Needs no desktop.
[[nodiscard]] TExitCode CheckScripts(const QStringList& paths);
