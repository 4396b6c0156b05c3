#include "apps/ctl/LedgerCommands.h"

#include "agent/AgentLedger.h"
#include "agent/OutcomeRecord.h"
#include "agent/ReasonFile.h"
#include "agent/Subfolders.h"
#include "base/Folder.h"
#include "base/NewName.h"
#include "base/Paths.h"
#include "base/Printable.h"
#include "base/RunToken.h"
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Records.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace {

constexpr int AllRows = 1'000'000;

/// A failed file of a path: one in Error/, or the one that failed under that name in a watched folder.
TFileRecord RecordOfPath(const string& path, THistory& history) {
    const QFileInfo file(QDir::cleanPath(QDir(path).absolutePath()));
    const bool settled = file.dir().dirName() == QLatin1String(ErrorFolder);
    const QByteArray name = PathBytes(file.fileName());
    THistoryFilter filter;
    filter.Limit = 1;
    filter.Folder = RecordedFolder(settled ? QFileInfo(file.path()).path() : file.path());
    if (settled)
        filter.Settled = name;
    TFileRecord record;
    record.Folder = *filter.Folder;
    record.Name = record.Settled = name;
    if (!settled)
        filter.Name = file.fileName();
    // Without the ledger it goes back under the name that it has.
    const QList<THistoryRow> rows = history.Failed(filter);
    return rows.isEmpty() ? record : rows.first().Record;
}

/// Why it can't be; empty where it is back in its folder.
string MoveBack(const TFileRecord& record) {
    try {
        const TFolderPtr home = TFolder::Open(record.Folder);
        const TFolderPtr error = TFolder::Open(record.Folder + QLatin1String(ErrorFolder));
        if (!error->Holds(record.Settled))
            return QStringLiteral("it isn't in Error/ any more");
        const int failure = MoveToNewName("retry", *error, record.Settled, *home, record.Name);
        if (failure == EEXIST)
            return QStringLiteral("a file of this name is in the folder already");
        if (failure != 0)
            return QString::fromLocal8Bit(std::strerror(failure));
        ::unlinkat(error->Descriptor(),
                   PathBytes(ReasonFileName(QString::fromUtf8(record.Settled))).constData(), 0);
        home->Sync();
        return {};
    } catch (const EFileError& e) {
        return e.Message();
    }
}

/// So that it isn't told as failed any more.
void RecordRetries(TLedgerConnection& ledger, QList<TFileRecord> records) {
    const TReason reason{
        TReasonCode::InputRetried, {}, QStringLiteral("It was put back to be worked on again")};
    for (TFileRecord& record : records) {
        record.State = TRecordState::Waiting;
        record.Reasons = {RecordedReason(reason)};
        record.Results.clear();
        record.Numbers.clear();
        record.Pages = 0;
        record.Began = record.Ended = QDateTime::currentMSecsSinceEpoch();
        record.Agent = AgentName();
        record.Settled.clear();
    }
    if (!records.isEmpty())
        TRecords(ledger).Write(QString::fromLatin1(RunToken()) + QStringLiteral("/retry"), 1, records);
}

QList<TFileRecord> Chosen(const TCommandCall& call, THistory& history) {
    const bool all = call.Options.isSet(QStringLiteral("all"));
    if (all == !call.Words.isEmpty())
        throw EUsage(QStringLiteral("The command \"retry\" needs files, or --all."));
    if (!all && call.Options.isSet(QStringLiteral("folder")))
        throw EUsage(QStringLiteral("--folder goes with --all."));
    QList<TFileRecord> records;
    if (!all) {
        for (const string& path : call.Words)
            records.append(RecordOfPath(path, history));
        return records;
    }
    THistoryFilter filter;
    if (call.Options.isSet(QStringLiteral("folder")))
        filter.Folder = RecordedFolder(QDir(call.Options.value(QStringLiteral("folder"))).absolutePath());
    filter.Limit = AllRows;
    for (const THistoryRow& row : history.Failed(filter))
        records.append(row.Record);
    return records;
}

} // namespace

void AddRetryOptions(QCommandLineParser& parser) {
    parser.addOptions({{"all", "All files whose last outcome is a failure."},
                       {"folder", "With --all: only of this watched folder.", "path"}});
}

TCommandResult Retry(const TCommandCall& call) {
    TLedgerConnection ledger(ConfiguredLedger());
    THistory history(ledger);
    QStringList lines;
    QList<TFileRecord> moved;
    bool failed = false;
    for (const TFileRecord& record : Chosen(call, history)) {
        const string path = Printable(record.Folder + QString::fromUtf8(record.Name));
        const string failure = MoveBack(record);
        failed = failed || !failure.isEmpty();
        lines += QStringLiteral("%1: %2").arg(path, failure.isEmpty() ? QStringLiteral("put back")
                                                                      : Printable(failure));
        if (failure.isEmpty())
            moved.append(record);
    }
    RecordRetries(ledger, moved);
    if (lines.isEmpty())
        lines += QStringLiteral("No file has failed.");
    return {failed ? ExitFailed : ExitDone, lines.join(u'\n')};
}
