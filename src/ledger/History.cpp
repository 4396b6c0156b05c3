#include "ledger/History.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

namespace {

constexpr char LastAndFailed[] = "state = 'Failed' AND NOT EXISTS (SELECT 1 FROM files l"
                                 " WHERE l.folder = f.folder AND l.name = f.name AND l.id > f.id)";

/// As LIKE has it.
string LikePattern(const string& pattern) {
    string like;
    for (const QChar c : StoredText(pattern)) {
        if (c == u'%' || c == u'_' || c == u'\\')
            like += u'\\';
        like += c == u'*' ? u'%' : c == u'?' ? u'_' : c;
    }
    return like;
}

THistoryRow RowOf(const QVariantList& row) {
    THistoryRow result;
    TFileRecord& record = result.Record;
    qsizetype column = 0;
    const auto next = [&] { return row.value(column++); };
    result.Key = next().toLongLong();
    record.Folder = TextOfStored(next().toString());
    record.Name = BytesOfStored(next().toString());
    record.List = TextOfStored(next().toString());
    record.State = StateNamed(next().toString()).value_or(TRecordState::Failed);
    record.Results = ResultsOfStored(next().toString());
    record.Reasons = ReasonsOfStored(next().toString());
    record.Numbers = NumbersOfStored(next().toString());
    record.Pages = next().toLongLong();
    record.Size = next().toLongLong();
    record.Began = next().toLongLong();
    record.Ended = next().toLongLong();
    record.Agent = TextOfStored(next().toString());
    record.Settled = BytesOfStored(next().toString());
    return result;
}

} // namespace

QList<THistoryRow> THistory::Select(const THistoryFilter& filter, const QByteArray& condition) {
    QByteArray sql =
        "SELECT id, folder, name, list, state, results, reasons, numbers, pages, size, began, ended,"
        " agent, settled FROM files f WHERE id < ? AND ended >= ? AND ended < ?" +
        condition;
    QVariantList values{filter.Before, filter.From, filter.Until};
    if (filter.Folder) {
        sql += " AND folder = ?";
        values.append(StoredText(*filter.Folder));
    }
    if (!filter.States.isEmpty()) {
        sql += " AND state IN (?" + QByteArray(", ?").repeated(filter.States.size() - 1) + ")";
        for (const TRecordState state : filter.States)
            values.append(StateName(state));
    }
    if (filter.Name) {
        sql += " AND name {like}";
        values.append(LikePattern(*filter.Name));
    }
    if (filter.Settled) {
        sql += " AND settled = ?";
        values.append(StoredText(*filter.Settled));
    }
    sql += " ORDER BY id DESC LIMIT ?";
    values.append(qint64(filter.Limit));
    QList<THistoryRow> found;
    FLedger.Read([&] {
        found.clear();
        for (const QVariantList& row : FLedger.Rows(sql.constData(), values))
            found.append(RowOf(row));
    });
    return found;
}

QList<THistoryRow> THistory::Find(const THistoryFilter& filter) {
    return Select(filter, {});
}

QList<THistoryRow> THistory::Failed(THistoryFilter filter) {
    filter.States.clear();
    return Select(filter, QByteArray(" AND ") + LastAndFailed);
}

QMap<string, qint64> THistory::FailedCounts() {
    QMap<string, qint64> counts;
    const QByteArray sql =
        QByteArray("SELECT folder, COUNT(*) FROM files f WHERE ") + LastAndFailed + " GROUP BY folder";
    FLedger.Read([&] {
        counts.clear();
        for (const QVariantList& row : FLedger.Rows(sql.constData()))
            counts.insert(TextOfStored(row[0].toString()), row[1].toLongLong());
    });
    return counts;
}

QList<THistoryTotal> THistory::Totals() {
    QList<THistoryTotal> totals;
    FLedger.Read([&] {
        totals.clear();
        for (const QVariantList& row :
             FLedger.Rows("SELECT agent, folder, state, files, pages, bytes, milliseconds FROM totals"
                          " ORDER BY agent, folder, state"))
            totals.append({TextOfStored(row[0].toString()), TextOfStored(row[1].toString()),
                           StateNamed(row[2].toString()).value_or(TRecordState::Failed), row[3].toLongLong(),
                           row[4].toLongLong(), row[5].toLongLong(), row[6].toLongLong()});
    });
    return totals;
}
