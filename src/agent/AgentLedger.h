#pragma once
// The ledger as the run of the folders uses it: what becomes of files goes there, and never holds them up.
#include "base/Settings.h"
#include "ledger/LedgerQueue.h"

#include <optional>

class TAgentLedger {
public:
    /// Opens nothing yet. A setting that names no ledger is a fault like a ledger that can't be written.
    explicit TAgentLedger(const TEditorSettings& settings);

    // From any thread:
    void Record(TFileRecord record);
    [[nodiscard]] TLedgerQueueState State() const;

private:
    string FFault; // of the setting
    std::optional<TLedgerQueue> FQueue;
};

/// This agent's name for people, in the ledger of one that shares folders with others: "scans@server".
[[nodiscard]] string AgentName();
