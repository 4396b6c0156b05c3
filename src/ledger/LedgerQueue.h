#pragma once
// Outcomes wait here for the ledger, so that nobody who works on files waits for a disk or a server. A thread
// writes what has come in one transaction, and tries again where that fails.
#include "ledger/FileRecord.h"
#include "ledger/LedgerPlace.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

struct TLedgerQueueSettings {
    TLedgerPlace Place;
    string Agent;          ///< its name for people, which the records get
    int KeepDays = 90;     ///< older outcomes go; 0 keeps all
    size_t Bound = 20'000; ///< records that wait at most: the oldest go for new ones
    /// How long a record waits for others that go with it.
    std::chrono::milliseconds Gather = std::chrono::milliseconds(100);
    /// After the first failure; each further one doubles the pause, up to `LongestPause`.
    std::chrono::milliseconds Pause = std::chrono::seconds(1);
    std::chrono::milliseconds LongestPause = std::chrono::minutes(1);
};

struct TLedgerQueueState {
    string Place; ///< of the ledger, for people
    string Fault; ///< why it can't be written now; empty while it can
    qint64 Waiting = 0;
    qint64 Written = 0; ///< since the start
    qint64 Dropped = 0; ///< since the start: they are in no ledger
};

class TLedgerQueue {
public:
    /// The ledger is opened with the first record.
    explicit TLedgerQueue(const TLedgerQueueSettings& settings);
    /// Writes what waits, if the ledger lets it at the first attempt.
    ~TLedgerQueue();
    TLedgerQueue(const TLedgerQueue&) = delete;
    TLedgerQueue& operator=(const TLedgerQueue&) = delete;

    // From any thread:
    /// Never waits for the ledger.
    void Add(TFileRecord record);
    /// Waits until all that was added before is written or dropped, or the time is over; false then.
    bool Flush(std::chrono::milliseconds atMost);
    [[nodiscard]] TLedgerQueueState State() const;

private:
    /// The oldest records, while they stay in the queue.
    struct TGroup {
        qint64 First = 0; // of all that were ever added, from 1
        QList<TFileRecord> Records;
    };

    void Run() noexcept;
    [[nodiscard]] TGroup NextGroup();
    [[nodiscard]] bool TryWrite(class TRecords& records, const TGroup& group);
    void WriteSingly(TRecords& records, const TGroup& group);
    void Prune(TRecords& records);
    void NoteWritten(qint64 count);
    void NoteRefused(const string& reason);
    void NoteFault(const string& fault);
    void Leave(qint64 count);
    void DropBeyondBound();

    const TLedgerQueueSettings FSettings;
    mutable std::mutex FLock; // guards what follows
    std::condition_variable FCame;
    std::condition_variable FWent;
    std::deque<TFileRecord> FWaiting;
    bool FInHand = false; // the oldest are being written, and none may be dropped
    qint64 FAdded = 0;
    qint64 FLeft = 0; // of them, written or dropped
    qint64 FWritten = 0;
    qint64 FDropped = 0;
    string FFault;
    bool FEnding = false;
    bool FFlushing = false;                             // nothing waits for more
    std::chrono::steady_clock::time_point FNextPrune{}; // the thread's own, as is the next
    const string FWriter;
    std::thread FThread;
};
