#include "agent/FolderTurn.h"

#include "agent/AgentStatus.h"
#include "agent/WorkMarks.h"
#include "base/Journal.h"
#include "base/NewName.h"
#include "base/Paths.h"
#include "base/UniqueName.h"
#include "work/Surroundings.h"

#include <QMap>
#include <QScopeGuard>

#include <algorithm>
#include <cerrno>

namespace {

constexpr size_t GroupSize = 16;   // files that share one wait for the output folder's entries
constexpr int TooManyTroubles = 3; // in a row: it's the folder's, not the files'
constexpr int TooManyCrashes = 2;
constexpr int TooManyReadFailures = 3;

constexpr char Output[] = "output";
constexpr char Process[] = "process";
constexpr char Error[] = "Error";

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

} // namespace

class TFolderTurn::TReporter : public TWorkReporter {
public:
    explicit TReporter(const TTurnInput& input) : FInput(input) {}
    void Log(const string& line) override { FInput.Log.Line(line); }
    void Hint(const string& text) override { FInput.Host.Hint.SetHint(text); }
    [[nodiscard]] bool Terminated() const override { return FInput.Terminated(); }

private:
    const TTurnInput& FInput;
};

TFolderTurn::TFolderTurn(const TTurnInput& input)
    : FInput(input), FQuiet(QuietTimeOf(input.Folder.Policy)), FHome(TFolder::Open(input.Folder.Name)),
      FOutput(TFolder::OpenBelow(FHome, QLatin1String(Output))),
      FProcess(TFolder::OpenBelow(FHome, QLatin1String(Process))),
      FError(TFolder::OpenBelow(FHome, QLatin1String(Error))), FClaims(FProcess), FNearby(FHome) {
    RequireApart({FHome, FOutput, FProcess, FError});
}

TFolderTurn::~TFolderTurn() = default;

qint64 TFolderTurn::TimeOfDay() const {
    return FInput.Host.Clock.Now().toMSecsSinceEpoch() * 1'000'000;
}

