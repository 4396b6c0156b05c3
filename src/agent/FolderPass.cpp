#include "agent/FolderPass.h"

#include "agent/AgentLedger.h"
#include "agent/AgentStatus.h"
#include "agent/FolderSweep.h"
#include "agent/FolderTurn.h"
#include "agent/Pauses.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <algorithm>
#include <deque>

namespace {

constexpr qint64 SweepEvery = 600'000; // ms; another agent over the same folder may die at any time
constexpr qint64 KeepsPlace = 5'000;   // ms; a file that takes longer lets the ones behind it go first
constexpr qint64 SecondMs = 1'000;
constexpr char LeftClaims[] = "left claims"; // in the journal
constexpr qsizetype MostDoneInLine = 64;     // files that are done and wait for one before them

bool IsDue(const TPDFWatchedFolder& folder, qint32 tick) {
    return folder.CheckEvery != 0 && qint64(tick) % folder.CheckEvery == 0;
}

/// A folder whose turn has begun, with its files at work.
struct TOpenTurn {
    TOpenTurn(const TPDFWatchedFolder& folder, TRunLog& log, QStringList* last)
        : Folder(folder), Log(log, last) {}

    const TPDFWatchedFolder& Folder;
    TTurnLog Log;
    std::unique_ptr<TFolderTurn> Turn = {};       // null once it is over
    std::deque<std::unique_ptr<TJob>> Line = {};  // at work or done, in the order of their names
    std::vector<std::unique_ptr<TJob>> Late = {}; // at work for so long that they have left the line
    bool AllTakenUp = false;
    std::optional<bool> Listed = {}; // whether there were files; nothing where no list was read
    string Trouble = {};

    [[nodiscard]] qsizetype DoneInLine() const {
        return std::count_if(Line.begin(), Line.end(), [](const auto& job) { return job->Outcome; });
    }
};

} // namespace

/// Turns are begun in the order of their folders, and their blocks stand in the log in that order. Where
/// several are open at once, each in turn gives a file.
class TFolderPass::TPass {
public:
    TPass(TFolderPass& pass, const TPassInput& input)
        : FPass(pass), FInput(input), FLog(input.LogFile), FLooked(Now()) {}

    void Run() {
        AddDue(FInput.TickCounter);
        for (;;) {
            OpenTurns();
            while (HandOut())
                ;
            CloseTurns();
            if (FTurns.empty() && FDue.empty() && !TakeSuspects())
                break;
            if (std::any_of(FTurns.begin(), FTurns.end(),
                            [](const auto& turn) { return !turn->Line.empty() || !turn->Late.empty(); }))
                FPass.FPlace->WaitForNews();
            LookAtClock();
        }
        // One line a pass at most, and none where the last folder listed was empty: the list read last
        // decides.
        if (FListed)
            FLog.Line(QStringLiteral("Done at %1").arg(CurrentTime()));
    }

private:
    [[nodiscard]] qint64 Now() const { return FPass.FHost.Clock.Steady(); }
    [[nodiscard]] string CurrentTime() const { return LogTime(FPass.FHost.Clock.Now()); }

    [[nodiscard]] bool IsOpen(const TPDFWatchedFolder& folder) const {
        return std::any_of(FTurns.begin(), FTurns.end(), [&](const auto& turn) {
            return turn->Turn != nullptr && &turn->Folder == &folder;
        });
    }

    void AddDue(qint32 tick) {
        for (const TPDFWatchedFolder& folder : FInput.Folders.FFolders) {
            if (FPass.MemoryOf(folder).SweptAt < 0)
                FPass.Sweep(folder); // also where it is disabled: what a dead run took is given back
            if (!FPass.NotePause(folder) && IsDue(folder, tick) && !IsOpen(folder))
                FDue.push_back(&folder);
        }
    }

    /// A long pass over many folders holds none of them up.
    void LookAtClock() {
        if (!FPass.FPlace->IsParallel() || !FInput.NextTick || Now() - FLooked < SecondMs || FTurns.empty())
            return;
        FLooked = Now();
        if (const std::optional<qint32> tick = FInput.NextTick())
            AddDue(*tick);
    }

