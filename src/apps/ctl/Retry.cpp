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
    TFileRecord record; // what the ledger doesn't know goes back under the name that it has
    record.Folder = RecordedFolder(settled ? QFileInfo(file.path()).path() : file.path());
    record.Name = record.Settled = PathBytes(file.fileName());
    THistoryFilter filter;
    filter.Limit = AllRows;
    filter.Folder = record.Folder;
    if (settled)
        filter.Settled = record.Settled;
    else
        filter.Name = file.fileName(); // as a pattern
    for (const THistoryRow& row : history.Failed(filter))
        if (settled || row.Record.Name == record.Name)
            return row.Record;
    return record;
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

/// It couldn't be moved, and nothing is recorded.
class ENotMoved : public Exception {
public:
    using Exception::Exception;
};

/// Moves it and records that, so that it isn't told as failed any more; in this order and in one transaction,
/// since the agent may be at it the next moment. Raises ENotMoved and ELedger.
void PutBack(TLedgerConnection& ledger, TFileRecord record, qint64 count) {
    const TFileRecord failed = record;
    record.State = TRecordState::Waiting;
    record.Reasons = {RecordedReason(
        {TReasonCode::InputRetried, {}, QStringLiteral("It was put back to be worked on again")})};
    record.Results.clear();
    record.Numbers.clear();
    record.Pages = 0;
    record.Began = record.Ended = QDateTime::currentMSecsSinceEpoch();
    record.Agent = AgentName();
    record.Settled.clear();
    ledger.Write(TDurable::Soon, [&] {
        TRecords(ledger).Write(QString::fromLatin1(RunToken()) + QStringLiteral("/retry"), count, {record});
        if (const string failure = MoveBack(failed); !failure.isEmpty())
            throw ENotMoved(failure);
    });
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
    qint64 moved = 0;
    bool failed = false;
    for (const TFileRecord& record : Chosen(call, history)) {
        const string path = Printable(record.Folder + QString::fromUtf8(record.Name));
        try {
            PutBack(ledger, record, moved + 1);
            ++moved;
            lines += QStringLiteral("%1: put back").arg(path);
        } catch (const ENotMoved& e) {
            failed = true;
            lines += QStringLiteral("%1: %2").arg(path, Printable(e.Message()));
        }
    }
    if (lines.isEmpty())
        lines += QStringLiteral("No file has failed.");
    return {failed ? ExitFailed : ExitDone, lines.join(u'\n')};
}
