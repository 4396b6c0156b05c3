// What morvanectl says of a ledger, and does with failed files.
#include "base/Settings.h"
#include "ledger/LedgerConnection.h"
#include "ledger/LedgerRun.h"
#include "ledger/Numbers.h"
#include "ledger/Records.h"
#include "testing/Application.h"
#include "testing/RuntimeFolder.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

TProgramResult Ctl(const QStringList& words) {
    return RunProgram(MORVANECTL, words);
}

/// Of the user's own ledger, which is in the test's home folder.
class LedgerCommands : public TRuntimeFolderTest {
protected:
    LedgerCommands() {
        NeedApplication();
        QDir(StateFolder()).removeRecursively();
        Record("a.pdf", TRecordState::Failed, "a.pdf", 1000);
        Record("b.pdf", TRecordState::Failed, "b (1).pdf", 2000);
        Record("done.pdf", TRecordState::Done, "done.pdf", 3000);
        FSpace.Write("in/Error/a.pdf", "a");
        FSpace.Write("in/Error/a.pdf.reason.txt", "why");
        FSpace.Write("in/Error/b (1).pdf", "b");
    }
    void Record(const QByteArray& name, TRecordState state, const QByteArray& settled, qint64 ended) {
        TFileRecord record;
        record.Folder = FSpace.Path("in/");
        record.Name = name;
        record.State = state;
        record.Settled = settled;
        record.Ended = ended;
        if (state == TRecordState::Failed)
            record.Reasons = {{"input.not-pdf", {}, "no PDF\x1b"}};
        TLedgerConnection ledger(ParseLedgerPlace({}));
        TRecords(ledger).Write(QStringLiteral("test"), ++FCount, {record});
    }
    [[nodiscard]] static QStringList Words(const QString& words) { return words.split(u' '); }

    TWorkspace FSpace;
    qint64 FCount = 0;
};

TEST_F(LedgerCommands, TellWhatIsAskedFor) {
    const struct {
        const char* Words;
        int Exit;
        const char* Names; ///< in their order; or a part of what is said
    } cases[] = {
        {"history", 0, "done.pdf b.pdf a.pdf"},
        {"history --limit 1", 0, "done.pdf"},
        {"history --before 3 --json", 0, "b.pdf a.pdf"},
        {"history --name A*", 0, "a.pdf"},
        {"history --state Done --state Waiting", 0, "done.pdf"},
        {"history --since 1970-01-01T00:00:02", 0, "done.pdf b.pdf"},
        {"history --until 1970-01-01T00:00:02", 0, "a.pdf"},
        {"history --since 1d", 0, ""},
        {"history --folder /elsewhere", 0, ""},
        {"failed", 0, "b.pdf a.pdf"},
        {"history --state Lost", 2, "no state"},
        {"history --since soon", 2, "no time"},
        {"history --limit 0", 2, "--limit"},
        {"history file", 2, "nothing more"},
        {"retry", 2, "needs files, or --all"},
        {"metrics --json", 2, "no JSON"},
    };
    for (const auto& c : cases) {
        const TProgramResult result = Ctl(Words(c.Words));
        EXPECT_EQ(result.Exit, c.Exit) << c.Words;
        if (c.Exit != 0) {
            EXPECT_THAT(result.Errors.toStdString(), HasSubstr(c.Names)) << c.Words;
            continue;
        }
        QStringList names;
        static const QRegularExpression name("in/(\\w+\\.pdf)|\"name\":\"([^\"]*)\"");
        for (auto found = name.globalMatch(QString::fromUtf8(result.Out)); found.hasNext();) {
            const auto match = found.next();
            names += match.captured(1) + match.captured(2);
        }
        EXPECT_EQ(names.join(u' '), QLatin1String(c.Names)) << c.Words;
        EXPECT_THAT(result.Out.toStdString(), Not(HasSubstr("\x1b"))) << c.Words;
    }
}

