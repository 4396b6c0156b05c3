#pragma once
// This process as one that holds claims and numbers. Others may take over what it holds once it is dead: its
// run token tells those on its machine; for all others it has a lease by the database's clock, which is
// renewed while any work is live. Nothing wakes up while none is.
#include "ledger/LedgerPlace.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

class TLedgerConnection;

struct TLeaseTimes {
    std::chrono::milliseconds Lease = std::chrono::seconds(60);
    std::chrono::milliseconds Renewal = std::chrono::seconds(10);
};

class TLedgerRun {
public:
    /// `agent` is this agent's name for people, as "scans@server". Touches no ledger yet.
    TLedgerRun(const TLedgerPlace& place, const string& agent, TLeaseTimes times = {});
    /// No work may be live.
    ~TLedgerRun();
    TLedgerRun(const TLedgerRun&) = delete;
    TLedgerRun& operator=(const TLedgerRun&) = delete;

    [[nodiscard]] const string& Agent() const { return FAgent; }
    [[nodiscard]] const string& Token() const { return FToken; }

    // From any thread:
    [[nodiscard]] qint64 BeginWork();
    void EndWork(qint64 work) noexcept;

    // Within a transaction of the thread's own connection:
    /// Whatever takes something renews the lease, too.
    void Renew(TLedgerConnection& ledger) const;
    /// What was taken for that work of that run may be taken over: the run is dead, or it is this one and the
    /// work is over, as after a stop or a wait.
    [[nodiscard]] bool IsFree(TLedgerConnection& ledger, const string& token, qint64 work) const;

private:
    void KeepLease() noexcept;

    const TLedgerPlace FPlace;
    const string FAgent;
    const string FToken;
    const TLeaseTimes FTimes;
    mutable std::mutex FLock; // guards what follows
    std::condition_variable FChanged;
    std::set<qint64> FLive;
    qint64 FLast = 0;
    bool FEnding = false;
    std::thread FKeeper; // from the first work on
};

/// The file that numbers are for.
struct TNumberSource {
    string Folder; ///< by a name that all agents have for it: its path, or an identifier where mounts differ
    QByteArray Name;
    QByteArray Sha256 = {}; ///< of the contents, 32 bytes; needed for numbers
};

struct TReservation {
    qint64 Id = 0;
    string Series;
    qint64 First = 0;
    qint64 Count = 0;
};

/// One go at one file; live as long as the object. What it holds when it goes, the next go at the same file
/// gets back. For one thread at a time.
class TLedgerWork {
public:
    TLedgerWork(TLedgerRun& run, const TNumberSource& source)
        : FRun(run), FSource(source), FId(run.BeginWork()) {}
    ~TLedgerWork() { FRun.EndWork(FId); }
    TLedgerWork(const TLedgerWork&) = delete;
    TLedgerWork& operator=(const TLedgerWork&) = delete;

    [[nodiscard]] const TLedgerRun& Run() const { return FRun; }
    [[nodiscard]] qint64 Id() const { return FId; }
    [[nodiscard]] const TNumberSource& Source() const { return FSource; }
    /// A claim needs none, so the contents are looked at where there are numbers.
    void SetSha256(const QByteArray& hash) { FSource.Sha256 = hash; }
    /// That are neither given nor void.
    [[nodiscard]] const QList<TReservation>& Reservations() const { return FReservations; }

private:
    friend class TNumbers;

    TLedgerRun& FRun;
    TNumberSource FSource;
    const qint64 FId;
    QList<TReservation> FReservations;
};
