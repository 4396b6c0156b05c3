#include "ledger/Series.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

#include <algorithm>
#include <limits>

namespace {

TNumberState StateNamed(const string& name) {
    return name == QLatin1String("given")  ? TNumberState::Given
           : name == QLatin1String("void") ? TNumberState::Void
                                           : TNumberState::Reserved;
}

/// The numbers of one reservation: those of the runs that were given, and all between them.
void TellReservation(TAuditRow row, qint64 first, qint64 count, const QList<QVariantList>& runs,
                     const std::function<void(const TAuditRow&)>& tell) {
    const TAuditRow rest = row;
    auto run = runs.begin();
    for (qint64 i = 0; i < count; ++i) {
        const qint64 number = first + i;
        if (run != runs.end() && number - run->at(0).toLongLong() >= run->at(1).toLongLong())
            ++run;
        row = rest;
        row.Number = number;
        if (run != runs.end() && number >= run->at(0).toLongLong()) {
            const qint64 page = run->at(2).toLongLong();
            row.Page = page > 0 ? page + number - run->at(0).toLongLong() : 0;
        } else if (row.State == TNumberState::Given) {
            row.State = TNumberState::Void; // the file didn't show it
            row.Result.clear();
        }
        tell(row);
    }
}

} // namespace

QList<TSeriesState> TSeries::List() {
    QList<TSeriesState> series;
    FLedger.Read([&] {
        series.clear();
        for (const QVariantList& row :
             FLedger.Rows("SELECT c.series, c.next,"
                          " COALESCE((SELECT SUM(n.count) FROM numbers n WHERE n.series = c.series), 0),"
                          " COALESCE((SELECT SUM(r.count) FROM reservations r WHERE r.series = c.series), 0),"
                          " COALESCE((SELECT SUM(r.count) FROM reservations r WHERE r.series = c.series"
                          " AND r.ended = 0), 0) FROM counters c")) {
            TSeriesState state{TextOfStored(row[0].toString()), row[1].toLongLong(), row[2].toLongLong(), 0,
                               row[4].toLongLong()};
            state.Void = row[3].toLongLong() - state.Given - state.Reserved;
            series.append(state);
        }
    });
    std::sort(series.begin(), series.end(),
              [](const TSeriesState& a, const TSeriesState& b) { return a.Name < b.Name; });
    return series;
}

void TSeries::SetNext(const string& series, qint64 next) {
    if (series.isEmpty())
        throw ELedger(TLedgerFault::Refused, QStringLiteral("A series needs a name."));
    FLedger.Write(TDurable::Fully, [&] {
        const string stored = StoredText(series);
        FLedger.Change("INSERT INTO counters (series, next) VALUES (?, 1) ON CONFLICT (series) DO NOTHING",
                       {stored});
        if (FLedger.Change("UPDATE counters SET next = ? WHERE series = ? AND next <= ?",
                           {next, stored, next}) == 1)
            return;
        const auto found = FLedger.Rows("SELECT next FROM counters WHERE series = ?", {stored});
        throw ELedger(TLedgerFault::Refused,
                      QStringLiteral("The next number of the series \"%1\" is %2; it can be set upward only.")
                          .arg(series)
                          .arg(found.value(0).value(0).toLongLong()));
    });
}

void TSeries::Audit(const string& series, const std::function<void(const TAuditRow&)>& row) {
    constexpr qsizetype Group = 1000; // reservations that are read at a time
    qint64 after = std::numeric_limits<qint64>::min() + 1;
    QList<QVariantList> reservations;
    do {
        QList<QList<QVariantList>> runs;
        FLedger.Read([&] {
            runs.clear();
            reservations = FLedger.Rows(
                "SELECT first, count, id, state, folder, name, result, CASE WHEN ended > 0 THEN ended ELSE "
                "reserved"
                " END, agent, hash FROM reservations WHERE series = ? AND first > ? ORDER BY first LIMIT ?",
                {StoredText(series), after, qint64(Group)});
            for (const QVariantList& one : std::as_const(reservations))
                runs.append(FLedger.Rows("SELECT first, count, page FROM numbers WHERE reservation = ?"
                                         " ORDER BY first",
                                         {one[2]}));
        });
        for (qsizetype i = 0; i < reservations.size(); ++i) {
            const QVariantList& one = reservations[i];
            after = one[0].toLongLong();
            TellReservation({series, 0, StateNamed(one[3].toString()), TextOfStored(one[4].toString()),
                             BytesOfStored(one[5].toString()), BytesOfStored(one[6].toString()), 0,
                             one[7].toLongLong(), TextOfStored(one[8].toString()),
                             QByteArray::fromHex(one[9].toString().toLatin1())},
                            after, one[1].toLongLong(), runs[i], row);
        }
    } while (reservations.size() == Group);
}
