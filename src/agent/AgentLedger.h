#pragma once
// The ledger as the run of the folders uses it: what becomes of files goes there, and never holds them up;
// numbers and claims come from there, and what needs them waits for it.
#include "base/Settings.h"
#include "ledger/Claims.h"
#include "ledger/LedgerError.h"
#include "ledger/LedgerQueue.h"
#include "ledger/LedgerRun.h"
#include "ledger/Numbers.h"

#include <deque>
#include <optional>

class TRecords;

class TAgentLedger {
public:
    /// Opens nothing yet. A setting that names no ledger is a fault like a ledger that can't be written.
    explicit TAgentLedger(const TEditorSettings& settings);
    ~TAgentLedger();
    TAgentLedger(const TAgentLedger&) = delete;
    TAgentLedger& operator=(const TAgentLedger&) = delete;

    // From any thread:
    void Record(TFileRecord record);
    [[nodiscard]] TLedgerQueueState State() const;

    /// Agents that share the ledger share folders, too: each file is claimed before it is worked on.
    [[nodiscard]] bool IsShared() const;

    /// There may be claims of agents that died: of a ledger of our own only where the last run did.
    [[nodiscard]] bool MayHoldLeftClaims() const { return IsShared() || FDesk != nullptr || FWasCutShort; }

    // Of the thread that serves the folders. All but Leave raise ELedger.
    [[nodiscard]] TLedgerRun& Run();
    [[nodiscard]] TNumbers& Numbers();
    [[nodiscard]] TClaims& Claims();
    /// In one transaction with the end of a claim; `end` says false where that is somebody else's by now, who
    /// has recorded what became of the file, or will.
    void RecordAtOnce(TFileRecord record, const std::function<bool()>& end);
    /// The same for a claim of this agent. Where that fails it is kept, and tried again by FinishEnds. Raises
    /// nothing.
    void EndClaim(TFileRecord record, std::unique_ptr<TLedgerWork> work, const TClaim& claim) noexcept;
    void FinishEnds() noexcept;
    /// The thread uses it no more.
    void Leave();

private:
    struct TDesk;
    struct TEnd {
        TFileRecord Record;
        std::unique_ptr<TLedgerWork> Work;
        TClaim Claim;
    };
    [[nodiscard]] TDesk& Desk();
    void TryEnd(const TEnd& end);

    std::optional<TLedgerPlace> FPlace;
    string FFault; // of the setting
    bool FWasCutShort = false;
    std::optional<TLedgerQueue> FQueue;
    std::unique_ptr<TDesk> FDesk;
    std::deque<TEnd> FEnds; // before the desk: their works are of its run
};

/// This agent's name for people, in the ledger of one that shares folders with others: "scans@server".
[[nodiscard]] string AgentName();
