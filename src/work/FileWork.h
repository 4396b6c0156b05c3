#pragma once
// The work on one file: open, run the actions, write the result to a hidden file beside its destination. It
// touches nothing but the files handed to it and the shared script document, and tells what happens through
// its reporter; taking, publishing and moving are its caller's.
#include "base/PartFile.h"
#include "work/Outcome.h"

class TPDFActions;

struct TFileWork {
    string Source;       ///< path, for texts; the file itself is the descriptor
    int Descriptor = -1; ///< of the source, open for reading
    TFolderPtr DestFolder;
    string DestName; ///< planned
    string ActionName;
    TPDFActions* Actions = nullptr; ///< null: no list has that name
    [[nodiscard]] string Dest() const { return DestFolder->Path() + DestName; }
};

class TWorkReporter {
public:
    virtual ~TWorkReporter() = default;
    virtual void Log(const string& line) = 0;
    virtual void Hint(const string& text) = 0;
    /// The agent is to stop: no further action is begun.
    [[nodiscard]] virtual bool Terminated() const = 0;
};

struct TWorked {
    TOutcome Outcome;
    std::unique_ptr<TPartFile> Result; ///< to be published; null where there is none
};

/// Done means that the source may leave its folder, with a result or, where no list has the name, without
/// one. Waiting is a protected file, and Stopped one whose actions were cut short. Raises ESurroundings for
/// trouble with the source's disk and the result's; anything else that opening, an action or writing raises
/// means that the file has failed. `step` then names the action.
[[nodiscard]] TWorked WorkOnFile(const TFileWork& work, TWorkReporter& reporter, string& step);
