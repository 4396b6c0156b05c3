#include "agent/FolderPass.h"

#include "agent/AgentStatus.h"
#include "agent/FolderTurn.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Paths.h"

struct TFolderPass::TPass {
    const TPassInput& Input;
    TRunLog& Log;
    bool Listed = false;                           // the folder that was listed last held files
    QList<const TPDFWatchedFolder*> Suspects = {}; // folders that hold files over which a run died
};

namespace {

constexpr qint64 SweepEvery = 600'000; // another agent over the same folder may die at any time

bool IsDue(const TPDFWatchedFolder& folder, qint32 tick) {
    return folder.CheckEvery != 0 && qint64(tick) % folder.CheckEvery == 0;
}

} // namespace

TFolderPass::TFolderPass(const TRunHost& host, std::function<bool()> terminated)
    : FHost(host), FTerminated(std::move(terminated)), FMarks(host.StateFolder) {}

void TFolderPass::Run(const TPassInput& input) {
    TRunLog log(input.LogFile);
    TPass pass{input, log};
    for (const TPDFWatchedFolder& folder : input.Folders.FFolders) {
        if (MemoryOf(folder).SweptAt < 0)
            Sweep(folder); // also where it is disabled: what a dead run took is given back
        if (!IsDue(folder, input.TickCounter))
            continue;
        if (folder.Enabled && DirectoryExists(folder.Name) && FTerminated())
            break;
        RunFolder(pass, folder);
    }
    for (const TPDFWatchedFolder* folder : std::as_const(pass.Suspects))
        ServeFolder(pass, *folder, TRound::Suspects);
    // One line a pass at most, and none where the last folder listed was empty: the list read last decides.
    if (pass.Listed)
        log.Line(QStringLiteral("Done at %1").arg(CurrentTime()));
}

QStringList* TFolderPass::LastBlockOf(const TPDFWatchedFolder& folder) {
    const bool all = folder.Policy.RepeatLines == TPDFFolderPolicy::TRepeatLines::Every;
    return all ? nullptr : &MemoryOf(folder).LastBlock;
}

void TFolderPass::RunFolder(TPass& pass, const TPDFWatchedFolder& folder) {
    if (folder.Enabled && DirectoryExists(folder.Name)) {
        ServeFolder(pass, folder, TRound::Others);
        return;
    }
    const string text = folder.Enabled
                            ? QStringLiteral("Watched folder path \"%1\" is invalid.").arg(folder.Name)
                            : QStringLiteral("Folder \"%1\" is disabled.").arg(folder.Name);
    TTurnLog log(pass.Log, LastBlockOf(folder));
    log.Announce(u'*', text, text);
    log.Begin();
    if (folder.Enabled)
        NoteTrouble(folder, QStringLiteral("there is no such folder"));
}

void TFolderPass::ServeFolder(TPass& pass, const TPDFWatchedFolder& folder, TRound round) {
    TTurnLog log(pass.Log, LastBlockOf(folder));
    const string started = QStringLiteral("Started at %1, Folder=\"%2\"");
    log.Announce(u'-', started.arg(CurrentTime(), folder.Name), started.arg(QString(), folder.Name));
    try {
        TFolderMemory& memory = MemoryOf(folder);
        if (FHost.Clock.Steady() - memory.SweptAt >= SweepEvery)
            Sweep(folder);
        TFolderTurn turn({folder, pass.Input.Manager, log, memory, FMarks, FHost, FTerminated});
        turn.Serve(round);
        log.End();
        pass.Listed = turn.Listed() && log.Written();
        if (turn.LeftSuspects())
            pass.Suspects.append(&folder);
        NoteTrouble(folder, {});
    } catch (const std::exception& e) {
        NoteTrouble(folder, MessageOf(e));
    }
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
