#pragma once
// The work on one file: open, run the actions, write the result to a hidden file beside its destination. It
// touches nothing but the files handed to it and the shared script document, and tells what happens through
// its host; taking, publishing and moving are its caller's.
#include "actions/WatchedFolders.h"
#include "base/OutputFile.h"
#include "work/Outcome.h"

class TPDFActions;

struct TFileWork {
    string Source;       ///< path, for texts; the file itself is the descriptor
    int Descriptor = -1; ///< of the source, open for reading
    string Dest;         ///< path, as planned; likewise for texts
    string ActionName;
    TPDFFolderPolicy Policy;
};

/// The run log's line of work that begins.
[[nodiscard]] string ExecutingLine(const TFileWork& work);

/// Why work that met its limit of memory has failed.
[[nodiscard]] string MemoryText();

/// What the work needs of whoever has it done.
class TWorkHost {
public:
    virtual ~TWorkHost() = default;
    /// A line of the run log.
    virtual void Log(const string& line) = 0;
    virtual void Hint(const string& text) = 0;
    /// The agent is to stop: no further action is begun.
    [[nodiscard]] virtual bool Terminated() = 0;
    /// Makes the file for the result, which stays the host's. Called once at most. Raises EFileError.
    [[nodiscard]] virtual TOutputFile& OpenResult() = 0;
    /// The first of so many consecutive numbers of a series, reserved for this file. Raises ENumbersAway
    /// where that may be had later, and Exception where it can't.
    [[nodiscard]] virtual qint64 TakeNumbers(const string& series, qint64 count);
};

/// Done means that the source may leave its folder, with a result or, where no list has the name (`actions`
/// is null), without one. Waiting is a protected file or trouble of the surroundings, and Stopped a file
/// whose actions were cut short. Raises nothing that a file or its list can cause.
[[nodiscard]] TOutcome WorkOnFile(const TFileWork& work, TPDFActions* actions, TWorkHost& host);