    void OpenTurns() {
        while (!FDue.empty() && (FPass.FPlace->IsParallel() || FTurns.empty())) {
            const TPDFWatchedFolder& folder = *FDue.front();
            FDue.pop_front();
            const bool served = folder.Enabled && DirectoryExists(folder.Name);
            if (served && FPass.FTerminated()) {
                FDue.clear();
                FSuspects.clear();
                return;
            }
            auto& turn =
                *FTurns.emplace_back(std::make_unique<TOpenTurn>(folder, FLog, FPass.LastBlockOf(folder)));
            if (FTurns.size() == 1)
                turn.Log.TakePlace();
            if (served)
                Open(turn);
            else
                Tell(turn);
        }
    }

    /// Of a folder that isn't served.
    void Tell(TOpenTurn& turn) {
        const TPDFWatchedFolder& folder = turn.Folder;
        const string text = folder.Enabled
                                ? QStringLiteral("Watched folder path \"%1\" is invalid.").arg(folder.Name)
                                : QStringLiteral("Folder \"%1\" is disabled.").arg(folder.Name);
        turn.Log.Announce(u'*', text, text);
        turn.Log.Begin();
        if (folder.Enabled)
            FPass.NoteTrouble(folder, QStringLiteral("there is no such folder"));
    }

    void Open(TOpenTurn& turn) {
        const TPDFWatchedFolder& folder = turn.Folder;
        const string started = QStringLiteral("Started at %1, Folder=\"%2\"");
        turn.Log.Announce(u'-', started.arg(CurrentTime(), folder.Name), started.arg(QString(), folder.Name));
        try {
            TFolderMemory& memory = FPass.MemoryOf(folder);
            if (Now() - memory.SweptAt >= SweepEvery)
                FPass.Sweep(folder);
            FPass.LookForOthers(folder);
            turn.Turn = std::make_unique<TFolderTurn>(TTurnInput{
                folder, FInput.Manager, turn.Log, memory, FPass.FMarks, FPass.FHost, FPass.FTerminated});
            turn.Turn->List(FRound);
        } catch (const std::exception& e) {
            turn.Turn.reset();
            FPass.NoteTrouble(folder, MessageOf(e));
        }
    }

    /// One more file of each open turn for which there is room, beginning behind the one that gave a file
    /// last. False where there was none.
    bool HandOut() {
        bool any = false;
        const size_t first = FGaveLast + 1;
        for (size_t i = 0; i < FTurns.size(); ++i) {
            const size_t at = (first + i) % FTurns.size();
            TOpenTurn& turn = *FTurns[at];
            if (turn.Turn == nullptr)
                continue;
            if (TakeUp(turn)) {
                any = true;
                FGaveLast = at;
            }
            FinishJobs(turn);
        }
        return any;
    }

    bool TakeUp(TOpenTurn& turn) {
        if (turn.AllTakenUp || !FPass.FPlace->HasRoom(turn.Turn->ListOfActions()) ||
            turn.DoneInLine() >= MostDoneInLine)
            return false;
        try {
            std::unique_ptr<TJob> job = turn.Turn->Next();
            if (job == nullptr) {
                turn.AllTakenUp = true;
                return false;
            }
            job->Begun = Now();
            TJob& begun = *turn.Line.emplace_back(std::move(job));
            if (turn.Line.size() == 1)
                begun.TakePlace();
            if (!begun.Outcome) {
                FPass.FHost.Status.SetWorking(turn.Folder.Name, begun.Source->Name());
                FPass.FPlace->Begin(begun);
            }
            return true;
        } catch (const std::exception& e) {
            Break(turn, e);
            return false;
        }
    }

    /// What is at work for the folder ends first.
    static void Break(TOpenTurn& turn, const std::exception& e) {
        turn.Trouble = MessageOf(e);
        turn.AllTakenUp = true;
    }

