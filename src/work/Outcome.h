#pragma once
// What became of a file: every file that is taken up ends in one of these.
#include "base/GivenNumbers.h"
#include "engine/file/Warnings.h"

#include <QList>

#include <cerrno>

enum class TOutcomeState {
    Done,
    DoneWithWarnings,
    Failed,  ///< the document or the list is at fault
    Waiting, ///< the surroundings are, or the file isn't ready: it stays and is taken up again
    Stopped, ///< the agent was told to end: the file stays for its next start
};

/// Why. Names are for people and programs to filter by, and are never changed.
enum class TReasonCode {
    DamageRepaired,       ///< damage.repaired
    DamagePagesLost,      ///< damage.pages-lost
    DamageContent,        ///< damage.content-unreadable
    SignatureInvalidated, ///< signature.invalidated
    PermissionRefused,    ///< permission.refused
    FieldsLost,           ///< import.fields-lost
    MetadataUnreadable,   ///< metadata.unreadable
    ContentNotShown,      ///< content.not-shown
    NamesUnreadable,      ///< names.unreadable
    ActionRaised,         ///< action.raised
    ScriptError,          ///< script.error
    ListUnknown,          ///< list.unknown
    WorkerCrashed,        ///< worker.crashed
    WorkerTimedOut,       ///< worker.timed-out
    WorkerMemory,         ///< worker.memory
    InputProtected,       ///< input.protected
    InputBusy,            ///< input.busy
    InputReplaced,        ///< input.replaced
    InputUnreadable,      ///< input.unreadable
    InputNotPdf,          ///< input.not-pdf
    InputRetried,         ///< input.retried
    LedgerUnusable,       ///< ledger.unusable
    FolderUnusable,       ///< folder.unusable
    DiskFull,             ///< disk.full
    ClaimRefused,         ///< claim.refused
    ClaimElsewhere,       ///< claim.elsewhere
    Other,                ///< other
};
/// As in "damage.repaired".
[[nodiscard]] string ReasonName(TReasonCode code);

[[nodiscard]] TReasonCode ReasonOf(TWarningKind kind);
/// In the place of an errno value: the ledger is away.
inline constexpr int LedgerTrouble = EAGAIN;
/// Of trouble of the surroundings: errno, and whether it was in reading the source.
[[nodiscard]] TReasonCode ReasonOfTrouble(int error, bool ofSource);

struct TReason {
    TReasonCode Code = TReasonCode::Other;
    string Step; ///< as in "action 3, AddWatermark"; empty where no action is concerned
    string Text;
};

/// "code: step: text".
[[nodiscard]] string ReasonLine(const TReason& reason);

struct TOutcome {
    TOutcomeState State = TOutcomeState::Done;
    QList<TReason> Reasons;
    bool Written = false;      ///< a whole result stands in the file that was made for it
    int Pages = 0;             ///< of the result
    QList<TNumberRun> Numbers; ///< of series, that it bears
    // Where it is the surroundings that a file waits for:
    int Error = 0;         ///< as errno; 0 for any other reason
    bool OfSource = false; ///< in reading the source

    /// What came first, for people; empty where all is well.
    [[nodiscard]] string Text() const { return Reasons.isEmpty() ? string() : Reasons.first().Text; }
};