TEST_F(LedgerCommands, RetryMovesFilesBackAndReplacesNone) {
    FSpace.Write("in/b.pdf", "another");
    const TProgramResult all = Ctl({"retry", "--all"});
    EXPECT_EQ(all.Exit, 1);
    EXPECT_EQ(FSpace.Read("in/a.pdf"), "a");
    EXPECT_FALSE(FSpace.Has("in/Error/a.pdf.reason.txt"));
    EXPECT_EQ(FSpace.Read("in/b.pdf"), "another");
    EXPECT_EQ(FSpace.Read("in/Error/b (1).pdf"), "b");
    EXPECT_THAT(Ctl({"failed"}).Out.toStdString(), Not(HasSubstr("a.pdf")));
    QFile::remove(FSpace.Path("in/b.pdf"));
    EXPECT_EQ(Ctl({"retry", FSpace.Path("in/Error/b (1).pdf")}).Exit, 0);
    EXPECT_EQ(FSpace.Read("in/b.pdf"), "b") << "under the name that it had";
    for (const char* none : {"in/Error/none.pdf", "in/*.pdf", "in/A.pdf"}) // names, not patterns
        EXPECT_EQ(Ctl({"retry", FSpace.Path(none)}).Exit, 1) << none;
}

TEST_F(LedgerCommands, NumbersAreListedSetUpwardAndAudited) {
    {
        const TLedgerPlace place = ParseLedgerPlace({});
        TLedgerConnection ledger(place);
        TLedgerRun run(place, "me");
        TNumbers numbers(ledger, run);
        TLedgerWork work(run, {"/in/", "a \"b\", c.pdf", QByteArray(32, 'h')});
        numbers.Reserve(work, "EXH", 2);
        numbers.Finish(work, "r.pdf", {{"EXH", 1, 2, 4}});
    }
    EXPECT_EQ(Ctl({"numbers"}).Out, "EXH: next 3, 2 given, 0 void, 0 reserved\n");
    const QByteArrayList lines = Ctl({"numbers", "audit"}).Out.trimmed().split('\n');
    EXPECT_THAT(lines.value(1).toStdString(),
                testing::StartsWith("EXH,1,given,/in/,\"a \"\"b\"\", c.pdf\",r.pdf,4,"));
    EXPECT_EQ(Ctl({"numbers", "set", "EXH", "2"}).Exit, 1);
    EXPECT_EQ(Ctl({"numbers", "set", "EXH", "100"}).Exit, 0);
    EXPECT_THAT(Ctl({"numbers", "--json"}).Out.toStdString(), HasSubstr("\"next\":100"));
    for (const char* words : {"numbers set EXH", "numbers set EXH 0", "numbers set [x] 1", "numbers give"})
        EXPECT_EQ(Ctl(Words(words)).Exit, 2) << words;
}

TEST_F(LedgerCommands, MetricsStandInAFileAsAMonitorReadsThem) {
    const string path = FSpace.Path("out.prom");
    ASSERT_EQ(Ctl({"metrics", "--write", path}).Exit, 0);
    const std::string text = FSpace.Read("out.prom").toStdString();
    const std::string folder = FSpace.Path("in/").toStdString();
    EXPECT_THAT(text, HasSubstr("morvane_up 0\n"));
    EXPECT_THAT(text, HasSubstr("morvane_failed_files{folder=\"" + folder + "\"} 2\n"));
    EXPECT_THAT(text, HasSubstr("\",folder=\"" + folder + "\",state=\"Done\"} 1\n"));
    static const QRegularExpression line(
        "^(# (HELP|TYPE) morvane_\\w+ .+|morvane_\\w+(\\{(\\w+=\"([^\"\\\\]|\\\\.)*\",?)+\\})? [0-9.e+]+)$");
    for (const QString& each : QString::fromStdString(text).split(u'\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(line.match(each).hasMatch()) << each.toStdString();
}

} // namespace
