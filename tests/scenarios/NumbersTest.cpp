// Numbers of series through kills, failures and a ledger that is away: each is on one page, and the audit
// says on which.
#include "scenarios/Conservation.h"
#include "scenarios/PlayedAgent.h"

#include "agent/AgentLedger.h"
#include "agent/FolderSweep.h"
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Series.h"
#include "testing/Application.h"

#include <QRegularExpression>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace {

std::atomic<int> CallsMade = 0;
int DieAt = 0;

int CountAndDie(const char* /*call*/) {
    if (++CallsMade == DieAt)
        ::kill(::getpid(), SIGKILL);
    return 0;
}

class TNumberedWorkspace : public TConfiguredWorkspace {
public:
    explicit TNumberedWorkspace(const string& folderSettings = {}) : TConfiguredWorkspace(folderSettings) {
        SetList("<HeaderLeft>A[number:A:4]</HeaderLeft><FooterLeft>A[number:A:4] [number:B b]</FooterLeft>");
    }
    void SetList(const QByteArray& texts, const QByteArray& further = {}) const {
        Write("c/actions.xml", "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>"
                               "<Action Class=\"TPDFActionAddBatesNumbering\"><bates>" +
                                   texts + "</bates></Action>" + further +
                                   "</Actions></ActionList></ManagerActions></ActionManager>");
    }
    void Play(int ticks = 1) const {
        NeedApplication();
        TEditorSettings settings;
        settings.Ledger = Path("ledger.sqlite");
        TAgentLedger ledger(settings);
        PlayTicks(*this, ticks, &ledger);
    }
    /// Each page's numbers of the series A, by "result page".
    [[nodiscard]] QMap<string, QSet<qint64>> Shown() const {
        static const QRegularExpression number("A(\\d{4,})");
        QMap<string, QSet<qint64>> shown;
        for (const string& name : QDir(Path("in/output")).entryList(QDir::Files)) {
            const QByteArrayList pages =
                RunProgram("pdftotext", {Path("in/output/" + name), "-"}).Out.chopped(1).split('\f');
            for (qsizetype page = 0; page < pages.size(); ++page)
                for (auto found = number.globalMatch(QString::fromUtf8(pages[page])); found.hasNext();)
                    shown[name + u' ' + QString::number(page + 1)].insert(
                        found.next().captured(1).toLongLong());
        }
        return shown;
    }
    [[nodiscard]] QMap<TNumberState, QMap<string, QSet<qint64>>> Audited() const {
        TLedgerConnection ledger(ParseLedgerPlace(Path("ledger.sqlite")));
        QMap<TNumberState, QMap<string, QSet<qint64>>> audited;
        TSeries(ledger).Audit("A", [&](const TAuditRow& row) {
            if (row.Number > Before)
                audited[row.State][QString::fromUtf8(row.Result) + u' ' + QString::number(row.Page)].insert(
                    row.Number);
        });
        return audited;
    }
    [[nodiscard]] QStringList Outcomes() const {
        TLedgerConnection ledger(ParseLedgerPlace(Path("ledger.sqlite")));
        QStringList outcomes;
        for (const THistoryRow& row : THistory(ledger).Find({}))
            outcomes.prepend(StateName(row.Record.State) + (row.Record.Reasons.isEmpty()
                                                                ? string()
                                                                : u' ' + row.Record.Reasons.first().Code));
        return outcomes;
    }
    qint64 Before = 0; ///< numbers up to this one are those of results that were replaced

    void ExpectTruth() const {
        const auto shown = Shown();
        QSet<qint64> seen;
        for (const QSet<qint64>& page : shown) {
            EXPECT_EQ(page.size(), 1) << "the same in both places";
            EXPECT_FALSE(seen.intersects(page)) << "a number twice";
            seen += page;
        }
        EXPECT_EQ(Audited().value(TNumberState::Given), shown);
    }
};

