#include "agent/OutcomeRecord.h"

#include "base/Paths.h"

#include <QDir>

#include <sys/stat.h>

namespace {

TRecordState StateOf(TOutcomeState state) {
    switch (state) {
    case TOutcomeState::Done:
        return TRecordState::Done;
    case TOutcomeState::DoneWithWarnings:
        return TRecordState::DoneWithWarnings;
    case TOutcomeState::Failed:
        return TRecordState::Failed;
    case TOutcomeState::Waiting:
        return TRecordState::Waiting;
    case TOutcomeState::Stopped:
        break;
    }
    return TRecordState::Stopped;
}

} // namespace

TRecordReason RecordedReason(const TReason& reason) {
    return {ReasonName(reason.Code), reason.Step, reason.Text};
}

string RecordedFolder(const string& path) {
    return IncludeTrailingDelimiter(QDir::cleanPath(path));
}

TFileRecord RecordOf(const TJob& job, const string& folder, qint64 steady, qint64 now) {
    const TOutcome& outcome = *job.Outcome;
    TFileRecord record;
    record.Folder = RecordedFolder(folder);
    record.Name = PathBytes(job.Source->Name());
    record.List = job.Work.ActionName;
    record.State = StateOf(outcome.State);
    for (const TReason& reason : outcome.Reasons)
        record.Reasons.append(RecordedReason(reason));
    record.Numbers = outcome.Numbers;
    record.Pages = outcome.Pages;
    if (job.Entry != nullptr && job.Entry->Left()) {
        const TPublishing& left = *job.Entry->Left();
        record.Results.append({left.Result, left.Size});
        record.Numbers = left.Numbers;
        record.Pages = left.Pages;
    } else if (outcome.Written && job.Result != nullptr) {
        const QByteArray name = PathBytes(ExtractFileName(job.Result->FinalPath()));
        struct stat info {};
        record.Results.append({name, job.Result->Folder().Look(name, info) ? info.st_size : 0});
    }
    record.Size = job.Source->Opened().Size;
    record.Ended = now;
    record.Began = now - (steady - job.Begun);
    return record;
}
