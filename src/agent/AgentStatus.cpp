#include "agent/AgentStatus.h"

#include "base/Version.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

// The words of the states are part of what other programs read: they are added to, never renamed.
string Word(TAgentState state) {
    switch (state) {
    case TAgentState::Starting:
        return QStringLiteral("starting");
    case TAgentState::Serving:
        return QStringLiteral("serving");
    case TAgentState::Waiting:
        return QStringLiteral("waiting");
    case TAgentState::Stopping:
        return QStringLiteral("stopping");
    case TAgentState::Ended:
        break;
    }
    return QStringLiteral("ended");
}

string Word(TFolderState state) {
    switch (state) {
    case TFolderState::Watching:
        return QStringLiteral("watching");
    case TFolderState::Working:
        return QStringLiteral("working");
    case TFolderState::Paused:
        return QStringLiteral("paused");
    case TFolderState::Waiting:
        return QStringLiteral("waiting");
    case TFolderState::Broken:
        break;
    }
    return QStringLiteral("broken");
}

string TimeText(const QDateTime& time) {
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

} // namespace

TAgentStatus::TFolder& TAgentStatus::Find(const string& folder) {
    const auto found = std::find_if(FFolders.begin(), FFolders.end(),
                                    [&](const TFolder& known) { return known.Name == folder; });
    if (found != FFolders.end())
        return *found;
    FFolders.push_back({});
    FFolders.back().Name = folder;
    return FFolders.back();
}

void TAgentStatus::SetAgent(TAgentState state, const string& reason) {
    const std::lock_guard guard(FLock);
    FAgent = state;
    FReason = reason;
}

void TAgentStatus::Ticked() {
    const std::lock_guard guard(FLock);
    FTicked = std::chrono::steady_clock::now();
}

void TAgentStatus::SetFolders(const QStringList& names) {
    const std::lock_guard guard(FLock);
    std::vector<TFolder> folders;
    for (const string& name : names) {
        const bool again = std::any_of(folders.begin(), folders.end(),
                                       [&](const TFolder& folder) { return folder.Name == name; });
        if (again)
            continue;
        TFolder& folder = folders.emplace_back(Find(name));
        if (folder.State == TFolderState::Paused)
            folder = {folder.Name, {}, {}, {}, {}, folder.Counts};
    }
    FFolders = std::move(folders);
}

bool TAgentStatus::SetState(const string& folder, TFolderState state, const string& reason) {
    const std::lock_guard guard(FLock);
    TFolder& known = Find(folder);
    const bool other = known.State != state || known.Reason != reason;
    known.State = state;
    known.Reason = reason;
    known.File.clear();
    return other;
}

void TAgentStatus::SetWorking(const string& folder, const string& file) {
    const std::lock_guard guard(FLock);
    TFolder& known = Find(folder);
    known.State = TFolderState::Working;
    known.Reason.clear();
    known.File = file;
}

void TAgentStatus::SetWaiting(const string& folder, qint64 files) {
    const std::lock_guard guard(FLock);
    Find(folder).Counts.Waiting = files;
}

void TAgentStatus::SetOther(const string& folder, const string& agent) {
    const std::lock_guard guard(FLock);
    Find(folder).Other = agent;
}

void TAgentStatus::CountDone(const string& folder) {
    const std::lock_guard guard(FLock);
    ++Find(folder).Counts.Done;
}

void TAgentStatus::CountWarned(const string& folder) {
    const std::lock_guard guard(FLock);
    ++Find(folder).Counts.Warned;
}

void TAgentStatus::CountFailed(const string& folder) {
    const std::lock_guard guard(FLock);
    ++Find(folder).Counts.Failed;
}

void TAgentStatus::SetWorkers(std::vector<TWorkerState> workers) {
    const std::lock_guard guard(FLock);
    FWorkers = std::move(workers);
}

void TAgentStatus::SetLedger(const TLedgerQueueState& ledger) {
    const std::lock_guard guard(FLock);
    FLedger = ledger;
}

void TAgentStatus::ListsLoaded(TListKind kind, const QDateTime& time) {
    const std::lock_guard guard(FLock);
    Of(kind) = {time, {}};
}

bool TAgentStatus::ConfigurationFault(TListKind kind, const string& text) {
    const std::lock_guard guard(FLock);
    const bool other = Of(kind).Fault != text;
    Of(kind).Fault = text;
    return other;
}

void TAgentStatus::ConfigurationFaultCleared(TListKind kind) {
    const std::lock_guard guard(FLock);
    Of(kind).Fault.clear();
}

TAgentState TAgentStatus::Agent() const {
    const std::lock_guard guard(FLock);
    return FAgent;
}

QStringList TAgentStatus::FolderNames() const {
    const std::lock_guard guard(FLock);
    QStringList names;
    for (const TFolder& folder : FFolders)
        names.append(folder.Name);
    return names;
}

bool TAgentStatus::HasNews() const {
    const std::lock_guard guard(FLock);
    return std::any_of(FFolders.begin(), FFolders.end(), [](const TFolder& folder) {
        const TFolderCounts& counts = folder.Counts;
        return counts.Done + counts.Warned + counts.Failed + counts.Waiting > 0 ||
               folder.State == TFolderState::Paused || folder.State == TFolderState::Broken;
    });
}