/// The kills fall between reservation, stamping, publishing, giving and settling, before and after each
/// commit.
TEST(GivenNumbers, AreOnOnePageWhereverTheAgentIsKilled) {
    for (const char* settings : {"", "<OverwriteExistingFiles>true</OverwriteExistingFiles>"}) {
        int at = 1;
        for (bool through = false; !through; ++at) {
            SCOPED_TRACE("before call " + std::to_string(at));
            TNumberedWorkspace workspace(settings);
            TDrops drops(workspace.Path("in"));
            const auto drop = [&] {
                drops.Drop("a.pdf", 2);
                drops.Drop("b.pdf", 1);
            };
            drop();
            if (settings[0] != 0) { // over results of the same size
                ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(); })));
                workspace.Before = 3;
                drop();
            }
            through = WaitForChild(InChild([&] {
                CallsMade = 0;
                DieAt = at;
                SetFaultHook(CountAndDie);
                workspace.Play();
            }));
            ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(2); })));
            NeedApplication();
            const TConservation found = drops.Look();
            EXPECT_EQ(found.Lost + found.SecondCopies + found.MoreCopies + found.BadResults + found.Left, 0);
            EXPECT_EQ(found.Results, 2);
            workspace.ExpectTruth();
            EXPECT_TRUE(workspace.Audited().value(TNumberState::Reserved).isEmpty());
            ASSERT_LT(at, 200);
            if (testing::Test::HasFailure())
                return;
        }
        EXPECT_GT(at, 30) << "calls are no longer seen by the seam";
    }
}

TEST(GivenNumbers, OfAResultThatWasTakenAwayAreNotShownAgain) {
    int taken = 0;
    int at = 1;
    for (bool through = false; !through; ++at) {
        SCOPED_TRACE("before call " + std::to_string(at));
        const TNumberedWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        drops.Drop("a.pdf", 2);
        through = WaitForChild(InChild([&] {
            CallsMade = 0;
            DieAt = at;
            SetFaultHook(CountAndDie);
            workspace.Play();
        }));
        const QMap<string, QSet<qint64>> before = workspace.Shown();
        QDir(workspace.Path("in/output")).removeRecursively();
        ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(2); })));
        const QMap<string, QSet<qint64>> after = workspace.Shown();
        taken += before.isEmpty() || after.isEmpty() ? 0 : 1;
        for (auto page = before.begin(); page != before.end(); ++page)
            EXPECT_FALSE(after.value(page.key()).intersects(*page));
        ASSERT_LT(at, 200);
    }
    EXPECT_GT(taken, 0);
}

/// A source that a dead agent had taken comes back under another name where its own is taken by then, perhaps
/// by a copy that differs in nothing.
TEST(GivenNumbers, AreOnOnePageWhereTheNameIsTakenMeanwhile) {
    for (const bool equal : {false, true}) {
        int at = 1;
        for (bool through = false; !through; ++at) {
            SCOPED_TRACE((equal ? "equal, before call " : "other, before call ") + std::to_string(at));
            const TNumberedWorkspace workspace;
            TDrops drops(workspace.Path("in"));
            drops.Drop("a.pdf", 2);
            const string path = workspace.Path("in/a.pdf");
            ASSERT_EQ(RunProgram("cp", {"-p", path, workspace.Path("copy")}).Exit, 0);
            through = WaitForChild(InChild([&] {
                CallsMade = 0;
                DieAt = at;
                SetFaultHook(CountAndDie);
                workspace.Play();
            }));
            if (!QFile::exists(path)) {
                if (equal)
                    ASSERT_EQ(RunProgram("cp", {"-p", workspace.Path("copy"), path}).Exit, 0);
                else
                    drops.Drop("a.pdf", 1);
            }
            ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(2); })));
            workspace.ExpectTruth();
            EXPECT_TRUE(workspace.Audited().value(TNumberState::Reserved).isEmpty());
            EXPECT_EQ(drops.Look().Left, 0);
            ASSERT_LT(at, 200);
        }
    }
}

