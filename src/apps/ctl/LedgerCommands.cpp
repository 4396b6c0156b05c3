#include "apps/ctl/LedgerCommands.h"

#include "agent/OutcomeRecord.h"
#include "base/Printable.h"
#include "base/Settings.h"
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"

#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

constexpr int MostRows = 1'000'000;

/// A moment as people give it: "2026-11-24", "2026-11-24 08:30", with a "T" or seconds; or so long ago, as
/// "90m", "12h", "7d".
qint64 MomentOf(const string& text) {
    static const QRegularExpression ago(QStringLiteral("^(\\d{1,6})([smhd])$"));
    if (const auto match = ago.match(text); match.hasMatch()) {
        const char16_t unit = match.capturedView(2).at(0).unicode();
        const qint64 seconds = unit == u's' ? 1 : unit == u'm' ? 60 : unit == u'h' ? 3600 : 86'400;
        return QDateTime::currentMSecsSinceEpoch() - match.captured(1).toLongLong() * seconds * 1000;
    }
    const QDateTime time = QDateTime::fromString(string(text).replace(u' ', u'T'), Qt::ISODate);
    if (!time.isValid())
        throw EUsage(
            QStringLiteral("\"%1\" is no time: 2026-11-24, \"2026-11-24 08:30\" or so long ago, as 90m, "
                           "12h, 7d.")
                .arg(text));
    return time.toMSecsSinceEpoch();
}

int NumberOf(const QCommandLineParser& parser, const string& option, int least, int most) {
    bool valid = false;
    const int number = parser.value(option).toInt(&valid);
    if (!valid || number < least || number > most)
        throw EUsage(QStringLiteral("--%1 needs a number from %2 to %3.").arg(option).arg(least).arg(most));
    return number;
}

void AddFilterOptions(QCommandLineParser& parser) {
    parser.addOptions(
        {{"folder", "Only of this watched folder.", "path"},
         {"name", "Only files of this name; * and ? stand for others.", "pattern"},
         {"since", "Only what ended then or later: 2026-11-24, or 12h for so long ago.", "time"},
         {"until", "Only what ended before then.", "time"},
         {"limit", "So many at most.", "count", "100"},
         {"before", "Only those behind the one with this id, for the next page.", "id"}});
}

