#include "ledger/LedgerQueue.h"

#include "base/Journal.h"
#include "base/RunToken.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Records.h"

#include <QDateTime>

#include <algorithm>
#include <atomic>
#include <pthread.h>

namespace {

constexpr size_t GroupSize = 1000; // records of a transaction at most
const char Subject[] = "ledger";   // in the journal

/// A process may have several queues, and one after the other.
string WriterName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("%1/%2").arg(QString::fromLatin1(RunToken())).arg(++count);
}

} // namespace

TLedgerQueue::TLedgerQueue(const TLedgerQueueSettings& settings)
    : FSettings(settings), FWriter(WriterName()), FThread([this] { Run(); }) {}

TLedgerQueue::~TLedgerQueue() {
    {
        const std::lock_guard guard(FLock);
        FEnding = true;
    }
    FCame.notify_all();
    FThread.join();
    if (!FWaiting.empty())
        JournalLine(
            QStringLiteral("%1 outcomes of files are in no ledger: %2").arg(FWaiting.size()).arg(FFault));
}

void TLedgerQueue::Add(TFileRecord record) {
    Shorten(record);
    record.Agent = FSettings.Agent;
    bool isNews = false;
    {
        const std::lock_guard guard(FLock);
        FWaiting.push_back(std::move(record));
        isNews = FWaiting.size() == 1 || FWaiting.size() == GroupSize;
        ++FAdded;
        if (!FInHand)
            DropBeyondBound();
    }
    if (isNews)
        FCame.notify_all();
}

bool TLedgerQueue::Flush(std::chrono::milliseconds atMost) {
    std::unique_lock lock(FLock);
    const qint64 goal = FAdded;
    FFlushing = FLeft < FAdded;
    FCame.notify_all();
    return FWent.wait_for(lock, atMost, [&] { return FLeft >= goal; });
}

TLedgerQueueState TLedgerQueue::State() const {
    const std::lock_guard guard(FLock);
    return {FSettings.Place.Name(), FFault, qint64(FWaiting.size()), FWritten, FDropped};
}

void TLedgerQueue::Run() noexcept {
    ::pthread_setname_np(::pthread_self(), "ledger-queue");
    TLedgerConnection ledger(FSettings.Place);
    TRecords records(ledger);
    auto pause = FSettings.Pause;
    for (TGroup group = NextGroup(); !group.Records.isEmpty(); group = NextGroup()) {
        if (TryWrite(records, group)) {
            pause = FSettings.Pause;
            Prune(records);
            continue;
        }
        std::unique_lock lock(FLock);
        if (FCame.wait_for(lock, pause, [this] { return FEnding; }))
            return;
        pause = std::min(pause * 2, FSettings.LongestPause);
    }
}

/// Waits for one; empty when all is written and no more comes.
TLedgerQueue::TGroup TLedgerQueue::NextGroup() {
    std::unique_lock lock(FLock);
    FInHand = false;
    DropBeyondBound();
    FCame.wait(lock, [this] { return FEnding || !FWaiting.empty(); });
    FCame.wait_for(lock, FSettings.Gather,
                   [this] { return FEnding || FFlushing || FWaiting.size() >= GroupSize; });
    TGroup group;
    group.First = FLeft + 1;
    const size_t count = std::min(FWaiting.size(), GroupSize);
    group.Records = QList<TFileRecord>(FWaiting.begin(), FWaiting.begin() + ptrdiff_t(count));
    FInHand = true;
    return group;
}

bool TLedgerQueue::TryWrite(TRecords& records, const TGroup& group) {
    try {
        try {
            records.Write(FWriter, group.First, group.Records);
            NoteWritten(group.Records.size());
        } catch (const ELedger& e) {
            if (e.Fault() != TLedgerFault::Refused)
                throw;
            WriteSingly(records, group);
        }
        return true;
    } catch (const std::exception& e) {
        NoteFault(MessageOf(e));
        return false;
    }
}

/// So that one that the database doesn't take holds up no other.
void TLedgerQueue::WriteSingly(TRecords& records, const TGroup& group) {
    for (qsizetype i = 0; i < group.Records.size(); ++i) {
        try {
            records.Write(FWriter, group.First + i, {group.Records[i]});
            NoteWritten(1);
        } catch (const ELedger& e) {
            if (e.Fault() != TLedgerFault::Refused)
                throw;
            NoteRefused(e.Message());
        }
    }
}

/// Once a day, and soon after the start.
void TLedgerQueue::Prune(TRecords& records) {
    constexpr qint64 Day = 86'400'000;
    constexpr qint64 AtOnce = 1000; // in one transaction, which others must wait for
    const auto now = std::chrono::steady_clock::now();
    if (FSettings.KeepDays <= 0 || now < FNextPrune)
        return;
    FNextPrune = now + std::chrono::hours(24);
    try {
        const qint64 before = QDateTime::currentMSecsSinceEpoch() - FSettings.KeepDays * Day;
        while (records.Prune(before, AtOnce) == AtOnce) {
            const std::lock_guard guard(FLock);
            if (FEnding)
                return;
        }
    } catch (const std::exception& e) {
        JournalChange(QLatin1String(Subject), MessageOf(e));
    }
}

void TLedgerQueue::NoteWritten(qint64 count) {
    {
        const std::lock_guard guard(FLock);
        FWritten += count;
        FFault.clear();
        Leave(count);
    }
    JournalSettled(QLatin1String(Subject));
    FWent.notify_all();
}

void TLedgerQueue::NoteRefused(const string& reason) {
    JournalLine(reason);
    {
        const std::lock_guard guard(FLock);
        ++FDropped;
        Leave(1);
    }
    FWent.notify_all();
}

void TLedgerQueue::NoteFault(const string& fault) {
    JournalChange(QLatin1String(Subject), fault);
    {
        const std::lock_guard guard(FLock);
        FFault = fault;
        FInHand = false;
        DropBeyondBound();
    }
    FWent.notify_all();
}

/// Behind the lock, as the next.
void TLedgerQueue::Leave(qint64 count) {
    FWaiting.erase(FWaiting.begin(), FWaiting.begin() + count);
    FFlushing = FFlushing && !FWaiting.empty();
    FLeft += count;
}

void TLedgerQueue::DropBeyondBound() {
    if (FWaiting.size() <= FSettings.Bound)
        return;
    const auto excess = qint64(FWaiting.size() - FSettings.Bound);
    FDropped += excess;
    Leave(excess);
}
