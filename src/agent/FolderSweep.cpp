#include "agent/FolderSweep.h"

#include "actions/WatchedFolders.h"
#include "agent/FileEntry.h"
#include "agent/OutcomeRecord.h"
#include "agent/Subfolders.h"
#include "base/ClaimFolder.h"
#include "base/FileState.h"
#include "base/FolderListing.h"
#include "base/NewName.h"
#include "base/PartFile.h"
#include "base/Paths.h"

#include <QDateTime>
#include <QMap>

#include <optional>

namespace {

/// The name in the folder of the file as the claim has it; renaming changes nothing of what is compared.
std::optional<QByteArray> NameOf(const TClaimedFile& file, const TFolder& folder) {
    for (const QByteArray& name : ListAll(folder)) {
        struct stat info {};
        if (!folder.Look(name, info) || quint64(info.st_ino) != file.Inode)
            continue;
        const TFileState state = StateOf(info);
        if (state.Size == file.Size && state.ModifyTime == file.Modified)
            return name;
    }
    return std::nullopt;
}

class TLeftClaim {
public:
    TLeftClaim(TAgentLedger& ledger, const TPDFWatchedFolder& folder, const TClaimedFile& file,
               const TFolderPtr& home)
        : FLedger(ledger), FFolder(folder), FFile(file), FHome(home) {}

    void Settle() {
        const TFolderPtr output = TFolder::OpenBelow(FHome, QLatin1String(OutputFolder));
        const TFolderPtr process = TFolder::OpenBelow(FHome, QLatin1String(ProcessFolder));
        const TFolderPtr error = TFolder::OpenBelow(FHome, QLatin1String(ErrorFolder));
        if (NameOf(FFile, *FHome) || HoldsClaimed(*FHome, FFile.Name) || HoldsClaimed(*process, FFile.Name))
            return;
        TLedgerWork work(FLedger.Run(), {FFile.Folder, FFile.Name});
        const TClaim claim = FLedger.Claims().Take(work, FFile);
        if (claim.Id == 0 || !claim.Left)
            return; // another agent was faster
        const TPublishing& left = *claim.Left;
        const bool published = !left.Result.isEmpty() && IsPublished(*output, left);
        const std::optional<QByteArray> done = NameOf(FFile, *process);
        const std::optional<QByteArray> failed = NameOf(FFile, *error);
        FLedger.Numbers().Resume(work);
        if (published && !work.Reservations().isEmpty())
            FLedger.Numbers().Finish(work, left.Result, left.Numbers);
        else
            FLedger.Numbers().Void(work);
        const auto end = [&] { return FLedger.Claims().End(work, claim); };
        if (done || published)
            FLedger.RecordAtOnce(RecordOf(TRecordState::Done, left, done.value_or(QByteArray())), end);
        else if (failed)
            FLedger.RecordAtOnce(RecordOf(TRecordState::Failed, {}, *failed), end);
        else
            (void)end(); // its owner took it away before it was done
    }

private:
    [[nodiscard]] TFileRecord RecordOf(TRecordState state, const TPublishing& left,
                                       const QByteArray& settled) const {
        TFileRecord record;
        record.Folder = RecordedFolder(FFolder.Name);
        record.Name = FFile.Name;
        record.List = FFolder.Action;
        record.State = state;
        record.Reasons.append({ReasonName(TReasonCode::Other),
                               {},
                               QStringLiteral("The agent that worked on it died before it had told more")});
        if (!left.Result.isEmpty())
            record.Results.append({left.Result, left.Size});
        record.Numbers = left.Numbers;
        record.Pages = left.Pages;
        record.Size = FFile.Size;
        record.Began = record.Ended = QDateTime::currentMSecsSinceEpoch();
        record.Settled = settled;
        return record;
    }

    TAgentLedger& FLedger;
    const TPDFWatchedFolder& FFolder;
    const TClaimedFile& FFile;
    const TFolderPtr FHome;
};

} // namespace

QStringList SweepFolder(const string& path) {
    const TFolderPtr home = TFolder::Open(path);
    SweepPartFiles(*home);
    SweepReservations(*home);
    QMap<string, TFolderPtr> folders;
    for (const char* name : {OutputFolder, ProcessFolder, ErrorFolder}) {
        struct stat info {};
        if (!home->Look(name, info))
            continue;
        const TFolderPtr folder = TFolder::OpenBelow(home, QLatin1String(name));
        SweepPartFiles(*folder);
        SweepReservations(*folder);
        folders.insert(QLatin1String(name), folder);
    }
    folders.remove(QLatin1String(OutputFolder));
    const QList<TFolderPtr> settled = folders.values();
    QStringList given = SweepClaims(home, home, settled);
    if (const TFolderPtr process = folders.value(QLatin1String(ProcessFolder)))
        given += SweepClaims(process, home, settled);
    return given;
}

void SettleLeftClaims(TAgentLedger& ledger, const TPDFWatchedFolder& folder) {
    const TFolderPtr home = TFolder::Open(folder.Name);
    for (const TClaimedFile& file : ledger.Claims().LeftFiles(LedgerKeyOf(ledger, folder.Name, home)))
        TLeftClaim(ledger, folder, file, home).Settle();
}
