#pragma once
// Outcomes on their way into the ledger.
#include "ledger/FileRecord.h"

class TLedgerConnection;

class TRecords {
public:
    explicit TRecords(TLedgerConnection& ledger) : FLedger(ledger) {}

    /// All of them in one transaction, or none. The writer counts its records from 1, and `first` is the
    /// number of the first of these: one that the ledger has already, because nobody knew whether the server
    /// had taken it, isn't written again. Raises ELedger.
    void Write(const string& writer, qint64 first, const QList<TFileRecord>& records);
    /// Removes at most `most` of the outcomes that ended before a time (ms since 1970), the oldest first;
    /// says how many it was. What counts over all times stays. Raises ELedger.
    qint64 Prune(qint64 before, qint64 most);

private:
    void Insert(const TFileRecord& record);
    void AddTotals(const QList<TFileRecord>& records);

    TLedgerConnection& FLedger;
};
