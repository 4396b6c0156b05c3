#pragma once
// One file on its way through a folder's turn, from its opening to its place in the end.
#include "agent/FileEntry.h"
#include "agent/TurnLog.h"
#include "base/PartFile.h"
#include "base/SourceFile.h"
#include "work/FileWork.h"

#include <optional>

class TPDFActionList;
class TTrayHint;

/// The host of the work on the file. Its lines go into the run log when its turn's order has come to it, and
/// not before it is known whether they are worth saying.
class TJob : public TWorkHost {
public:
    TJob(std::unique_ptr<TSourceFile> source, TFolderPtr output, TTurnLog& log,
         const std::function<bool()>& terminated, TTrayHint& hint);

    void Log(const string& line) override;
    void Hint(const string& text) override;
    [[nodiscard]] bool Terminated() override { return FTerminated(); }
    [[nodiscard]] TOutputFile& OpenResult() override;
    [[nodiscard]] qint64 TakeNumbers(const string& series, qint64 count) override;

    /// No file before it is still at work: its lines are written as they come.
    void TakePlace();
    /// Others go first: its lines wait for its end.
    void GiveUpPlace() { FInPlace = false; }
    /// Holds its lines until one of the next two: the file waited before, and may wait again.
    void Hold() { FHolding = true; }
    void Release();
    void Drop();
    /// The work begins anew, and says again what it has said.
    void BeginAnew();

    std::unique_ptr<TSourceFile> Source;
    std::unique_ptr<TFileEntry> Entry; ///< null: there is no ledger. Goes before the source
    TFileWork Work;
    TPDFActionList* List = nullptr;    ///< null: no list has that name
    std::unique_ptr<TPartFile> Result; ///< from OpenResult() on
    std::optional<TOutcome> Outcome;   ///< once the work is over, or where there is none to do
    bool WasProtected = false;         ///< when it was looked at last: perhaps no result is wanted
    bool Published = false;            ///< an earlier go did that: only the rest of its way is left
    bool Lost = false;                 ///< its first worker was killed
    qint64 Begun = 0;                  ///< by the steady clock

private:
    void Flush();

    TFolderPtr FOutput;
    TTurnLog& FLog;
    const std::function<bool()>& FTerminated;
    TTrayHint& FHint;
    QStringList FLines;
    qsizetype FSaid = 0;       // lines that have gone into the log
    qsizetype FSaidBefore = 0; // of them, those that are still to come once more
    bool FInPlace = false;
    bool FHolding = false;
};
