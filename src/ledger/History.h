#pragma once
// Questions to the ledger about what became of files.
#include "ledger/FileRecord.h"

#include <QMap>

#include <limits>

class TLedgerConnection;

struct THistoryFilter {
    std::optional<string> Folder = {};
    QList<TRecordState> States = {};                   ///< empty: all
    qint64 From = 0;                                   ///< ms since 1970: it ended then or later,
    qint64 Until = std::numeric_limits<qint64>::max(); ///< and before then
    std::optional<string> Name = {};        ///< "*" and "?" stand for others; case doesn't matter from A to Z
    std::optional<QByteArray> Settled = {}; ///< its name in process/ or Error/
    /// The key of the last row that was seen, for those behind it.
    qint64 Before = std::numeric_limits<qint64>::max();
    int Limit = 100; ///< rows at most
};

struct THistoryRow {
    qint64 Key = 0;
    TFileRecord Record;
};

/// Since the ledger began, whatever was pruned since.
struct THistoryTotal {
    string Agent;
    string Folder;
    TRecordState State = TRecordState::Done;
    qint64 Files = 0;
    qint64 Pages = 0;
    qint64 Bytes = 0; ///< of sources
    qint64 Milliseconds = 0;
};

class THistory {
public:
    explicit THistory(TLedgerConnection& ledger) : FLedger(ledger) {}

    /// The newest first. Raises ELedger, as all here.
    [[nodiscard]] QList<THistoryRow> Find(const THistoryFilter& filter);
    /// Only files whose last outcome it is, and that failed.
    [[nodiscard]] QList<THistoryRow> Failed(THistoryFilter filter);
    /// How many Failed would find in each folder, by its path.
    [[nodiscard]] QMap<string, qint64> FailedCounts();
    /// In the order of agent, folder and state.
    [[nodiscard]] QList<THistoryTotal> Totals();

private:
    [[nodiscard]] QList<THistoryRow> Select(const THistoryFilter& filter, const QByteArray& condition);

    TLedgerConnection& FLedger;
};