TEST(GivenNumbers, AFileThatItsOwnerTookAwayIsDoneOnlyIfItsResultIsThere) {
    int done = 0;
    int at = 1;
    for (bool through = false; !through; ++at) {
        SCOPED_TRACE("before call " + std::to_string(at));
        const TNumberedWorkspace workspace;
        TDrops drops(workspace.Path("in"));
        drops.Drop("a.pdf", 2);
        through = WaitForChild(InChild([&] {
            CallsMade = 0;
            DieAt = at;
            SetFaultHook(CountAndDie);
            workspace.Play();
        }));
        SweepFolder(workspace.Path("in"));
        QFile::remove(workspace.Path("in/a.pdf"));
        ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(2); })));
        workspace.ExpectTruth();
        EXPECT_EQ(workspace.Outcomes().filter("Done").size(), drops.Look().Results);
        done += int(drops.Look().Results);
        ASSERT_LT(at, 200);
    }
    EXPECT_GT(done, 1);
    EXPECT_LT(done, at - 2);
}

TEST(GivenNumbers, WaitForALedgerThatIsAwayAndAreVoidWhereTheFileFails) {
    const TNumberedWorkspace workspace;
    workspace.SetList({}, "<Action Class=\"TPDFActionJavaScript\"><Javascript>"
                          "try { TakeNumbers('A', 2); } catch (e) { }</Javascript></Action>");
    TDrops drops(workspace.Path("in"));
    drops.Drop("a.pdf", 2);
    ASSERT_TRUE(WaitForChild(InChild([&] {
        SetFaultHook([](const char* call) { return std::strcmp(call, "ledger commit") == 0 ? ENOSPC : 0; });
        workspace.Play(100);
    })));
    EXPECT_EQ(drops.Look().Left, 1);
    EXPECT_EQ(drops.Look().Results, 0);
    EXPECT_TRUE(workspace.Read("c/logs/2026.11.15.txt").contains("Excution failed."));
    workspace.SetList("<HeaderLeft>A[number:A:4]</HeaderLeft>");
    ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(); })));
    NeedApplication();
    workspace.ExpectTruth();
    EXPECT_EQ(workspace.Outcomes(), QStringList("Done"));

    workspace.SetList("<HeaderLeft>A[number:A:4]</HeaderLeft>", "<Action Class=\"TPDFActionInsertPages\"/>");
    drops.Drop("bad.pdf", 3);
    ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(); })));
    EXPECT_EQ(workspace.Outcomes().last(), "Failed action.raised");
    EXPECT_EQ(workspace.Audited().value(TNumberState::Void).first().size(), 3);
    workspace.SetList("<HeaderLeft>A[number:A:4]</HeaderLeft>");
    ASSERT_TRUE(QFile::rename(workspace.Path("in/Error/bad.pdf"), workspace.Path("in/bad.pdf")));
    ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(); })));
    workspace.ExpectTruth();
    EXPECT_EQ(workspace.Shown().value("bad.pdf 1"), QSet<qint64>{6}) << "what was void stays so";
}

TEST(GivenNumbers, FollowTheirPagesAndBelongToScriptsToo) {
    const TNumberedWorkspace workspace;
    workspace.SetList(
        "<HeaderLeft>A[number:A:4]</HeaderLeft>",
        "<Action Class=\"TPDFActionDeletePagesEx\"/><Action Class=\"TPDFActionJavaScript\"><Javascript>"
        "if (TakeNumbers('A', 5) != 3) throw 'other';"
        "try { TakeNumbers('', 1); throw 'taken'; } catch (e) { if (e == 'taken') throw e; }"
        "</Javascript></Action>");
    TDrops drops(workspace.Path("in"));
    drops.Drop("a.pdf", 2);
    ASSERT_TRUE(WaitForChild(InChild([&] { workspace.Play(); })));
    NeedApplication();
    EXPECT_EQ(workspace.Outcomes(), QStringList("Done"));
    const auto given = workspace.Audited().value(TNumberState::Given);
    EXPECT_EQ(given.value("a.pdf 1"), QSet<qint64>{2}) << "the page that is the first in the result";
    EXPECT_EQ(given.value("a.pdf 0"), QSet<qint64>({1, 3, 4, 5, 6, 7})) << "of no page";
    EXPECT_EQ(workspace.Shown().value("a.pdf 1"), QSet<qint64>{2});
}

} // namespace
