#include "ledger/LedgerRun.h"

#include "base/Journal.h"
#include "base/RunToken.h"
#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

#include <pthread.h>

TLedgerRun::TLedgerRun(const TLedgerPlace& place, const string& agent, TLeaseTimes times)
    : FPlace(place), FAgent(agent), FToken(QString::fromLatin1(RunToken())), FTimes(times) {}

TLedgerRun::~TLedgerRun() {
    {
        const std::lock_guard guard(FLock);
        FEnding = true;
    }
    FChanged.notify_all();
    if (FKeeper.joinable())
        FKeeper.join();
}

qint64 TLedgerRun::BeginWork() {
    const std::lock_guard guard(FLock);
    FLive.insert(++FLast);
    if (!FKeeper.joinable())
        FKeeper = std::thread([this] { KeepLease(); });
    else if (FLive.size() == 1)
        FChanged.notify_all();
    return FLast;
}

void TLedgerRun::EndWork(qint64 work) noexcept {
    const std::lock_guard guard(FLock);
    FLive.erase(work);
}

void TLedgerRun::Renew(TLedgerConnection& ledger) const {
    ledger.Change("INSERT INTO agents (token, agent, began, lease) VALUES (?, ?, {now}, {now} + ?)"
                  " ON CONFLICT (token) DO UPDATE SET lease = excluded.lease",
                  {FToken, StoredText(FAgent), qint64(FTimes.Lease.count())});
}

bool TLedgerRun::IsFree(TLedgerConnection& ledger, const string& token, qint64 work) const {
    if (token == FToken) {
        const std::lock_guard guard(FLock);
        return !FLive.contains(work);
    }
    switch (StateOfRun(token.toLatin1())) {
    case TRunState::Alive:
        return false;
    case TRunState::Dead:
        return true;
    case TRunState::Unknown:
        break;
    }
    return ledger.Rows("SELECT 1 FROM agents WHERE token = ? AND lease > {now}", {token}).isEmpty();
}

/// By a connection of its own: other work of the agent may take long, or wait for something.
void TLedgerRun::KeepLease() noexcept {
    ::pthread_setname_np(::pthread_self(), "ledger-lease");
    const string subject = QStringLiteral("lease in the ledger");
    TLedgerConnection ledger(FPlace);
    std::unique_lock lock(FLock);
    while (!FEnding) {
        FChanged.wait(lock, [this] { return FEnding || !FLive.empty(); });
        // Whoever began the work has renewed the lease, or will with what it takes first.
        if (FChanged.wait_for(lock, FTimes.Renewal, [this] { return FEnding; }))
            break;
        if (FLive.empty())
            continue;
        lock.unlock();
        try {
            ledger.Write(TDurable::Soon, [&] { Renew(ledger); });
            JournalSettled(subject);
        } catch (const std::exception& e) {
            JournalChange(subject, MessageOf(e));
        }
        lock.lock();
    }
}
