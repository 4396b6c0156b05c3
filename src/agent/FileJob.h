#pragma once
// The work on one file: open, run the actions, save. It touches nothing but the files named and the shared
// script document, and tells what happens through its reporter, so that it may one day run in a process of
// its own.
#include "base/Text.h"

class TPDFActions;
class TSourceFile;

struct TFileJob {
    string Source;
    string Dest;
    string ActionName;
    TPDFActions* Actions = nullptr; ///< null: no list has that name
};

class TJobReporter {
public:
    virtual ~TJobReporter() = default;
    virtual void Log(const string& line) = 0;
    virtual void Hint(const string& text) = 0;
    /// The agent is to stop: no further action is begun.
    [[nodiscard]] virtual bool Terminated() const = 0;
};

enum class TJobOutcome {
    Worked,    ///< the source may be moved to the worked ones
    Protected, ///< needs a password: the source stays
    Stopped,   ///< the agent is stopping: the source stays, for its next start
    Replaced,  ///< another file has taken the name meanwhile: its turn comes later
};

/// Raises what opening, an action or saving raises; the file has then failed.
[[nodiscard]] TJobOutcome WorkOnFile(const TFileJob& job, const TSourceFile& source, TJobReporter& reporter);
