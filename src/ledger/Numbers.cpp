#include "ledger/Numbers.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

#include <QtEndian>

#include <algorithm>
#include <limits>

namespace {

[[noreturn]] void Refuse(const string& message) {
    throw ELedger(TLedgerFault::Refused, message);
}

string HashOf(const TNumberSource& source) {
    return QString::fromLatin1(source.Sha256.toHex());
}

bool Covers(const TReservation& reservation, const TNumberRun& run) {
    return reservation.Series == run.Series && run.Count > 0 && run.First >= reservation.First &&
           run.First - reservation.First <= reservation.Count - run.Count;
}

bool Overlap(const TNumberRun& a, const TNumberRun& b) {
    return a.Series == b.Series && a.First < b.First + b.Count && b.First < a.First + a.Count;
}

} // namespace

void TNumbers::LockSource(const TNumberSource& source) {
    (void)FLedger.Rows("{lock source}",
                       {qFromBigEndian<qint64>(source.Sha256.leftJustified(8, '\0').constData())});
}

QList<TNumbers::TOpen> TNumbers::OpenOnes(const TNumberSource& source) {
    QList<TOpen> found;
    const string name = StoredText(source.Name);
    for (const QVariantList& row :
         FLedger.Rows("SELECT id, series, first, count, token, work, name FROM reservations"
                      " WHERE hash = ? AND folder = ? AND state = 'reserved' ORDER BY id",
                      {HashOf(source), StoredText(source.Folder)}))
        found.append(
            {{row[0].toLongLong(), TextOfStored(row[1].toString()), row[2].toLongLong(), row[3].toLongLong()},
             row[4].toString(),
             row[5].toLongLong(),
             row[6].toString() == name});
    return found;
}

/// Also what this very work took by a call of which it never heard the end.
bool TNumbers::IsFree(const TLedgerWork& work, const TOpen& open) const {
    if (open.Token == FRun.Token() && open.Work == work.Id())
        return std::none_of(work.FReservations.begin(), work.FReservations.end(),
                            [&](const TReservation& known) { return known.Id == open.Reservation.Id; });
    return FRun.IsFree(FLedger, open.Token, open.Work);
}

/// Of files with the same contents, each gets its own back where it is there.
std::optional<TReservation> TNumbers::FindOwn(const TLedgerWork& work, const string& series, qint64 count) {
    QList<TOpen> open = OpenOnes(work.Source());
    std::stable_partition(open.begin(), open.end(), [](const TOpen& one) { return one.SameName; });
    for (const TOpen& one : open)
        if (one.Reservation.Series == series && one.Reservation.Count == count && IsFree(work, one))
            return one.Reservation;
    return std::nullopt;
}

void TNumbers::Take(const TLedgerWork& work, qint64 reservation) {
    FLedger.Change(
        "UPDATE reservations SET token = ?, work = ?, agent = ?, name = ? WHERE id = ?",
        {FRun.Token(), work.Id(), StoredText(FRun.Agent()), StoredText(work.Source().Name), reservation});
}

/// The next number. Nobody else reserves of the series until the transaction ends.
qint64 TNumbers::LockCounter(const string& series) {
    const string stored = StoredText(series);
    FLedger.Change("INSERT INTO counters (series, next) VALUES (?, 1) ON CONFLICT (series) DO NOTHING",
                   {stored});
    const qint64 next = FLedger.Rows("SELECT next FROM counters WHERE series = ? {lock}", {stored})
                            .value(0)
                            .value(0)
                            .toLongLong();
    // A counter that somebody set back, or that came from a back-up, gives no number again.
    const auto last = FLedger.Rows("SELECT first + count FROM reservations WHERE series = ?"
                                   " ORDER BY first DESC LIMIT 1",
                                   {stored});
    return std::max(next, last.value(0).value(0).toLongLong());
}

TReservation TNumbers::Reserve(TLedgerWork& work, const string& series, qint64 count) {
    if (series.isEmpty() || count <= 0)
        Refuse(QStringLiteral("A reservation needs a series with a name and at least one number."));
    TReservation result;
    FLedger.Write(TDurable::Fully, [&] {
        FRun.Renew(FLedger);
        LockSource(work.Source());
        const qint64 next = LockCounter(series);
        if (const auto own = FindOwn(work, series, count)) {
            Take(work, own->Id);
            result = *own;
            return;
        }
        if (count > std::numeric_limits<qint64>::max() - next)
            Refuse(QStringLiteral("The series \"%1\" has no %2 numbers left behind %3.")
                       .arg(series)
                       .arg(count)
                       .arg(next - 1));
        const TNumberSource& source = work.Source();
        const auto made = FLedger.Rows(
            "INSERT INTO reservations (series, first, count, folder, name, hash, token, work, agent, state, "
            "result,"
            " reserved, ended) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, 'reserved', '', {now}, 0) RETURNING id",
            {StoredText(series), next, count, StoredText(source.Folder), StoredText(source.Name),
             HashOf(source), FRun.Token(), work.Id(), StoredText(FRun.Agent())});
        FLedger.Change("UPDATE counters SET next = ? WHERE series = ?", {next + count, StoredText(series)});
        result = {made.value(0).value(0).toLongLong(), series, next, count};
    });
    work.FReservations.append(result);
    return result;
}

