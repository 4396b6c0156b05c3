#include "agent/AgentLedger.h"

#include "base/Journal.h"
#include "ledger/LedgerError.h"

#include <QSysInfo>

#include <pwd.h>
#include <unistd.h>

string AgentName() {
    const struct passwd* user = ::getpwuid(::getuid());
    const string name =
        user != nullptr ? QString::fromLocal8Bit(user->pw_name) : QString::number(qulonglong(::getuid()));
    return name + u'@' + QSysInfo::machineHostName();
}

TAgentLedger::TAgentLedger(const TEditorSettings& settings) {
    try {
        FQueue.emplace(TLedgerQueueSettings{.Place = ParseLedgerPlace(settings.Ledger),
                                            .Agent = AgentName(),
                                            .KeepDays = settings.KeepOutcomes});
    } catch (const ELedger& e) {
        FFault = e.Message();
        JournalLine(FFault);
    }
}

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
