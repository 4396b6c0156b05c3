#include "agent/FolderPass.h"

#include "agent/FileJob.h"
#include "base/Exceptions.h"
#include "base/FileCopy.h"
#include "base/Journal.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "base/UniqueName.h"

#include <cerrno>

/// One due folder while it is served.
struct TFolderPass::TFolderTurn {
    const TPassInput& Input;
    TRunLog& Log;
    TPDFWatchedFolder Folder;
    string Path; // these four with a delimiter at their end
    string OutputFolder;
    string ProcessFolder;
    string ErrorFolder;
    QStringList Files; // of this turn, or of the one before until this folder is listed
};

class TFolderPass::TReporter : public TJobReporter {
public:
    TReporter(TRunLog& log, TTrayHint& hint, const std::function<bool()>& terminated)
        : FLog(log), FHint(hint), FTerminated(terminated) {}
    void Log(const string& line) override { FLog.Line(line); }
    void Hint(const string& text) override { FHint.SetHint(text); }
    [[nodiscard]] bool Terminated() const override { return FTerminated(); }

private:
    TRunLog& FLog;
    TTrayHint& FHint;
    const std::function<bool()>& FTerminated;
};

namespace {

bool IsDue(const TPDFWatchedFolder& folder, qint32 tick) {
    return folder.CheckEvery != 0 && qint64(tick) % folder.CheckEvery == 0;
}

} // namespace

TFolderPass::TFolderPass(TRunHost host, std::function<bool()> terminated)
    : FHost(host), FTerminated(std::move(terminated)) {}

void TFolderPass::Run(const TPassInput& input) {
    TRunLog log(input.LogFile);
    TFolderTurn turn{input, log, {}, {}, {}, {}, {}, {}};
    for (const TPDFWatchedFolder& folder : input.Folders.FFolders) {
        if (!IsDue(folder, input.TickCounter))
            continue;
        if (!folder.Enabled) {
            log.Framed(u'*', QStringLiteral("Folder \"%1\" is disabled.").arg(folder.Name));
            continue;
        }
        if (!DirectoryExists(folder.Name)) {
            log.Framed(u'*', QStringLiteral("Watched folder path \"%1\" is invalid.").arg(folder.Name));
            continue;
        }
        if (FTerminated())
            break;
        turn.Folder = folder;
        RunFolder(turn);
    }
    // One line a pass at most, and none where the last folder listed was empty: the list read last decides.
    if (!turn.Files.isEmpty())
        log.Line(QStringLiteral("Done at %1").arg(CurrentTime()));
}

void TFolderPass::RunFolder(TFolderTurn& turn) {
    turn.Path = IncludeTrailingDelimiter(turn.Folder.Name);
    turn.OutputFolder = turn.Path + QStringLiteral("output/");
    turn.ProcessFolder = turn.Path + QStringLiteral("process/");
    turn.ErrorFolder = turn.Path + QStringLiteral("Error/");
    for (const string& folder : {turn.OutputFolder, turn.ProcessFolder, turn.ErrorFolder})
        ForceDirectories(folder);
    SweepOnce(turn);
    turn.Files = FHost.Files.ReadyFiles(turn.Folder.Name, FHost.Clock.Now().toMSecsSinceEpoch() * 1'000'000);
    if (!turn.Files.isEmpty())
        turn.Log.Framed(u'-',
                        QStringLiteral("Started at %1, Folder=\"%2\"").arg(CurrentTime(), turn.Folder.Name));
    for (const string& name : std::as_const(turn.Files)) {
        if (FTerminated())
            break;
        ServeFile(turn, name);
    }
}

void TFolderPass::SweepOnce(const TFolderTurn& turn) {
    if (FSwept.contains(turn.Path))
        return;
    FSwept.insert(turn.Path);
    for (const string& folder : {turn.Path, turn.OutputFolder, turn.ProcessFolder, turn.ErrorFolder})
        SweepPartFiles(folder);
}

void TFolderPass::ServeFile(TFolderTurn& turn, const string& name) {
    std::optional<TSourceFile> source;
    try {
        source.emplace(turn.Path + name);
    } catch (const EFileError& e) {
        if (e.Error() != ENOENT)
            JournalLine(e.Message());
        return; // somebody took it away, or it can be read no more: nothing was begun
    }
    try {
        WorkAndMove(turn, name, *source);
    } catch (const std::exception& e) {
        turn.Log.Line(QStringLiteral("Excution failed. Unhandled exception %1.").arg(MessageOf(e)));
        MoveToError(turn, name, *source);
    }
}

void TFolderPass::WorkAndMove(TFolderTurn& turn, const string& name, TSourceFile& source) {
    TFileJob job;
    job.Source = turn.Path + name;
    job.Dest = turn.OutputFolder + name;
    if (!turn.Folder.OverwriteExistingFiles)
        job.Dest = TPDFActionManager::UniqueFileName(job.Dest);
    job.ActionName = turn.Folder.Action;
    if (const Integer index = turn.Input.Manager.IndexOf(job.ActionName); index >= 0)
        job.Actions = turn.Input.Manager[index].FActions;

    TReporter reporter(turn.Log, FHost.Hint, FTerminated);
    if (WorkOnFile(job, source, reporter) == TJobOutcome::Worked)
        source.MoveTo(TPDFActionManager::UniqueFileName(turn.ProcessFolder + name));
}

void TFolderPass::MoveToError(TFolderTurn& turn, const string& name, TSourceFile& source) {
    try {
        source.MoveTo(TPDFActionManager::UniqueFileName(turn.ErrorFolder + name));
    } catch (const ENameError& e) {
        // The name alone is at fault: the file stays, and the files and folders behind it are served.
        JournalLine(QStringLiteral("\"%1\" stays in its folder: %2").arg(turn.Path + name, e.Message()));
    }
}