bool TAgentStatus::Working() const {
    const std::lock_guard guard(FLock);
    return std::any_of(FFolders.begin(), FFolders.end(),
                       [](const TFolder& folder) { return folder.State == TFolderState::Working; });
}

QMap<string, qint64> TAgentStatus::Failures() const {
    const std::lock_guard guard(FLock);
    QMap<string, qint64> failures;
    for (const TFolder& folder : FFolders)
        if (folder.Counts.Failed > 0)
            failures.insert(folder.Name, folder.Counts.Failed);
    return failures;
}

std::vector<TAgentStatus::TTrouble> TAgentStatus::Troubles() const {
    const std::lock_guard guard(FLock);
    std::vector<TTrouble> troubles;
    if (FAgent == TAgentState::Ended)
        troubles.push_back({QStringLiteral("agent"), FReason});
    for (const TList* list : {&FFolderList, &FActionList})
        if (!list->Fault.isEmpty())
            troubles.push_back(
                {list == &FFolderList ? QStringLiteral("folders") : QStringLiteral("actions"), list->Fault});
    for (const TFolder& folder : FFolders)
        if (folder.State == TFolderState::Broken)
            troubles.push_back({QStringLiteral("folder ") + folder.Name,
                                QStringLiteral("\"%1\" is not served: %2").arg(folder.Name, folder.Reason)});
    if (FLedger && !FLedger->Fault.isEmpty())
        troubles.push_back({QStringLiteral("ledger"), FLedger->Fault});
    return troubles;
}

string TAgentStatus::Summary() const {
    const std::lock_guard guard(FLock);
    if (FAgent != TAgentState::Serving)
        return FReason.isEmpty() ? Word(FAgent) : FReason;
    TFolderCounts sum;
    qint64 broken = 0;
    qint64 paused = 0;
    for (const TFolder& folder : FFolders) {
        sum.Waiting += folder.Counts.Waiting;
        sum.Done += folder.Counts.Done + folder.Counts.Warned;
        sum.Failed += folder.Counts.Failed;
        broken += folder.State == TFolderState::Broken ? 1 : 0;
        paused += folder.State == TFolderState::Paused ? 1 : 0;
    }
    string text =
        FFolders.size() == 1 ? QStringLiteral("1 folder") : QStringLiteral("%1 folders").arg(FFolders.size());
    if (broken > 0)
        text += QStringLiteral(", %1 not served").arg(broken);
    if (paused > 0)
        text += QStringLiteral(", %1 paused").arg(paused);
    text += sum.Done == 1 ? QStringLiteral(", 1 file done") : QStringLiteral(", %1 files done").arg(sum.Done);
    text += QStringLiteral(", %1 failed").arg(sum.Failed);
    if (sum.Waiting > 0)
        text += QStringLiteral(", %1 waiting").arg(sum.Waiting);
    if (!FFolderList.Fault.isEmpty() || !FActionList.Fault.isEmpty())
        text += QStringLiteral("; the configuration has a fault");
    return text + u'.';
}

QJsonObject TAgentStatus::ListJson(const TList& list) {
    QJsonObject json;
    json["loaded"] = list.Loaded.isValid() ? QJsonValue(TimeText(list.Loaded)) : QJsonValue();
    json["fault"] = list.Fault;
    return json;
}

QJsonObject TAgentStatus::FolderJson(const TFolder& folder) {
    QJsonObject json;
    json["name"] = folder.Name;
    json["state"] = Word(folder.State);
    json["reason"] = folder.Reason;
    json["file"] = folder.File;
    if (!folder.Other.isEmpty())
        json["otherAgent"] = folder.Other;
    json["waiting"] = folder.Counts.Waiting;
    json["done"] = folder.Counts.Done;
    json["warned"] = folder.Counts.Warned;
    json["failed"] = folder.Counts.Failed;
    return json;
}

QByteArray TAgentStatus::ToJson() const {
    const std::lock_guard guard(FLock);
    QJsonArray folders;
    for (const TFolder& folder : FFolders)
        folders.append(FolderJson(folder));
    QJsonObject json;
    json["version"] = ProgramVersion();
    json["since"] = TimeText(FSince);
    json["state"] = Word(FAgent);
    json["reason"] = FReason;
    json["secondsSinceTick"] = qint64(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - FTicked).count());
    json["lists"] = QJsonObject{{"folders", ListJson(FFolderList)}, {"actions", ListJson(FActionList)}};
    json["folders"] = folders;
    QJsonArray workers;
    for (const TWorkerState& worker : FWorkers)
        workers.append(QJsonObject{{"pid", worker.Process},
                                   {"scripts", worker.Scripts},
                                   {"sandbox", worker.Sandbox},
                                   {"file", worker.File}});
    json["workers"] = workers;
    if (FLedger)
        json["ledger"] = QJsonObject{{"place", FLedger->Place},
                                     {"fault", FLedger->Fault},
                                     {"waiting", FLedger->Waiting},
                                     {"written", FLedger->Written},
                                     {"dropped", FLedger->Dropped}};
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}
