#include "agent/FolderTurn.h"

#include "agent/AgentLedger.h"
#include "agent/AgentStatus.h"
#include "agent/OutcomeRecord.h"
#include "agent/ReasonFile.h"
#include "agent/Subfolders.h"
#include "agent/WorkMarks.h"
#include "base/Journal.h"
#include "base/NewName.h"
#include "base/Paths.h"
#include "base/UniqueName.h"
#include "work/Surroundings.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr size_t GroupSize = 16;   // files that share one wait for the output folder's entries
constexpr qint64 GroupWaits = 500; // ms, for more
constexpr int TooManyTroubles = 3; // in a row: it's the folder's, not the files'
constexpr int TooManyCrashes = 2;
constexpr int TooManyReadFailures = 3;

TQuietTime QuietTimeOf(const TPDFFolderPolicy& policy) {
    TQuietTime quiet;
    if (policy.QuietSeconds > 0)
        quiet.Leased = quiet.Unanswered = policy.QuietSeconds;
    return quiet;
}

/// Results that come in as sources, or sources moved onto results, would never end.
void RequireApart(const QList<TFolderPtr>& folders) {
    for (int i = 0; i < folders.size(); ++i)
        for (int j = 0; j < i; ++j)
            if (folders[i]->IsSameAs(*folders[j]))
                throw Exception(QStringLiteral("\"%1\" and \"%2\" are the same folder.")
                                    .arg(folders[j]->Path(), folders[i]->Path()));
}

TOutcome Failure(const TReason& reason) {
    TOutcome outcome;
    outcome.State = TOutcomeState::Failed;
    outcome.Reasons.append(reason);
    return outcome;
}

/// Another agent took the file for abandoned.
class EClaimLost : public Exception {
public:
    using Exception::Exception;
};

/// The run log has no place for which action it was, nor for names that aren't ASCII.
void JournalFailure(const TSourceFile& source, const TReason& reason) {
    JournalLine(QStringLiteral("\"%1\" failed: %2").arg(source.Path(), ReasonLine(reason)));
}

} // namespace

TFolderTurn::TFolderTurn(const TTurnInput& input)
    : FInput(input), FQuiet(QuietTimeOf(input.Folder.Policy)), FHome(TFolder::Open(input.Folder.Name)),
      FOutput(TFolder::OpenBelow(FHome, QLatin1String(OutputFolder))),
      FProcess(TFolder::OpenBelow(FHome, QLatin1String(ProcessFolder))),
      FError(TFolder::OpenBelow(FHome, QLatin1String(ErrorFolder))), FClaims(FProcess), FNearby(FHome) {
    RequireApart({FHome, FOutput, FProcess, FError});
    if (const Integer index = input.Manager.IndexOf(input.Folder.Action); index >= 0)
        FActions = &input.Manager[index];
    if (input.Host.Ledger != nullptr)
        FKey = LedgerKeyOf(*input.Host.Ledger, input.Folder.Name, FHome);
}

TFolderTurn::~TFolderTurn() = default;

qint64 TFolderTurn::TimeOfDay() const {
    return FInput.Host.Clock.Now().toMSecsSinceEpoch() * 1'000'000;
}

std::unique_ptr<TJob> TFolderTurn::Next() {
    while (FNext < FNames.size() && FTroubles < TooManyTroubles && !FInput.Terminated())
        if (auto job = TakeUp(FNames.at(FNext++)))
            return job;
    return nullptr;
}

void TFolderTurn::End() {
    SettleGroup();
    if (FTroubles >= TooManyTroubles)
        FInput.Memory.Pause.Lengthen(Now());
    else if (!FRests)
        FInput.Memory.Pause.End();
    TellStatus();
}

void TFolderTurn::TellStatus() const {
    const auto& waiting = FInput.Memory.Waiting;
    TAgentStatus& status = FInput.Host.Status;
    status.SetWaiting(FInput.Folder.Name, waiting.size());
    if (waiting.isEmpty())
        status.SetState(FInput.Folder.Name, TFolderState::Watching);
    else
        status.SetState(FInput.Folder.Name, TFolderState::Waiting, waiting.cbegin()->Reason);
}