void TFolderTurn::Serve(TRound round) {
    const auto told = qScopeGuard([this] { TellStatus(); });
    if (!FInput.Memory.Pause.Over(Now()))
        return;
    const QStringList names = List(round);
    FListed = !names.isEmpty();
    for (const string& name : names) {
        if (FInput.Terminated() || FTroubles >= TooManyTroubles)
            break;
        ServeFile(name);
        if (FGroup.size() >= GroupSize)
            SettleGroup();
    }
    SettleGroup();
    if (FTroubles >= TooManyTroubles)
        FInput.Memory.Pause.Lengthen(Now());
    else
        FInput.Memory.Pause.End();
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

/// The files whose turn it is; says so in the log, unless all that is to be done is to try again in silence.
QStringList TFolderTurn::List(TRound round) {
    QStringList names = FInput.Host.Files.ReadyFiles(*FHome, TimeOfDay(), FQuiet);
    auto& waiting = FInput.Memory.Waiting;
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
    return names;
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

void TFolderTurn::ServeFile(const string& name) {
    std::unique_ptr<TSourceFile> source = Open(name);
    if (source == nullptr || !FInput.Host.Files.IsStillReady(*FHome, *source, TimeOfDay(), FQuiet))
        return;
    const auto known = FInput.Memory.Waiting.constFind(name);
    if (known != FInput.Memory.Waiting.constEnd())
        FInput.Log.Hold();
    if (known != FInput.Memory.Waiting.constEnd() && known->Published)
        TakeAway(std::move(source), {});
    else if (FInput.Marks.Crashes(source->Path(), source->Opened()) >= TooManyCrashes)
        Fail(std::move(source),
             QStringLiteral("The program failed twice while it worked on \"%1\"").arg(FHome->Path() + name));
    else
        WorkOn(std::move(source));
    FInput.Log.Release();
}

/// Null where there is nothing to work on any more, or nothing that may be followed.
std::unique_ptr<TSourceFile> TFolderTurn::Open(const string& name) {
    try {
        return std::make_unique<TSourceFile>(FHome, name);
    } catch (const EFileError& e) {
        if (IsSurroundings(e.Error()))
            Wait(name, e);
        else if (e.Error() != ENOENT)
            JournalLine(e.Message());
        return nullptr; // nothing was begun
    }
}

TFileWork TFolderTurn::WorkFor(const TSourceFile& source) const {
    TFileWork work;
    work.Source = source.Path();
    work.Descriptor = source.Descriptor();
    work.DestFolder = FOutput;
    work.DestName = source.Name();
    if (!FInput.Folder.OverwriteExistingFiles)
        work.DestName = ExtractFileName(UniqueFileName(FOutput->Path() + source.Name(), *FOutput));
    work.ActionName = FInput.Folder.Action;
    if (const Integer index = FInput.Manager.IndexOf(work.ActionName); index >= 0)
        work.Actions = FInput.Manager[index].FActions;
    return work;
}

TWorked TFolderTurn::Work(const TSourceFile& source) {
    TReporter reporter(FInput);
    string step;
    FInput.Host.Status.SetWorking(FInput.Folder.Name, source.Name());
    FInput.Marks.Begin(source.Path(), source.Opened());
    const auto ended = qScopeGuard([this] { FInput.Marks.End(); });
    return WorkOnFile(WorkFor(source), reporter, step);
}

void TFolderTurn::WorkOn(std::unique_ptr<TSourceFile> source) {
    try {
        TWorked worked = Work(*source);
        if (worked.Outcome.State != TOutcomeState::Waiting && worked.Outcome.State != TOutcomeState::Stopped)
            TakeAway(std::move(source), std::move(worked));
    } catch (const ESurroundings& e) {
        TWaitingFile& waiting = FInput.Memory.Waiting[source->Name()];
        if (e.OfReading() && e.Error() == EIO && ++waiting.ReadFailures >= TooManyReadFailures)
            Fail(std::move(source), e.Message());
        else
            Wait(source->Name(), e);
    } catch (const std::exception& e) {
        // What fails while the agent stops may fail for that; the next start sees.
        if (!FInput.Terminated() && source != nullptr)
            Fail(std::move(source), MessageOf(e));
    }
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

void TFolderTurn::TakeAway(std::unique_ptr<TSourceFile> source, TWorked worked) {
    try {
        if (!Claim(*source))
            return;
    } catch (const EFileError& e) {
        const bool refused = e.Error() == EACCES || e.Error() == EPERM || !IsSurroundings(e.Error());
        Wait(source->Name(), e, refused ? TRetry::WhenChanged : TRetry::AfterPause);
        return;
    }
    try {
        AmongSurroundings([&] { source->PrepareSettling(FProcess); });
        if (worked.Result != nullptr)
            AmongSurroundings([&] { Publish(worked); });
    } catch (const ESurroundings& e) {
        source->Unclaim();
        Wait(source->Name(), e);
        return;
    } catch (const std::exception& e) {
        source->Unclaim();
        Fail(std::move(source), MessageOf(e));
        return;
    }
    FTroubles = 0;
    const bool warned = worked.Outcome.State == TOutcomeState::DoneWithWarnings;
    FGroup.push_back({std::move(source), warned});
}

void TFolderTurn::Publish(TWorked& worked) {
    TPartFile& result = *worked.Result;
    result.LeaveFolderSync();
    if (FInput.Folder.OverwriteExistingFiles)
        result.PublishReplacing();
    else
        PublishFree(result);
    FInput.Log.Release();
    FInput.Log.Line(QStringLiteral("Saving \"%1\", SUCCESS.").arg(result.FinalPath()));
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
        for (TPublished& file : group) {
            file.Source->Unclaim();
            Wait(file.Source->Name(), e, TRetry::AfterPause, /*published=*/true);
        }
        return;
    }
    for (TPublished& file : group)
        SettlePublished(file);
}

void TFolderTurn::SettlePublished(TPublished& file) {
    try {
        (void)file.Source->Settle(FProcess);
        if (file.Warned)
            FInput.Host.Status.CountWarned(FInput.Folder.Name);
        else
            FInput.Host.Status.CountDone(FInput.Folder.Name);
        FInput.Memory.Waiting.remove(file.Source->Name());
        FInput.Marks.Forget(file.Source->Path());
    } catch (const EFileError& e) {
        file.Source->Unclaim();
        Wait(file.Source->Name(), e, TRetry::AfterPause, /*published=*/true);
    } catch (const ENameError& e) {
        // The name alone is at fault: the file stays, and what lies behind it is served.
        file.Source->Unclaim();
        Wait(file.Source->Name(), EFileError(e.Message(), EINVAL), TRetry::WhenChanged, /*published=*/true);
    }
}

void TFolderTurn::LogFailure(const string& reason) {
    FInput.Log.Line(QStringLiteral("Excution failed. Unhandled exception %1.").arg(reason));
}

void TFolderTurn::Fail(std::unique_ptr<TSourceFile> source, const string& reason) {
    LogFailure(reason);
    try {
        if (!Claim(*source))
            return;
        (void)source->Settle(FError);
        FInput.Log.Release();
        FInput.Host.Status.CountFailed(FInput.Folder.Name);
        FTroubles = 0;
        FInput.Memory.Waiting.remove(source->Name());
        FInput.Marks.Forget(source->Path());
    } catch (const EFileError& e) {
        source->Unclaim();
        Wait(source->Name(), e, IsSurroundings(e.Error()) ? TRetry::AfterPause : TRetry::WhenChanged);
    } catch (const ENameError& e) {
        source->Unclaim();
        Wait(source->Name(), EFileError(e.Message(), EINVAL), TRetry::WhenChanged);
    }
}

/// Tells why once, and says nothing more while that is so.
void TFolderTurn::Wait(const string& name, const EFileError& trouble, TRetry retry, bool published) {
    TWaitingFile& waiting = FInput.Memory.Waiting[name];
    struct stat info {};
    if (FHome->Look(PathBytes(name), info))
        waiting.State = StateOf(info);
    if (waiting.Reason == trouble.Message()) {
        FInput.Log.Drop();
    } else {
        waiting.Reason = trouble.Message();
        FInput.Log.Release();
        LogFailure(trouble.Message());
        JournalLine(QStringLiteral("\"%1\" waits: %2").arg(FHome->Path() + name, trouble.Message()));
    }
    waiting.Pause.Lengthen(Now());
    waiting.ForGood = retry == TRetry::WhenChanged;
    waiting.Rights = Rights();
    waiting.Published = published;
    FTroubles += retry == TRetry::AfterPause ? 1 : 0;
}

QStringList SweepFolder(const string& path) {
    const TFolderPtr home = TFolder::Open(path);
    SweepPartFiles(*home);
    SweepReservations(*home);
    QMap<string, TFolderPtr> folders;
    for (const char* name : {Output, Process, Error}) {
        struct stat info {};
        if (!home->Look(name, info))
            continue;
        const TFolderPtr folder = TFolder::OpenBelow(home, QLatin1String(name));
        SweepPartFiles(*folder);
        SweepReservations(*folder);
        folders.insert(QLatin1String(name), folder);
    }
    folders.remove(QLatin1String(Output));
    const QList<TFolderPtr> settled = folders.values();
    QStringList given = SweepClaims(home, home, settled);
    if (const TFolderPtr process = folders.value(QLatin1String(Process)))
        given += SweepClaims(process, home, settled);
    return given;
}
