#pragma once
// The command line of morvanectl: which commands there are, and what comes of one.
#include "base/Exceptions.h"

#include <QStringList>

/// What scripts test for.
enum TExitCode {
    ExitDone = 0,
    ExitFailed = 1,     ///< nobody serves the agent's pipe, or a file could not be read or made
    ExitUsage = 2,      ///< the command line makes no sense
    ExitNoAnswer = 3,   ///< the agent's pipe is there but gave no answer in time
    ExitFaults = 4,     ///< the configuration has faults
    ExitNotServing = 5, ///< the agent answers, and no folder is served
};

/// What a command comes to: its text goes to standard output if it is done, else to standard error.
struct TCommandResult {
    TExitCode Code = ExitDone;
    string Text; ///< one or more lines; empty prints nothing
};

/// The command line makes no sense.
class EUsage : public Exception {
public:
    using Exception::Exception;
};

struct TCommandCall {
    QStringList Words;                       ///< behind the command
    int TimeoutMs = 0;                       ///< how long to wait for an answer
    bool Json = false;                       ///< for programs, not for people
    const class QCommandLineParser& Options; ///< the command's own among them

    /// Empty where there is none.
    [[nodiscard]] string Word() const { return Words.value(0); }
};

/// Parses the command line, program name first, and does what it says.
[[nodiscard]] TExitCode RunCommandLine(const QStringList& arguments);