/// Says so in the log, unless all that is to be done is to try again in silence.
void TFolderTurn::List(TRound round) {
    FRests = !FInput.Memory.Pause.Over(Now());
    if (FRests)
        return;
    QStringList names = FInput.Host.Files.ReadyFiles(*FHome, TimeOfDay(), FQuiet);
    auto& waiting = FInput.Memory.Waiting;
    FInput.Memory.Protected.removeIf([this](const string& name) { return !FHome->Holds(PathBytes(name)); });
    for (auto it = waiting.begin(); it != waiting.end();)
        it = FHome->Holds(PathBytes(it.key())) ? std::next(it) : waiting.erase(it);
    names.removeIf([this](const string& name) { return !IsDue(name); });
    names.removeIf([this, round](const string& name) {
        struct stat info {};
        const bool suspect = FInput.Marks.Any() && FHome->Look(PathBytes(name), info) &&
                             FInput.Marks.IsSuspect(FHome->Path() + name, StateOf(info));
        FLeftSuspects = FLeftSuspects || (suspect && round == TRound::Others);
        return suspect != (round == TRound::Suspects);
    });
    if (!std::all_of(names.begin(), names.end(), [&](const string& name) { return waiting.contains(name); }))
        FInput.Log.Begin();
    FListed = !names.isEmpty();
    FNames = std::move(names);
}

bool TFolderTurn::IsDue(const string& name) {
    auto& waiting = FInput.Memory.Waiting;
    const auto known = waiting.find(name);
    if (known == waiting.end())
        return true;
    struct stat info {};
    if (!FHome->Look(PathBytes(name), info) || StateOf(info) != known->State) {
        waiting.erase(known);
        return true;
    }
    return known->ForGood ? known->Rights != Rights() : known->Pause.Over(Now());
}

std::unique_ptr<TJob> TFolderTurn::TakeUp(const string& name) {
    std::unique_ptr<TSourceFile> source = Open(name);
    if (source == nullptr || !FInput.Host.Files.IsStillReady(*FHome, *source, TimeOfDay(), FQuiet))
        return nullptr;
    const bool crashes = FInput.Marks.Crashes(source->Path(), source->Opened()) >= TooManyCrashes;
    auto job =
        std::make_unique<TJob>(std::move(source), FOutput, FInput.Log, FInput.Terminated, FInput.Host.Hint);
    const auto known = FInput.Memory.Waiting.constFind(name);
    if (known != FInput.Memory.Waiting.constEnd())
        job->Hold();
    const bool published = known != FInput.Memory.Waiting.constEnd() && known->Published;
    if (FInput.Host.Ledger != nullptr)
        job->Entry = std::make_unique<TFileEntry>(*FInput.Host.Ledger, FKey, *job->Source, FOutput);
    job->Published = published;
    const bool shared = FInput.Host.Ledger != nullptr && FInput.Host.Ledger->IsShared();
    if ((shared || (published && known->Claimed)) && !Enter(*job))
        return nullptr;
    if (job->Published) {
        job->Outcome = TOutcome(); // only the rest of its way is left
    } else if (crashes) {
        job->Outcome = Failure(
            {TReasonCode::WorkerCrashed,
             {},
             QStringLiteral("The program failed twice while it worked on \"%1\"").arg(job->Work.Source)});
    } else {
        try {
            Plan(*job);
        } catch (const std::exception& e) {
            job->Outcome = Failure({TReasonCode::Other, {}, MessageOf(e)});
        }
    }
    return job;
}

/// Null where there is nothing to work on any more, or nothing that may be followed.
std::unique_ptr<TSourceFile> TFolderTurn::Open(const string& name) {
    try {
        return std::make_unique<TSourceFile>(FHome, name);
    } catch (const EFileError& e) {
        if (IsSurroundings(e.Error())) {
            if (NoteWaiting(name, e, {.OfSource = true}))
                FInput.Log.Line(FailureLine(e.Message()));
        } else if (e.Error() != ENOENT) {
            JournalLine(e.Message());
        }
        return nullptr; // nothing was begun
    }
}

void TFolderTurn::Plan(TJob& job) const {
    job.Work.Dest = FOutput->Path() + job.Source->Name();
    if (!FInput.Folder.OverwriteExistingFiles)
        job.Work.Dest = UniqueFileName(job.Work.Dest, *FOutput);
    job.Work.ActionName = FInput.Folder.Action;
    job.Work.Policy = FInput.Folder.Policy;
    job.List = FActions;
    job.WasProtected = FInput.Memory.Protected.contains(job.Source->Name());
}

