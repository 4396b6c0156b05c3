#include "apps/ctl/LedgerCommands.h"

#include "agent/ControlPipe.h"
#include "apps/ctl/PipeCommands.h"
#include "base/Exceptions.h"
#include "base/FileState.h"
#include "base/Folder.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"

#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

namespace {

/// Text of Prometheus, version 0.0.4: each metric with its help and kind, then a line for each set of labels.
class TMetrics {
public:
    void Begin(const char* name, const char* kind, const char* help) {
        FName = name;
        FText += QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + kind + '\n';
    }
    void Value(double value, const QList<std::pair<const char*, string>>& labels = {}) {
        QByteArrayList pairs;
        for (const auto& [label, text] : labels)
            pairs += QByteArray(label) + "=\"" + Escaped(text) + '"';
        FText += FName + (pairs.isEmpty() ? QByteArray() : '{' + pairs.join(',') + '}') + ' ' +
                 QByteArray::number(value, 'g', 15) + '\n';
    }
    [[nodiscard]] const QByteArray& Text() const { return FText; }

private:
    static QByteArray Escaped(const string& text) {
        return text.toUtf8().replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n");
    }

    QByteArray FName;
    QByteArray FText;
};

string Text(const QJsonObject& object, const char* member) {
    return object[QLatin1String(member)].toString();
}

double Count(const QJsonObject& object, const char* member) {
    return double(object[QLatin1String(member)].toInteger());
}

/// What lies in a watched folder and is still to be worked on.
struct TBacklog {
    int Files = 0;
    qint64 Oldest = 0; ///< s since it came
};

TBacklog BacklogOf(const string& folder) {
    TBacklog backlog;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    for (const QFileInfo& file : QDir(folder).entryInfoList({QStringLiteral("*.pdf")}, QDir::Files)) {
        ++backlog.Files;
        backlog.Oldest = std::max(backlog.Oldest, now - file.metadataChangeTime().toSecsSinceEpoch());
    }
    return backlog;
}

void AddAgent(TMetrics& metrics, const QJsonObject& status) {
    metrics.Begin("morvane_up", "gauge", "Whether the agent runs and answers.");
    metrics.Value(status.isEmpty() ? 0 : 1);
    if (status.isEmpty())
        return;
    metrics.Begin("morvane_serving", "gauge", "Whether it serves folders.");
    metrics.Value(Text(status, "state") == u"serving" ? 1 : 0, {{"version", Text(status, "version")}});
    metrics.Begin("morvane_start_time_seconds", "gauge", "When the agent was started.");
    metrics.Value(double(QDateTime::fromString(Text(status, "since"), Qt::ISODate).toSecsSinceEpoch()));
    metrics.Begin("morvane_seconds_since_tick", "gauge", "Since the folders thread began a tick.");
    metrics.Value(Count(status, "secondsSinceTick"));

    const QJsonArray workers = status[QLatin1String("workers")].toArray();
    int busy = 0;
    for (const auto& worker : workers)
        busy += Text(worker.toObject(), "file").isEmpty() ? 0 : 1;
    metrics.Begin("morvane_workers", "gauge", "Worker processes.");
    metrics.Value(busy, {{"state", QStringLiteral("working")}});
    metrics.Value(double(workers.size()) - busy, {{"state", QStringLiteral("idle")}});

    const QJsonArray folders = status[QLatin1String("folders")].toArray();
    QMap<string, TBacklog> backlogs;
    metrics.Begin("morvane_folder_state", "gauge", "1 for the state that the folder is in.");
    for (const auto& value : folders) {
        const QJsonObject folder = value.toObject();
        metrics.Value(1, {{"folder", Text(folder, "name")}, {"state", Text(folder, "state")}});
        backlogs.insert(Text(folder, "name"), BacklogOf(Text(folder, "name")));
    }
    metrics.Begin("morvane_held_files", "gauge", "Files that something keeps waiting, as a full disk.");
    for (const auto& folder : folders)
        metrics.Value(Count(folder.toObject(), "waiting"), {{"folder", Text(folder.toObject(), "name")}});
    metrics.Begin("morvane_waiting_files", "gauge", "Files that lie in the folder, held or not.");
    for (auto it = backlogs.begin(); it != backlogs.end(); ++it)
        metrics.Value(it->Files, {{"folder", it.key()}});
    metrics.Begin("morvane_oldest_waiting_seconds", "gauge", "Since the oldest of them came.");
    for (auto it = backlogs.begin(); it != backlogs.end(); ++it)
        metrics.Value(double(it->Oldest), {{"folder", it.key()}});

    const QJsonObject ledger = status[QLatin1String("ledger")].toObject();
    metrics.Begin("morvane_ledger_fault", "gauge", "Whether the agent can't write its ledger.");
    metrics.Value(Text(ledger, "fault").isEmpty() ? 0 : 1);
    metrics.Begin("morvane_ledger_waiting", "gauge", "Outcomes that wait for the ledger.");
    metrics.Value(Count(ledger, "waiting"));
    metrics.Begin("morvane_ledger_dropped_total", "counter", "Outcomes that are in no ledger.");
    metrics.Value(Count(ledger, "dropped"));
}

void AddTotals(TMetrics& metrics, const QList<THistoryTotal>& totals) {
    const struct {
        const char* Name;
        const char* Help;
        double (*Value)(const THistoryTotal& total);
    } columns[] = {
        {"morvane_files_total", "Outcomes of files since the ledger began.",
         [](const THistoryTotal& total) { return double(total.Files); }},
        {"morvane_pages_total", "Pages of their results.",
         [](const THistoryTotal& total) { return double(total.Pages); }},
        {"morvane_source_bytes_total", "Size of the sources.",
         [](const THistoryTotal& total) { return double(total.Bytes); }},
        {"morvane_file_seconds_total", "From their beginning to their outcome.",
         [](const THistoryTotal& total) { return double(total.Milliseconds) / 1000; }},
    };
    for (const auto& column : columns) {
        metrics.Begin(column.Name, "counter", column.Help);
        for (const THistoryTotal& total : totals)
            metrics.Value(
                column.Value(total),
                {{"agent", total.Agent}, {"folder", total.Folder}, {"state", StateName(total.State)}});
    }
}

void AddLedger(TMetrics& metrics) {
    QList<THistoryTotal> totals;
    QMap<string, qint64> failed;
    bool readable = true;
    try {
        TLedgerConnection ledger(ConfiguredLedger());
        THistory history(ledger);
        totals = history.Totals();
        failed = history.FailedCounts();
    } catch (const ELedger&) {
        readable = false;
    }
    metrics.Begin("morvane_ledger_up", "gauge", "Whether the ledger could be read for these numbers.");
    metrics.Value(readable ? 1 : 0);
    if (!readable)
        return;
    AddTotals(metrics, totals);
    metrics.Begin("morvane_failed_files", "gauge", "Files whose last outcome is a failure.");
    for (auto it = failed.begin(); it != failed.end(); ++it)
        metrics.Value(double(it.value()), {{"folder", it.key()}});
}

} // namespace

void AddMetricsOptions(QCommandLineParser& parser) {
    parser.addOption({"write", "Write them to this file, whole at every moment, and print nothing.", "file"});
}

TCommandResult Metrics(const TCommandCall& call) {
    TMetrics metrics;
    const TPipeReply reply = AskAgent(QLatin1String(ControlPipe::Status), call.TimeoutMs);
    AddAgent(metrics, reply.Failure ? QJsonObject() : QJsonDocument::fromJson(reply.Text.toUtf8()).object());
    AddLedger(metrics);
    const string path = call.Options.value(QStringLiteral("write"));
    if (path.isEmpty())
        return {ExitDone, QString::fromUtf8(metrics.Text().chopped(1))};
    TPartFile file(QDir(path).absolutePath());
    file.Write(metrics.Text().constData(), size_t(metrics.Text().size()));
    file.PublishReplacing();
    return {};
}
