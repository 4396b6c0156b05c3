#include "agent/AgentLedger.h"

#include "base/Journal.h"
#include "base/RunToken.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Records.h"

#include <QFileInfo>
#include <QSysInfo>

#include <pwd.h>
#include <unistd.h>

namespace {

constexpr char OpenEnds[] = "claims of done files"; // in the journal

} // namespace

string AgentName() {
    const struct passwd* user = ::getpwuid(::getuid());
    const string name =
        user != nullptr ? QString::fromLocal8Bit(user->pw_name) : QString::number(qulonglong(::getuid()));
    return name + u'@' + QSysInfo::machineHostName();
}

/// What one thread has of it.
struct TAgentLedger::TDesk {
    explicit TDesk(const TLedgerPlace& place)
        : Connection(place), Run(place, AgentName()), Numbers(Connection, Run), Claims(Connection, Run),
          Records(Connection) {}

    TLedgerConnection Connection;
    TLedgerRun Run;
    TNumbers Numbers;
    TClaims Claims;
    TRecords Records;
    const string Writer = QString::fromLatin1(RunToken()) + QStringLiteral("/claims");
    qint64 Recorded = 0;
};

TAgentLedger::TAgentLedger(const TEditorSettings& settings) {
    try {
        FPlace = ParseLedgerPlace(settings.Ledger);
        // SQLite removes its log when it is closed in order.
        FWasCutShort = FPlace->Kind == TLedgerPlace::TKind::SQLite &&
                       QFileInfo(FPlace->Path + QStringLiteral("-wal")).size() > 0;
        FQueue.emplace(
            TLedgerQueueSettings{.Place = *FPlace, .Agent = AgentName(), .KeepDays = settings.KeepOutcomes});
    } catch (const ELedger& e) {
        FFault = e.Message();
        JournalLine(FFault);
    }
}

TAgentLedger::~TAgentLedger() = default;

void TAgentLedger::Record(TFileRecord record) {
    if (FQueue)
        FQueue->Add(std::move(record));
}

TLedgerQueueState TAgentLedger::State() const {
    if (FQueue)
        return FQueue->State();
    TLedgerQueueState state;
    state.Fault = FFault;
    return state;
}

bool TAgentLedger::IsShared() const {
    return FPlace && FPlace->Kind == TLedgerPlace::TKind::PostgreSQL;
}

TAgentLedger::TDesk& TAgentLedger::Desk() {
    if (!FPlace)
        throw ELedger(TLedgerFault::Unusable, FFault);
    if (FDesk == nullptr)
        FDesk = std::make_unique<TDesk>(*FPlace);
    return *FDesk;
}

TLedgerRun& TAgentLedger::Run() {
    return Desk().Run;
}

TNumbers& TAgentLedger::Numbers() {
    return Desk().Numbers;
}

TClaims& TAgentLedger::Claims() {
    return Desk().Claims;
}

void TAgentLedger::RecordAtOnce(TFileRecord record, const std::function<bool()>& end) {
    TDesk& desk = Desk();
    Shorten(record);
    record.Agent = AgentName();
    desk.Connection.Write(TDurable::Soon, [&] {
        if (end())
            desk.Records.Write(desk.Writer, desk.Recorded + 1, {record});
    });
    ++desk.Recorded;
}

void TAgentLedger::TryEnd(const TEnd& end) {
    RecordAtOnce(end.Record, [&] { return Claims().End(*end.Work, end.Claim); });
}

void TAgentLedger::EndClaim(TFileRecord record, std::unique_ptr<TLedgerWork> work,
                            const TClaim& claim) noexcept {
    FEnds.push_back({std::move(record), std::move(work), claim});
    FinishEnds();
}

void TAgentLedger::FinishEnds() noexcept {
    try {
        while (!FEnds.empty()) {
            TryEnd(FEnds.front());
            FEnds.pop_front();
        }
        JournalSettled(QLatin1String(OpenEnds));
    } catch (const std::exception& e) {
        JournalChange(QLatin1String(OpenEnds), MessageOf(e));
    }
}

void TAgentLedger::Leave() {
    FinishEnds();
    FEnds.clear(); // another agent sees that this one has gone, and records them
    FDesk.reset();
}
