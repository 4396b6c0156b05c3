#pragma once
// The command line of morvane-script.
#include "base/Text.h"

#include <QStringList>

#include <functional>

/// What scripts test for; as those of morvanectl.
enum TExitCode {
    ExitDone = 0,
    ExitFailed = 1, ///< a file could not be read or saved, or there is no desktop
    ExitUsage = 2,  ///< the command line makes no sense
    ExitFaults = 4, ///< a script has a syntax error
};

/// One line on standard error, behind the program's name.
void PrintFailure(const string& text);

/// Parses the command line, program name first, and does what it says; a file is edited by `edit`.
[[nodiscard]] TExitCode RunCommandLine(const QStringList& arguments,
                                       const std::function<TExitCode(const string& path)>& edit);