void TFolderTurn::Finish(TJob& job) {
    job.TakePlace();
    switch (job.Outcome->State) {
    case TOutcomeState::Done:
    case TOutcomeState::DoneWithWarnings:
        TakeAway(job);
        break;
    case TOutcomeState::Failed:
        Fail(job, job.Outcome->Reasons.first());
        break;
    case TOutcomeState::Waiting:
        MeetTrouble(job);
        break;
    case TOutcomeState::Stopped:
        Record(RecordOfEnd(job));
        break;
    }
    job.Release();
    if (job.Entry != nullptr && !job.Published)
        job.Entry->GiveBack();
    if (FGroup.size() >= GroupSize)
        SettleGroup();
}

/// Claims the file. False where it isn't this agent's to work on now.
bool TFolderTurn::Enter(TJob& job) {
    try {
        switch (job.Entry->Claim()) {
        case TFileEntry::TFound::Free:
            return true;
        case TFileEntry::TFound::Published:
            job.Published = true;
            return true;
        case TFileEntry::TFound::Elsewhere:
            break;
        }
    } catch (const ELedger& e) {
        if (NoteWaiting(job.Source->Name(), EFileError(e.Message(), LedgerTrouble),
                        {.Published = job.Published, .Claimed = job.Published}))
            FInput.Log.Line(FailureLine(e.Message()));
    } catch (const EFileError& e) {
        if (NoteWaiting(job.Source->Name(), e,
                        {.OfSource = true, .Published = job.Published, .Claimed = job.Published}))
            FInput.Log.Line(FailureLine(e.Message()));
    }
    return false;
}

void TFolderTurn::MeetTrouble(TJob& job) {
    if (job.Entry != nullptr && job.Entry->Left()) { // found out when it asked for numbers
        job.Published = true;
        job.Outcome = TOutcome();
        TakeAway(job);
        return;
    }
    const TOutcome& outcome = *job.Outcome;
    if (outcome.Error == 0) { // nobody's fault, and told
        if (!job.WasProtected)
            Record(RecordOfEnd(job));
        FInput.Memory.Protected.insert(job.Source->Name());
        return;
    }
    TWaitingFile& waiting = FInput.Memory.Waiting[job.Source->Name()];
    if (outcome.OfSource && outcome.Error == EIO && ++waiting.ReadFailures >= TooManyReadFailures)
        Fail(job, outcome.Reasons.first());
    else
        Wait(job, EFileError(outcome.Text(), outcome.Error), {.OfSource = outcome.OfSource});
}

/// False, with nothing left behind, where the file isn't ours to take.
bool TFolderTurn::Claim(TSourceFile& source) {
    auto claim = TSourceFile::TClaim::Changed;
    if (!FInput.Host.Files.IsHeld(*FHome, source))
        claim = source.Claim(FClaims, FNearby);
    if (claim == TSourceFile::TClaim::Changed)
        JournalLine(
            QStringLiteral("\"%1\" was written to or replaced while it was worked on; its turn comes again.")
                .arg(source.Path()));
    return claim == TSourceFile::TClaim::Claimed;
}

void TFolderTurn::TakeAway(TJob& job) {
    try {
        if (!Claim(*job.Source))
            return;
    } catch (const EFileError& e) {
        const bool refused = e.Error() == EACCES || e.Error() == EPERM || !IsSurroundings(e.Error());
        Wait(job, e, {refused ? TRetry::WhenChanged : TRetry::AfterPause});
        return;
    }
    try {
        AmongSurroundings([&] { job.Source->PrepareSettling(FProcess); });
        if (job.Outcome->Written)
            AmongSurroundings([&] { Publish(job); });
    } catch (const ESurroundings& e) {
        job.Source->Unclaim();
        Wait(job, e);
        return;
    } catch (const EClaimLost& e) {
        job.Source->Unclaim();
        JournalLine(e.Message());
        return;
    } catch (const std::exception& e) {
        job.Source->Unclaim();
        Fail(job, {TReasonCode::Other, {}, MessageOf(e)});
        return;
    }
    FTroubles = 0;
    if (FGroup.empty())
        FGroupBegun = Now();
    TFileRecord record = RecordOfEnd(job);
    FGroup.push_back({std::move(job.Source), std::move(job.Entry), std::move(record)});
}

