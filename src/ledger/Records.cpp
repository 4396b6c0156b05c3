#include "ledger/Records.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

#include <algorithm>
#include <map>
#include <tuple>

void TRecords::Write(const string& writer, qint64 first, const QList<TFileRecord>& records) {
    const qint64 last = first + records.size() - 1;
    FLedger.Write(TDurable::Soon, [&] {
        const auto found = FLedger.Rows("SELECT recorded FROM writers WHERE writer = ?", {writer});
        const qint64 recorded = found.value(0).value(0).toLongLong();
        const auto fresh = records.mid(std::clamp(recorded - first + 1, qint64(0), records.size()));
        if (fresh.isEmpty())
            return;
        for (const TFileRecord& record : fresh)
            Insert(record);
        AddTotals(fresh);
        FLedger.Change("INSERT INTO writers (writer, recorded, written) VALUES (?, ?, {now})"
                       " ON CONFLICT (writer) DO UPDATE SET recorded = excluded.recorded,"
                       " written = excluded.written",
                       {writer, last});
    });
}

void TRecords::Insert(const TFileRecord& record) {
    FLedger.Change(
        "INSERT INTO files (folder, name, list, state, results, reasons, numbers, pages, size, began,"
        " ended, agent, settled) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {StoredText(record.Folder), StoredText(record.Name), StoredText(record.List), StateName(record.State),
         StoredResults(record.Results), StoredReasons(record.Reasons), StoredNumbers(record.Numbers),
         record.Pages, record.Size, record.Began, record.Ended, StoredText(record.Agent),
         StoredText(record.Settled)});
}

void TRecords::AddTotals(const QList<TFileRecord>& records) {
    struct TSum {
        qint64 Files = 0;
        qint64 Pages = 0;
        qint64 Bytes = 0;
        qint64 Milliseconds = 0;
    };
    // In the order of their keys, so that two writers never wait for each other.
    std::map<std::tuple<string, string, TRecordState>, TSum> sums;
    for (const TFileRecord& record : records) {
        TSum& sum = sums[{record.Agent, record.Folder, record.State}];
        sum.Files += 1;
        sum.Pages += record.Pages;
        sum.Bytes += record.Size;
        sum.Milliseconds += std::max(record.Ended - record.Began, qint64(0));
    }
    for (const auto& [key, sum] : sums) {
        const auto& [agent, folder, state] = key;
        FLedger.Change("INSERT INTO totals (agent, folder, state, files, pages, bytes, milliseconds)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT (agent, folder, state) DO UPDATE SET"
                       " files = totals.files + excluded.files, pages = totals.pages + excluded.pages,"
                       " bytes = totals.bytes + excluded.bytes,"
                       " milliseconds = totals.milliseconds + excluded.milliseconds",
                       {StoredText(agent), StoredText(folder), StateName(state), sum.Files, sum.Pages,
                        sum.Bytes, sum.Milliseconds});
    }
}

qint64 TRecords::Prune(qint64 before, qint64 most) {
    qint64 removed = 0;
    FLedger.Write(TDurable::Soon, [&] {
        removed = FLedger.Change("DELETE FROM files WHERE id IN (SELECT id FROM files WHERE ended < ?"
                                 " ORDER BY ended LIMIT ?)",
                                 {before, most});
        // Writers and runs that ended long ago; what is still held of theirs needs no row.
        constexpr qint64 Day = 86'400'000;
        FLedger.Change("DELETE FROM writers WHERE written < {now} - ?", {Day});
        FLedger.Change("DELETE FROM agents WHERE lease < {now} - ?", {Day});
    });
    return removed;
}