    void FinishJobs(TOpenTurn& turn) {
        for (auto it = turn.Late.begin(); it != turn.Late.end();)
            it = (*it)->Outcome ? (Finish(turn, std::move(*it)), turn.Late.erase(it)) : std::next(it);
        while (!turn.Line.empty() && LeavesLine(*turn.Line.front())) {
            std::unique_ptr<TJob> job = std::move(turn.Line.front());
            turn.Line.pop_front();
            if (job->Outcome) {
                Finish(turn, std::move(job));
            } else {
                job->GiveUpPlace();
                turn.Late.push_back(std::move(job));
            }
        }
        if (!turn.Line.empty())
            turn.Line.front()->TakePlace();
    }

    [[nodiscard]] bool LeavesLine(const TJob& job) const {
        return job.Outcome || Now() - job.Begun >= KeepsPlace;
    }

    static void Finish(TOpenTurn& turn, std::unique_ptr<TJob> job) {
        try {
            turn.Turn->Finish(*job);
        } catch (const std::exception& e) {
            Break(turn, e);
        }
    }

    void CloseTurns() {
        for (const auto& turn : FTurns) {
            if (turn->Turn == nullptr)
                continue;
            FinishJobs(*turn);
            if (turn->AllTakenUp && turn->Line.empty() && turn->Late.empty())
                Close(*turn);
            else
                turn->Turn->SettleOldGroup();
        }
        DropEmpty();
        while (!FTurns.empty() && FTurns.front()->Turn == nullptr) {
            FListed = FTurns.front()->Listed.value_or(FListed);
            FTurns.pop_front(); // with the end of its block
            if (!FTurns.empty())
                FTurns.front()->Log.TakePlace();
        }
    }

    /// Turns without a line that wait for a long one before them: a long pass has one for each folder and
    /// second. The last one stays, for what it says of its list.
    void DropEmpty() {
        for (size_t i = 1; i + 1 < FTurns.size();)
            if (const TOpenTurn& turn = *FTurns[i];
                turn.Turn == nullptr && !turn.Log.Written() && FTurns[i + 1]->Listed) {
                FTurns.erase(FTurns.begin() + qsizetype(i));
                FGaveLast -= FGaveLast >= i ? 1 : 0;
            } else {
                ++i;
            }
    }

    void Close(TOpenTurn& turn) {
        try {
            turn.Turn->End();
        } catch (const std::exception& e) {
            Break(turn, e);
        }
        if (turn.Turn->LeftSuspects() && FRound == TRound::Others)
            FSuspects.push_back(&turn.Folder);
        const bool listed = turn.Turn->Listed();
        turn.Turn.reset();
        turn.Log.End();
        FPass.NoteTrouble(turn.Folder, turn.Trouble);
        if (turn.Trouble.isEmpty())
            turn.Listed = listed && turn.Log.Written();
    }

    /// Files over which a run died come after all others.
    bool TakeSuspects() {
        FRound = TRound::Suspects;
        FDue = std::exchange(FSuspects, {});
        return !FDue.empty();
    }

    TFolderPass& FPass;
    const TPassInput& FInput;
    TRunLog FLog;
    TRound FRound = TRound::Others;
    std::deque<const TPDFWatchedFolder*> FDue;
    std::deque<const TPDFWatchedFolder*> FSuspects;
    std::deque<std::unique_ptr<TOpenTurn>> FTurns; // in the order of their blocks in the log
    size_t FGaveLast = 0;                          // of them
    qint64 FLooked;
    bool FListed = false; // the folder that was listed last held files
};

TFolderPass::TFolderPass(const TRunHost& host, std::function<bool()> terminated,
                         const TWorkerSettings& workers)
    : FHost(host), FTerminated(std::move(terminated)), FMarks(host.StateFolder) {
    try {
        if (workers.Count > 0)
            FPlace = std::make_unique<TWorkers>(workers, host, FTerminated);
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("There are no workers, so the agent works on the files itself: %1")
                        .arg(MessageOf(e)));
    }
    if (FPlace == nullptr)
        FPlace = std::make_unique<TWorkHere>(FMarks);
}