void TNumbers::Resume(TLedgerWork& work) {
    FLedger.Read([&] {
        work.FReservations.clear();
        for (const QVariantList& row :
             FLedger.Rows("SELECT id, series, first, count FROM reservations"
                          " WHERE token = ? AND work = ? AND ended = 0 AND state = 'publishing' ORDER BY id",
                          {FRun.Token(), work.Id()}))
            work.FReservations.append({row[0].toLongLong(), TextOfStored(row[1].toString()),
                                       row[2].toLongLong(), row[3].toLongLong()});
    });
}

void TNumbers::Reopen(TLedgerWork& work) {
    FLedger.Write(TDurable::Fully, [&] {
        FLedger.Change("UPDATE reservations SET state = 'reserved'"
                       " WHERE token = ? AND work = ? AND ended = 0 AND state = 'publishing'",
                       {FRun.Token(), work.Id()});
    });
    work.FReservations.clear();
}

/// False where this work has ended it already, by a call of which it never heard the end.
bool TNumbers::IsOpen(const TLedgerWork& work, const TReservation& reservation) {
    const QVariantList row =
        FLedger.Rows("SELECT state, token, work, agent FROM reservations WHERE id = ?", {reservation.Id})
            .value(0);
    if (row.value(1).toString() != FRun.Token() || row.value(2).toLongLong() != work.Id())
        Refuse(QStringLiteral("The numbers from %1 on of the series \"%2\" were taken over by \"%3\".")
                   .arg(reservation.First)
                   .arg(reservation.Series, TextOfStored(row.value(3).toString())));
    return row.value(0).toString() == QLatin1String("reserved") ||
           row.value(0).toString() == QLatin1String("publishing");
}

void TNumbers::Give(const QList<TReservation>& reservations, const QList<TNumberRun>& given) {
    for (const TNumberRun& run : given) {
        const auto owner = std::find_if(reservations.begin(), reservations.end(),
                                        [&](const TReservation& one) { return Covers(one, run); });
        if (owner != reservations.end())
            FLedger.Change(
                "INSERT INTO numbers (series, first, count, page, reservation) VALUES (?, ?, ?, ?, ?)",
                {StoredText(run.Series), run.First, run.Count, run.Page, owner->Id});
    }
}

/// What earlier goes at this file reserved and this one had no use for, as after a change of its list.
void TNumbers::VoidLeftovers(const TLedgerWork& work) {
    for (const TOpen& open : OpenOnes(work.Source()))
        if (open.SameName && IsFree(work, open))
            FLedger.Change("UPDATE reservations SET state = 'void', ended = {now} WHERE id = ?",
                           {open.Reservation.Id});
}

void TNumbers::End(TLedgerWork& work, const QByteArray& result, const QList<TNumberRun>& given) {
    if (work.FReservations.isEmpty())
        return;
    FLedger.Write(TDurable::Fully, [&] {
        LockSource(work.Source());
        QList<TReservation> reserved;
        for (const TReservation& one : work.FReservations)
            if (IsOpen(work, one))
                reserved.append(one);
        Give(reserved, given);
        for (const TReservation& one : reserved) {
            const bool isGiven = std::any_of(given.begin(), given.end(),
                                             [&](const TNumberRun& run) { return Covers(one, run); });
            FLedger.Change("UPDATE reservations SET state = ?, result = ?, ended = {now} WHERE id = ?",
                           {isGiven ? QStringLiteral("given") : QStringLiteral("void"),
                            isGiven ? StoredText(result) : string(), one.Id});
        }
        VoidLeftovers(work);
    });
    work.FReservations.clear();
}

void TNumbers::Finish(TLedgerWork& work, const QByteArray& result, const QList<TNumberRun>& given) {
    const QList<TReservation>& reservations = work.FReservations;
    for (qsizetype i = 0; i < given.size(); ++i) {
        const TNumberRun& run = given[i];
        const bool isOwn = std::any_of(reservations.begin(), reservations.end(),
                                       [&](const TReservation& one) { return Covers(one, run); });
        if (!isOwn || std::any_of(given.begin(), given.begin() + i,
                                  [&](const TNumberRun& other) { return Overlap(run, other); }))
            Refuse(
                QStringLiteral("The %1 numbers from %2 on of the series \"%3\" are not reserved for \"%4\".")
                    .arg(run.Count)
                    .arg(run.First)
                    .arg(run.Series, QString::fromUtf8(work.Source().Name)));
    }
    End(work, result, given);
}

void TNumbers::Void(TLedgerWork& work) {
    End(work, {}, {});
}
