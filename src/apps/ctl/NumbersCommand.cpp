#include "apps/ctl/LedgerCommands.h"

#include "base/GivenNumbers.h"
#include "base/Printable.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Series.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

string StateText(TNumberState state) {
    switch (state) {
    case TNumberState::Given:
        return QStringLiteral("given");
    case TNumberState::Void:
        return QStringLiteral("void");
    case TNumberState::Reserved:
        break;
    }
    return QStringLiteral("reserved");
}

string TimeText(qint64 time) {
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

/// As RFC 4180 has it.
QByteArray Field(QByteArray text) {
    if (!text.contains('"') && !text.contains(',') && !text.contains('\n') && !text.contains('\r'))
        return text;
    return '"' + text.replace('"', "\"\"") + '"';
}

QByteArray Csv(const TAuditRow& row) {
    return QByteArrayList{Field(row.Series.toUtf8()),
                          QByteArray::number(row.Number),
                          StateText(row.State).toUtf8(),
                          Field(row.Folder.toUtf8()),
                          Field(row.File),
                          Field(row.Result),
                          row.Page > 0 ? QByteArray::number(row.Page) : QByteArray(),
                          TimeText(row.Time).toUtf8(),
                          Field(row.Agent.toUtf8()),
                          row.Sha256.toHex()}
        .join(',');
}

QByteArray Json(const TAuditRow& row) {
    return QJsonDocument({{"series", row.Series},
                          {"number", row.Number},
                          {"state", StateText(row.State)},
                          {"folder", row.Folder},
                          {"file", QString::fromUtf8(row.File)},
                          {"result", QString::fromUtf8(row.Result)},
                          {"page", row.Page},
                          {"time", TimeText(row.Time)},
                          {"agent", row.Agent},
                          {"sha256", QString::fromLatin1(row.Sha256.toHex())}})
        .toJson(QJsonDocument::Compact);
}

/// Line by line, since there may be millions.
TCommandResult Audit(TSeries& series, const QStringList& names, bool json) {
    if (!json)
        std::puts("series,number,state,folder,file,result,page,time,agent,sha256");
    for (const string& name : names)
        series.Audit(name,
                     [&](const TAuditRow& row) { std::puts((json ? Json(row) : Csv(row)).constData()); });
    return {std::fflush(stdout) == 0 ? ExitDone : ExitFailed, {}};
}

TCommandResult List(TSeries& series, bool json) {
    QStringList lines;
    for (const TSeriesState& state : series.List())
        lines += json ? QString::fromUtf8(QJsonDocument({{"series", state.Name},
                                                         {"next", state.Next},
                                                         {"given", state.Given},
                                                         {"void", state.Void},
                                                         {"reserved", state.Reserved}})
                                              .toJson(QJsonDocument::Compact))
                      : QStringLiteral("%1: next %2, %3 given, %4 void, %5 reserved")
                            .arg(Printable(state.Name))
                            .arg(state.Next)
                            .arg(state.Given)
                            .arg(state.Void)
                            .arg(state.Reserved);
    if (lines.isEmpty() && !json)
        lines += QStringLiteral("There is no series of numbers.");
    return {ExitDone, lines.join(u'\n')};
}

TCommandResult SetNext(TSeries& series, const string& name, const string& next) {
    bool valid = false;
    const qint64 number = next.toLongLong(&valid);
    if (!valid || number < 1)
        throw EUsage(QStringLiteral("\"%1\" is no number.").arg(next));
    if (!IsSeriesName(name))
        throw EUsage(QStringLiteral("\"%1\" is no name of a series.").arg(name));
    series.SetNext(name, number);
    return {};
}

} // namespace

TCommandResult Numbers(const TCommandCall& call) {
    const string what = call.Words.value(0);
    const qsizetype words = call.Words.size();
    const bool known = what.isEmpty() || (what == u"audit" && words <= 2) || (what == u"set" && words == 3);
    if (!known)
        throw EUsage(
            QStringLiteral("It is \"numbers\", \"numbers audit [SERIES]\" or \"numbers set SERIES NEXT\"."));
    if (what == u"set" && call.Json)
        throw EUsage(QStringLiteral("\"numbers set\" has no JSON."));
    TLedgerConnection ledger(ConfiguredLedger());
    TSeries series(ledger);
    if (what.isEmpty())
        return List(series, call.Json);
    if (what == u"set")
        return SetNext(series, call.Words[1], call.Words[2]);
    QStringList names = call.Words.mid(1);
    if (names.isEmpty())
        for (const TSeriesState& state : series.List())
            names += state.Name;
    return Audit(series, names, call.Json);
}