void TFolderPass::Run(const TPassInput& input) {
    FPlace->SetLists(input.Manager);
    if (FHost.Ledger != nullptr)
        FHost.Ledger->FinishEnds();
    TPass(*this, input).Run();
    FPlace->Rest();
}

QStringList* TFolderPass::LastBlockOf(const TPDFWatchedFolder& folder) {
    const bool all = folder.Policy.RepeatLines == TPDFFolderPolicy::TRepeatLines::Every;
    return all ? nullptr : &MemoryOf(folder).LastBlock;
}

void TFolderPass::Sweep(const TPDFWatchedFolder& folder) {
    TFolderMemory& memory = MemoryOf(folder);
    memory.SweptAt = FHost.Clock.Steady();
    if (!DirectoryExists(folder.Name))
        return;
    try {
        for (const string& name : SweepFolder(folder.Name))
            JournalLine(QStringLiteral("\"%1\" was taken by a run that died; it is served again.")
                            .arg(IncludeTrailingDelimiter(folder.Name) + name));
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("What dead runs may have left in \"%1\" stays: %2")
                        .arg(folder.Name, MessageOf(e)));
    }
    try {
        if (FHost.Ledger != nullptr && FHost.Ledger->MayHoldLeftClaims())
            SettleLeftClaims(*FHost.Ledger, folder);
        JournalSettled(QLatin1String(LeftClaims));
    } catch (const std::exception& e) {
        JournalChange(
            QLatin1String(LeftClaims),
            QStringLiteral("What dead agents have left in the ledger isn't known: %1").arg(MessageOf(e)));
    }
}

/// Another agent over the same folder works in vain now and then, unless both have one ledger.
void TFolderPass::LookForOthers(const TPDFWatchedFolder& folder) {
    THeartbeat& heartbeat = MemoryOf(folder).Heartbeat;
    const qint64 now = FHost.Clock.Steady();
    if ((FHost.Ledger != nullptr && FHost.Ledger->IsShared()) || !heartbeat.IsDue(now))
        return;
    const string subject = QStringLiteral("other agent ") + folder.Name;
    try {
        const string other = heartbeat.Look(TFolder::Open(folder.Name), AgentName(), now);
        FHost.Status.SetOther(folder.Name, other);
        if (other.isEmpty())
            JournalSettled(subject);
        else
            JournalChange(subject,
                          QStringLiteral("\"%1\" is served by another agent, too: %2. Both may work on a "
                                         "file, unless they have one ledger.")
                              .arg(folder.Name, other));
    } catch (const std::exception& e) {
        JournalChange(subject, MessageOf(e)); // no reason not to serve it
    }
}

/// True while it is paused.
bool TFolderPass::NotePause(const TPDFWatchedFolder& folder) {
    TFolderMemory& memory = MemoryOf(folder);
    const bool paused = FHost.Pauses != nullptr && FHost.Pauses->IsPaused(folder.Name);
    if (paused && folder.Enabled)
        FHost.Status.SetState(folder.Name, TFolderState::Paused, QStringLiteral("paused"));
    else if (memory.Paused && folder.Enabled)
        FHost.Status.SetState(folder.Name, TFolderState::Watching);
    memory.Paused = paused;
    return paused;
}

/// Tells when it changes.
void TFolderPass::NoteTrouble(const TPDFWatchedFolder& folder, const string& trouble) {
    TFolderMemory& memory = MemoryOf(folder);
    if (!trouble.isEmpty())
        FHost.Status.SetState(folder.Name, TFolderState::Broken, trouble);
    if (memory.Trouble == trouble)
        return;
    memory.Trouble = trouble;
    JournalLine(trouble.isEmpty()
                    ? QStringLiteral("The folder \"%1\" is served again.").arg(folder.Name)
                    : QStringLiteral("The folder \"%1\" can't be served: %2").arg(folder.Name, trouble));
}
