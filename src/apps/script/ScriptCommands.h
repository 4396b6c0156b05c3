#pragma once
// What morvane-script does.
#include "apps/script/CommandLine.h"

#include <QStringList>

/// Opens the file in the script editor and saves it whenever the user says so; where that fails the editor
/// stays open. A file that can't be written is opened for reading. Raises Exception, before anything is
/// shown, for what is no script's file.
[[nodiscard]] TExitCode EditScript(const string& path);

/// Compiles the files without running them. Writes one line for each that has a fault or can't be used,
/// "FILE:LINE:COLUMN: message", to standard error. Needs no desktop.
[[nodiscard]] TExitCode CheckScripts(const QStringList& paths);