string LocalTime(qint64 time) {
    return QDateTime::fromMSecsSinceEpoch(time).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

string NumbersText(const TNumberRun& run) {
    const string last = run.Count > 1 ? QStringLiteral(" to %1").arg(run.First + run.Count - 1) : string();
    const string page = run.Page > 0 ? QStringLiteral(" from page %1").arg(run.Page) : string();
    return QStringLiteral("%1 %2%3%4").arg(run.Series).arg(run.First).arg(last, page);
}

/// For people, some lines.
QStringList Lines(const THistoryRow& row) {
    const TFileRecord& record = row.Record;
    QStringList lines{QStringLiteral("%1  %2  %3")
                          .arg(LocalTime(record.Ended), StateName(record.State),
                               record.Folder + QString::fromUtf8(record.Name))};
    for (const TRecordReason& reason : record.Reasons)
        lines += QStringLiteral("    %1: %2%3")
                     .arg(reason.Code, reason.Step.isEmpty() ? string() : reason.Step + QStringLiteral(": "),
                          reason.Text);
    for (const TResultFile& result : record.Results)
        lines += QStringLiteral("    result %1, %2 pages, %3 bytes")
                     .arg(QString::fromUtf8(result.Name))
                     .arg(record.Pages)
                     .arg(result.Size);
    for (const TNumberRun& run : record.Numbers)
        lines += QStringLiteral("    numbers ") + NumbersText(run);
    return lines;
}

QJsonObject Json(const THistoryRow& row) {
    const TFileRecord& record = row.Record;
    QJsonArray results;
    for (const TResultFile& result : record.Results)
        results.append(QJsonObject{{"name", QString::fromUtf8(result.Name)}, {"size", result.Size}});
    QJsonArray reasons;
    for (const TRecordReason& reason : record.Reasons)
        reasons.append(QJsonObject{{"code", reason.Code}, {"step", reason.Step}, {"text", reason.Text}});
    QJsonArray numbers;
    for (const TNumberRun& run : record.Numbers)
        numbers.append(QJsonObject{
            {"series", run.Series}, {"first", run.First}, {"count", run.Count}, {"page", run.Page}});
    const auto time = [](qint64 ms) {
        return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
    };
    return {{"id", row.Key},
            {"folder", record.Folder},
            {"name", QString::fromUtf8(record.Name)},
            {"list", record.List},
            {"state", StateName(record.State)},
            {"reasons", reasons},
            {"results", results},
            {"numbers", numbers},
            {"pages", record.Pages},
            {"size", record.Size},
            {"began", time(record.Began)},
            {"ended", time(record.Ended)},
            {"agent", record.Agent},
            {"settled", QString::fromUtf8(record.Settled)}};
}

TCommandResult Tell(const QList<THistoryRow>& rows, const TCommandCall& call, const char* none) {
    QStringList lines;
    for (const THistoryRow& row : rows) {
        if (call.Json)
            lines += QString::fromUtf8(QJsonDocument(Json(row)).toJson(QJsonDocument::Compact));
        else
            for (const string& line : Lines(row))
                lines += Printable(line);
    }
    const int limit = call.Options.value(QStringLiteral("limit")).toInt();
    if (!call.Json && rows.isEmpty())
        lines += QLatin1String(none);
    else if (!call.Json && rows.size() == limit)
        lines += QStringLiteral("There may be more: --before %1").arg(rows.last().Key);
    return {ExitDone, lines.join(u'\n')};
}

} // namespace

TLedgerPlace ConfiguredLedger() {
    return ParseLedgerPlace(GetEditorSettings().Ledger);
}

void AddHistoryOptions(QCommandLineParser& parser) {
    AddFilterOptions(parser);
    parser.addOption(
        {"state", "Only these: Done, DoneWithWarnings, Failed, Waiting, Stopped; may be repeated.", "state"});
}

void AddFailedOptions(QCommandLineParser& parser) {
    AddFilterOptions(parser);
}

THistoryFilter FilterOf(const QCommandLineParser& parser) {
    THistoryFilter filter;
    const auto value = [&](const char* option) { return parser.value(QLatin1String(option)); };
    if (parser.isSet(QStringLiteral("folder")))
        filter.Folder = RecordedFolder(QDir(value("folder")).absolutePath());
    if (parser.isSet(QStringLiteral("name")))
        filter.Name = value("name");
    if (parser.isSet(QStringLiteral("since")))
        filter.From = MomentOf(value("since"));
    if (parser.isSet(QStringLiteral("until")))
        filter.Until = MomentOf(value("until"));
    if (parser.isSet(QStringLiteral("before"))) {
        bool valid = false;
        filter.Before = value("before").toLongLong(&valid);
        if (!valid || filter.Before < 1)
            throw EUsage(QStringLiteral("--before needs the id of a row."));
    }
    if (!value("limit").isEmpty())
        filter.Limit = NumberOf(parser, QStringLiteral("limit"), 1, MostRows);
    return filter;
}

TCommandResult History(const TCommandCall& call) {
    THistoryFilter filter = FilterOf(call.Options);
    for (const string& name : call.Options.values(QStringLiteral("state"))) {
        const auto state = StateNamed(name);
        if (!state)
            throw EUsage(QStringLiteral("\"%1\" is no state of a file.").arg(name));
        filter.States.append(*state);
    }
    TLedgerConnection ledger(ConfiguredLedger());
    return Tell(THistory(ledger).Find(filter), call, "No such file is recorded.");
}

TCommandResult FailedFiles(const TCommandCall& call) {
    TLedgerConnection ledger(ConfiguredLedger());
    return Tell(THistory(ledger).Failed(FilterOf(call.Options)), call, "No file has failed.");
}