void TFolderTurn::Publish(TJob& job) {
    TPartFile& result = *job.Result;
    result.LeaveFolderSync();
    if (job.Entry != nullptr && job.Entry->IsClaimed())
        PublishClaimed(job);
    else if (FInput.Folder.OverwriteExistingFiles)
        result.PublishReplacing();
    else
        PublishFree(result);
    job.Log(QStringLiteral("Saving \"%1\", SUCCESS.").arg(result.FinalPath()));
    job.Release();
}

/// The ledger knows of each name before the result gets it.
void TFolderTurn::PublishClaimed(TJob& job) {
    TPartFile& result = *job.Result;
    for (bool done = false; !done;) {
        try {
            if (!job.Entry->BeginPublishing(result, job.Outcome->Pages, job.Outcome->Numbers))
                throw EClaimLost(
                    QStringLiteral("\"%1\" was taken over by another agent; its result is discarded.")
                        .arg(job.Source->Path()));
        } catch (const ELedger& e) {
            throw ESurroundings(EFileError(e.Message(), LedgerTrouble));
        }
        if (FInput.Folder.OverwriteExistingFiles)
            result.PublishReplacing();
        else if (!result.PublishNew()) {
            result.SetFinalName(ExtractFileName(UniqueFileName(result.FinalPath(), *FOutput)));
            continue;
        }
        done = true;
    }
}

void TFolderTurn::SettleOldGroup() {
    if (!FGroup.empty() && Now() - FGroupBegun >= GroupWaits)
        SettleGroup();
}

/// Sources leave only when the names of their results are on the disk.
void TFolderTurn::SettleGroup() {
    std::vector<TPublished> group = std::move(FGroup);
    FGroup.clear();
    if (group.empty())
        return;
    try {
        FOutput->Sync();
    } catch (const EFileError& e) {
        for (TPublished& file : group)
            KeepPublished(file, e, TRetry::AfterPause);
        return;
    }
    for (TPublished& file : group)
        SettlePublished(file);
}

/// On the disk before the source leaves. Raises EFileError.
void TFolderTurn::FinishNumbers(TPublished& file) {
    if (file.Entry == nullptr || !file.Entry->IsClaimed())
        return;
    try {
        if (file.Entry->Left())
            file.Entry->FinishLeft();
        else if (!file.Record.Numbers.isEmpty())
            file.Entry->Finish(file.Record.Results.value(0).Name, file.Record.Numbers);
    } catch (const ELedger& e) {
        if (e.Fault() != TLedgerFault::Refused)
            throw EFileError(e.Message(), LedgerTrouble);
        // Not the file's own numbers, as a worker that was taken over may say: no later attempt changes that.
        JournalLine(e.Message());
    }
}

void TFolderTurn::SettlePublished(TPublished& file) {
    try {
        FinishNumbers(file);
        file.Record.Settled = PathBytes(file.Source->Settle(FProcess));
        if (file.Record.State == TRecordState::DoneWithWarnings)
            FInput.Host.Status.CountWarned(FInput.Folder.Name);
        else
            FInput.Host.Status.CountDone(FInput.Folder.Name);
        RecordSettled(file.Entry.get(), std::move(file.Record));
        FInput.Memory.Waiting.remove(file.Source->Name());
        FInput.Marks.Forget(file.Source->Path());
    } catch (const EFileError& e) {
        KeepPublished(file, e, TRetry::AfterPause);
    } catch (const ENameError& e) {
        // The name alone is at fault: the file stays, and what lies behind it is served.
        KeepPublished(file, EFileError(e.Message(), EINVAL), TRetry::WhenChanged);
    }
}

/// Its result stays where it is; only the rest of its way is to be tried again.
void TFolderTurn::KeepPublished(TPublished& file, const EFileError& trouble, TRetry retry) {
    file.Source->Unclaim();
    if (NoteWaiting(
            file.Source->Name(), trouble,
            {.Retry = retry, .Published = true, .Claimed = file.Entry != nullptr && file.Entry->IsClaimed()}))
        FInput.Log.Line(FailureLine(trouble.Message()));
}

string TFolderTurn::FailureLine(const string& reason) {
    return QStringLiteral("Excution failed. Unhandled exception %1.").arg(reason);
}

