#include "apps/ctl/StatusCommands.h"

#include "agent/ControlPipe.h"
#include "apps/ctl/PipeCommands.h"
#include "base/Printable.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

namespace {

/// The folders thread looks at its folders once a second, but while it works or waits for somebody.
constexpr int LongestTick = 60;

/// The agent's answer, or what is to be said where there is none.
struct TAnswer {
    QByteArray Line;
    QJsonObject Status;
    std::optional<TCommandResult> Failure;
};

TAnswer Ask(const TCommandCall& call) {
    TAnswer answer;
    const TPipeReply reply = AskAgent(QLatin1String(ControlPipe::Status), call.TimeoutMs);
    answer.Failure = reply.Failure;
    answer.Line = Narrow(reply.Text);
    answer.Status = QJsonDocument::fromJson(answer.Line).object();
    if (!answer.Failure && answer.Status.isEmpty())
        answer.Failure = {ExitNoAnswer, QStringLiteral("The agent's answer makes no sense.")};
    return answer;
}

string Text(const QJsonObject& object, const char* member) {
    return object[QLatin1String(member)].toString();
}

string TimeText(const string& time) {
    return QDateTime::fromString(time, Qt::ISODate)
        .toLocalTime()
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

string ListText(const QJsonObject& lists, const char* list, const char* file) {
    const QJsonObject object = lists[QLatin1String(list)].toObject();
    const string loaded = Text(object, "loaded");
    string text = QLatin1String(file) + (loaded.isEmpty() ? QStringLiteral(": not read yet")
                                                          : QStringLiteral(": of ") + TimeText(loaded));
    if (const string fault = Text(object, "fault"); !fault.isEmpty())
        text += QStringLiteral("; the file has a fault: ") + fault;
    return text;
}

string FolderText(const QJsonObject& folder) {
    string state = Text(folder, "state");
    if (const string file = Text(folder, "file"); !file.isEmpty())
        state += QStringLiteral(" on ") + file;
    if (const string reason = Text(folder, "reason"); !reason.isEmpty())
        state += QStringLiteral(": ") + reason;
    if (const string other = Text(folder, "otherAgent"); !other.isEmpty())
        state += QStringLiteral("; served by %1, too").arg(other);
    const auto count = [&](const char* member) { return folder[QLatin1String(member)].toInteger(); };
    return QStringLiteral("%1\n    %2\n    %3 done, %4 done with warnings, %5 failed, %6 waiting")
        .arg(Text(folder, "name"), state)
        .arg(count("done"))
        .arg(count("warned"))
        .arg(count("failed"))
        .arg(count("waiting"));
}

string LedgerText(const QJsonObject& ledger) {
    const auto count = [&](const char* member) { return ledger[QLatin1String(member)].toInteger(); };
    string text = QStringLiteral("ledger: ") + Text(ledger, "place");
    if (const string fault = Text(ledger, "fault"); !fault.isEmpty())
        text = QStringLiteral("ledger: it can't be written: ") + fault;
    if (count("waiting") > 0)
        text += QStringLiteral("; %1 outcomes wait").arg(count("waiting"));
    if (count("dropped") > 0)
        text += QStringLiteral("; %1 are lost").arg(count("dropped"));
    return text;
}

/// For people, line by line.
QStringList Lines(const QJsonObject& status) {
    QStringList lines = {
        QStringLiteral("Agent %1, %2, started %3")
            .arg(Text(status, "version"), Text(status, "state"), TimeText(Text(status, "since")))};
    if (const string reason = Text(status, "reason"); !reason.isEmpty())
        lines += reason;
    const QJsonObject lists = status[QLatin1String("lists")].toObject();
    lines += ListText(lists, "folders", "watchedfolders.xml");
    lines += ListText(lists, "actions", "actions.xml");
    for (const auto& folder : status[QLatin1String("folders")].toArray())
        lines += FolderText(folder.toObject()).split(u'\n');
    if (const QJsonObject ledger = status[QLatin1String("ledger")].toObject(); !ledger.isEmpty())
        lines += LedgerText(ledger);
    return lines;
}

/// How many folders are in one of these states.
int CountIn(const QJsonArray& folders, std::initializer_list<const char*> states) {
    int count = 0;
    for (const auto& folder : folders)
        for (const char* state : states)
            count += Text(folder.toObject(), "state") == QLatin1String(state) ? 1 : 0;
    return count;
}

/// Why nothing is served; empty if something is.
string WhyIdle(const QJsonObject& status) {
    if (Text(status, "state") != u"serving") {
        const string reason = Text(status, "reason");
        return reason.isEmpty() ? QStringLiteral("it is ") + Text(status, "state") + u'.' : reason;
    }
    const QJsonArray folders = status[QLatin1String("folders")].toArray();
    const auto silent = status[QLatin1String("secondsSinceTick")].toInteger();
    if (silent > LongestTick && CountIn(folders, {"working"}) == 0)
        return QStringLiteral("it has not looked at its folders for %1 s.").arg(silent);
    if (CountIn(folders, {"watching", "working"}) > 0)
        return {};
    for (const auto& folder : folders)
        if (Text(folder.toObject(), "state") != u"paused")
            return QStringLiteral("\"%1\" is %2: %3")
                .arg(Text(folder.toObject(), "name"), Text(folder.toObject(), "state"),
                     Text(folder.toObject(), "reason"));
    return folders.isEmpty() ? QStringLiteral("no folder is configured.")
                             : QStringLiteral("every folder is disabled.");
}

/// What is wrong while other things go on.
QStringList Faults(const QJsonObject& status) {
    QStringList faults;
    for (const auto& list : status[QLatin1String("lists")].toObject())
        if (const string fault = Text(list.toObject(), "fault"); !fault.isEmpty())
            faults += QStringLiteral("The last good configuration is in force: ") + fault;
    for (const auto& folder : status[QLatin1String("folders")].toArray())
        if (const string state = Text(folder.toObject(), "state"); state == u"broken" || state == u"waiting")
            faults += QStringLiteral("\"%1\" is %2: %3")
                          .arg(Text(folder.toObject(), "name"), state, Text(folder.toObject(), "reason"));
    if (const string fault = Text(status[QLatin1String("ledger")].toObject(), "fault"); !fault.isEmpty())
        faults += QStringLiteral("What becomes of files isn't recorded: ") + fault;
    return faults;
}

/// Each line made fit for a terminal: names may hold anything.
string Joined(QStringList lines) {
    for (string& line : lines)
        line = Printable(line);
    return lines.join(u'\n');
}

} // namespace

TCommandResult Status(const TCommandCall& call) {
    const TAnswer answer = Ask(call);
    if (answer.Failure)
        return *answer.Failure;
    return {ExitDone, call.Json ? Widen(answer.Line) : Joined(Lines(answer.Status))};
}

TCommandResult Check(const TCommandCall& call) {
    const TAnswer answer = Ask(call);
    if (answer.Failure)
        return *answer.Failure;
    if (const string why = WhyIdle(answer.Status); !why.isEmpty())
        return {ExitNotServing, Joined({QStringLiteral("The agent runs and serves nothing: ") + why})};
    return {ExitDone, Joined(QStringList(QStringLiteral("The agent is running.")) + Faults(answer.Status))};
}
