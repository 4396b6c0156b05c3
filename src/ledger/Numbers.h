#pragma once
// Numbers of series, each given exactly once: to one file, and where it is known to one page of it.
//
// They are reserved on the disk before anything is stamped. What a crash, a stop or a wait leaves reserved,
// the next go at the same file gets back; two equal files at work at once have numbers of their own.
#include "ledger/FileRecord.h"
#include "ledger/LedgerRun.h"

class TNumbers {
public:
    TNumbers(TLedgerConnection& ledger, const TLedgerRun& run) : FLedger(ledger), FRun(run) {}

    /// `count` consecutive numbers for the work, the next ones of the series, which begins at 1; or what an
    /// earlier go at the same file had at this place. Raises ELedger; Refused where the series has no so many
    /// numbers left.
    TReservation Reserve(TLedgerWork& work, const string& series, qint64 count);
    /// For who has taken over a claim with a publishing that was begun (ledger/Claims.h): its numbers are the
    /// work's. Raises ELedger.
    void Resume(TLedgerWork& work);
    /// Nothing was published, and nobody has seen them: the next go at the same file may have them again.
    /// Raises ELedger.
    void Reopen(TLedgerWork& work);
    /// The file is published under the name `result`, and these are the numbers that it shows; what else the
    /// work or earlier goes at the file have reserved is void. Raises ELedger; Refused where a number isn't
    /// the work's, as when another agent has taken it over.
    void Finish(TLedgerWork& work, const QByteArray& result, const QList<TNumberRun>& given);
    /// The file failed: its numbers will never be given. Raises ELedger.
    void Void(TLedgerWork& work);

private:
    struct TOpen {
        TReservation Reservation;
        string Token;
        qint64 Work;
        bool SameName;
    };
    /// Whoever looks at reservations of a file's contents holds off others that do. Before LockCounter.
    void LockSource(const TNumberSource& source);
    /// Reservations of the file's contents in its folder that are neither given nor void.
    [[nodiscard]] QList<TOpen> OpenOnes(const TNumberSource& source);
    [[nodiscard]] bool IsFree(const TLedgerWork& work, const TOpen& open) const;
    [[nodiscard]] std::optional<TReservation> FindOwn(const TLedgerWork& work, const string& series,
                                                      qint64 count);
    void Take(const TLedgerWork& work, qint64 reservation);
    [[nodiscard]] qint64 LockCounter(const string& series);
    [[nodiscard]] bool IsOpen(const TLedgerWork& work, const TReservation& reservation);
    void Give(const QList<TReservation>& reservations, const QList<TNumberRun>& given);
    void VoidLeftovers(const TLedgerWork& work);
    void End(TLedgerWork& work, const QByteArray& result, const QList<TNumberRun>& given);

    TLedgerConnection& FLedger;
    const TLedgerRun& FRun;
};