void TFolderTurn::Fail(TJob& job, const TReason& reason) {
    job.Log(FailureLine(reason.Text));
    try {
        if (!Claim(*job.Source) || !BeginFailing(job))
            return;
        const string settled = job.Source->Settle(FError);
        job.Release();
        JournalFailure(*job.Source, reason);
        if (job.Outcome->State != TOutcomeState::Failed)
            job.Outcome = Failure(reason);
        TFileRecord record = RecordOfEnd(job);
        record.Settled = PathBytes(settled);
        record.Numbers.clear();
        RecordSettled(job.Entry.get(), std::move(record));
        if (FInput.Host.ReasonFiles)
            WriteReasonFile(FError, settled, job.Outcome->Reasons);
        FInput.Host.Status.CountFailed(FInput.Folder.Name);
        FTroubles = 0;
        FInput.Memory.Waiting.remove(job.Source->Name());
        FInput.Marks.Forget(job.Source->Path());
    } catch (const EFileError& e) {
        job.Source->Unclaim();
        const bool mayPass = IsSurroundings(e.Error()) || e.Error() == LedgerTrouble;
        Wait(job, e, {mayPass ? TRetry::AfterPause : TRetry::WhenChanged});
    } catch (const ENameError& e) {
        job.Source->Unclaim();
        Wait(job, EFileError(e.Message(), EINVAL), {TRetry::WhenChanged});
    }
}

/// False, with nothing left behind, where another agent has taken the file over. Raises EFileError.
bool TFolderTurn::BeginFailing(TJob& job) {
    if (job.Entry == nullptr || !job.Entry->IsClaimed())
        return true;
    try {
        job.Entry->Void();
        if (job.Entry->BeginFailing())
            return true;
    } catch (const ELedger& e) {
        throw EFileError(e.Message(), LedgerTrouble);
    }
    job.Source->Unclaim();
    return false;
}

/// Tells why once, and says nothing more while that is so.
void TFolderTurn::Wait(TJob& job, const EFileError& trouble, TWait wait) {
    wait.Published = job.Published;
    wait.Claimed = job.Published && job.Entry != nullptr && job.Entry->IsClaimed();
    if (!NoteWaiting(job.Source->Name(), trouble, wait)) {
        job.Drop();
        return;
    }
    job.Release();
    job.Log(FailureLine(trouble.Message()));
}

bool TFolderTurn::NoteWaiting(const string& name, const EFileError& trouble, const TWait& wait) {
    TWaitingFile& waiting = FInput.Memory.Waiting[name];
    const bool news = waiting.Reason != trouble.Message();
    if (news)
        JournalLine(QStringLiteral("\"%1\" waits: %2").arg(FHome->Path() + name, trouble.Message()));
    struct stat info {};
    if (FHome->Look(PathBytes(name), info))
        waiting.State = StateOf(info);
    waiting.Reason = trouble.Message();
    waiting.Pause.Lengthen(Now());
    waiting.ForGood = wait.Retry == TRetry::WhenChanged;
    waiting.Rights = Rights();
    waiting.Published = wait.Published;
    waiting.Claimed = wait.Claimed;
    FTroubles += wait.Retry == TRetry::AfterPause ? 1 : 0;
    if (news)
        RecordWaiting(name, waiting.State.Size,
                      {ReasonOfTrouble(trouble.Error(), wait.OfSource), {}, trouble.Message()});
    return news;
}

void TFolderTurn::RecordWaiting(const string& name, qint64 size, const TReason& reason) const {
    TFileRecord record;
    record.Folder = RecordedFolder(FInput.Folder.Name);
    record.Name = PathBytes(name);
    record.List = FInput.Folder.Action;
    record.State = TRecordState::Waiting;
    record.Reasons.append(RecordedReason(reason));
    record.Size = std::max(size, qint64(0));
    record.Began = record.Ended = TimeOfDay() / 1'000'000;
    Record(std::move(record));
}

TFileRecord TFolderTurn::RecordOfEnd(const TJob& job) const {
    return RecordOf(job, FInput.Folder.Name, Now(), TimeOfDay() / 1'000'000);
}

void TFolderTurn::Record(TFileRecord record) const {
    if (FInput.Host.Ledger != nullptr)
        FInput.Host.Ledger->Record(std::move(record));
}

void TFolderTurn::RecordSettled(TFileEntry* entry, TFileRecord record) const {
    if (entry != nullptr && entry->IsClaimed())
        entry->End(std::move(record));
    else
        Record(std::move(record));
}
