// Files at work in other processes: the log and the folders look as if one did it all, and what a file does
// to its worker it does to itself alone.
#include "FaultAction.h"
#include "agent/AgentLedger.h"
#include "agent/PlayedRun.h"
#include "base/Reflection.h"
#include "engine/document/Document.h"
#include "ledger/LedgerConnection.h"
#include "ledger/Series.h"
#include "platform/MessageBox.h"
#include "testing/Application.h"

namespace {

NarrowString Fault(const string& kind, const string& path = {}) {
    return Narrow("<Action Class=\"TPDFActionFault\"><Kind>" + kind + "</Kind><Path>" + path +
                  "</Path></Action>");
}

NarrowString Script(const string& text) {
    return Narrow("<Action Class=\"TPDFActionJavaScript\"><Javascript>" + text.toHtmlEscaped() +
                  "</Javascript></Action>");
}

} // namespace

class Workers : public TPlayedRun {
protected:
    Workers() {
        FSettings.Workers = {.Count = 3, .WorkSeconds = 60, .WorkMemory = 0, .Program = FAULTY_WORKER};
        FClock.SteadyRuns = true;
        Reflection::RegisterClass(TPDFActionFileFault::staticMetaObject);
    }
    [[nodiscard]] string In(const char* name) const { return FWorkspace.Path(name); }
};

TEST_F(Workers, LogAndFoldersAreThoseOfOneThread) {
    string logs[2];
    string trees[2];
    for (const bool workers : {false, true}) {
        if (!workers)
            FSettings.Workers.Count = 0;
        ConfigureOne();
        const NarrowString missing = Folder(In("missing"), "Rotate");
        WriteFolders(Folder(In("in"), "Rotate") + missing + Folder(In("in2"), "Rotate") + missing);
        QDir().mkpath(In("in2"));
        MakePdf(In("in2/other.pdf"), 1);
        for (int i = 0; i < 20; ++i)
            Drop(QStringLiteral("f%1.pdf").arg(i), 1 + i % 5);
        QFile::setPermissions(In("in/f2.pdf"), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
        FWorkspace.Write("in/f3 no.pdf", "no PDF");
        MakePdf(In("in/secret.pdf"), 1, {.UserPassword = "open", .OwnerPassword = "owner"});
        Play();
        EXPECT_EQ(QFile::permissions(In("in/output/f2.pdf")), QFile::permissions(In("in/process/f2.pdf")));
        EXPECT_FALSE(QFile::permissions(In("in/output/f2.pdf")).testFlag(QFile::ReadOther));
        logs[workers] = Log();
        trees[workers] = Tree();
        FThread.reset();
        for (const char* folder : {"in", "in2", "c/logs"})
            QDir(FWorkspace.Path(folder)).removeRecursively();
        FSettings.Workers.Count = 3;
        FClock.SetNow(QDateTime(QDate(2026, 11, 15), QTime(12, 0)));
    }
    EXPECT_EQ(logs[1], logs[0]);
    EXPECT_EQ(trees[1], trees[0]);
    EXPECT_EQ(logs[1].count("Saving"), 21);
    EXPECT_TRUE(logs[1].contains("Done at")) << "what isn't there has no say in it";
}

struct TFaultCase {
    const char* Name;
    const char* Kind;
    const char* Policy;
    const char* Reason;
};

void PrintTo(const TFaultCase& fault, std::ostream* out) {
    *out << fault.Name;
}

class WorkerFault : public Workers, public testing::WithParamInterface<TFaultCase> {};

TEST_P(WorkerFault, HarmsItsFileAlone) {
    for (const char* folder : {"bad", "in"})
        QDir().mkpath(In(folder));
    WriteFolders(Folder(In("bad"), "Bad", string("<Policy>") + GetParam().Policy + "</Policy>") +
                 Folder(In("in"), "Rotate"));
    WriteActions(List("Bad", Fault(GetParam().Kind)) + List("Rotate", RotateAction));
    MakePdf(In("bad/a.pdf"), 1);
    MakePdf(In("bad/b.pdf"), 1);
    for (int i = 0; i < 5; ++i)
        Drop(QStringLiteral("f%1.pdf").arg(i));
    Play(2);
    EXPECT_EQ(FWorkspace.Names("bad/Error"), QStringList({"a.pdf", "b.pdf"})) << Log().toStdString();
    EXPECT_TRUE(FWorkspace.Names("bad/output").isEmpty());
    EXPECT_EQ(FWorkspace.Names("in/output").size(), 5) << Log().toStdString();
    EXPECT_EQ(Log().count(string("Unhandled exception ") + GetParam().Reason), 2) << Log().toStdString();
    EXPECT_EQ(Log().count("Executing \"Bad\""), 2) << "one try each";
}

INSTANTIATE_TEST_SUITE_P(
    , WorkerFault,
    testing::Values(TFaultCase{"Crash", "crash", "", "The worker ended by signal 11"},
                    TFaultCase{"Exit", "exit", "", "The worker ended by exit code 7"},
                    TFaultCase{"Memory", "eat", "<WorkMemory>300</WorkMemory>", "The work takes more memory"},
                    TFaultCase{"Shared", "share", "<WorkMemory>300</WorkMemory>",
                               "The work takes more memory"},
                    TFaultCase{"Time", "hang", "<WorkSeconds>1</WorkSeconds>", "The work on"}),
    [](const auto& param) { return param.param.Name; });

TEST_F(Workers, OneThatMetItsLimitOfMemoryIsReplaced) {
    FSettings.Workers.Count = 1;
    QDir().mkpath(In("in"));
    WriteFolders(Folder(In("in"), "Bad", "<Policy><WorkMemory>300</WorkMemory></Policy>"));
    WriteActions(List("Bad", Fault("eat")));
    Drop("a.pdf");
    Play();
    EXPECT_EQ(Tree(), "Error/a.pdf");
    EXPECT_TRUE(FStatus.ToJson().contains("\"workers\":[]")) << FStatus.ToJson().constData();
}

/// A worker that awaits its numbers is handed the next file meanwhile.
TEST_F(Workers, AskForNumbersAndMixUpNothing) {
    NeedApplication();
    TEditorSettings settings;
    settings.Ledger = FWorkspace.Path("ledger.sqlite");
    TAgentLedger ledger(settings);
    FLedger = &ledger;
    FSettings.Workers.Count = 2;
    QDir().mkpath(In("in"));
    WriteFolders(Folder(In("in"), "Bates"));
    WriteActions(List("Bates", "<Action Class=\"TPDFActionAddBatesNumbering\"><bates><HeaderLeft>[number:N]"
                               "</HeaderLeft></bates></Action>"));
    constexpr int Files = 210;
    for (int i = 0; i < Files; ++i)
        Drop(QStringLiteral("f%1.pdf").arg(i), 1 + i % 3);
    Play();
    FThread.reset();
    EXPECT_EQ(FWorkspace.Names("in/output").size(), Files) << Log().toStdString();
    for (int i = 0; i < Files; ++i) {
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(In("in/output/f") + QString::number(i) + ".pdf", {});
        EXPECT_EQ(document.GetPageCount(), 1 + i % 3) << i;
    }
    TLedgerConnection connection(ParseLedgerPlace(settings.Ledger));
    EXPECT_EQ(TSeries(connection).List().value(0).Given, 2 * Files);
}

/// What a worker was handed ahead of time goes to the other one when its work turns out to be long.
TEST_F(Workers, NothingWaitsBehindLongWork) {
    FSettings.Workers.Count = 2;
    for (const char* folder : {"long", "in"})
        QDir().mkpath(In(folder));
    WriteFolders(Folder(In("long"), "Await") + Folder(In("in"), "Rotate"));
    WriteActions(List("Await", Fault("await", In("in/output/f%1.pdf"))) + List("Rotate", RotateAction));
    for (int i = 0; i < 8; ++i)
        MakePdf(In("long") + QStringLiteral("/a%1.pdf").arg(i), i == 4 ? 2 : 1);
    for (int i = 0; i < 20; ++i)
        Drop(QStringLiteral("f%1.pdf").arg(i));
    Play();
    EXPECT_EQ(FWorkspace.Names("long/output").size(), 8) << Log().toStdString();
    EXPECT_EQ(FWorkspace.Names("in/output").size(), 20);
    EXPECT_EQ(Log().count("Executing \"Rotate\""), 20) << "once each";
}

TEST_F(Workers, MayDoNothingButTheirWork) {
    FWorkspace.Write("private", "secret");
    const char* const kinds[] = {"write", "empty", "read", "mode", "socket", "program"};
    NarrowString lists;
    NarrowString folders;
    for (const string kind : kinds) {
        const string path = FWorkspace.Path(kind == "write" ? "elsewhere" : "private");
        MakePdf(FWorkspace.Write("in " + kind + "/a.pdf", {}), 1);
        lists += List(kind, Fault(kind, path));
        folders += Folder(FWorkspace.Path("in " + kind), kind);
    }
    WriteActions(lists);
    WriteFolders(folders);
    Play();
    // What is denied is what the status says is in force: a sanitizer's process has no sandbox, and an old
    // kernel half of one.
    const QByteArray status = FStatus.ToJson();
    const bool seccomp = status.contains("seccomp");
    const bool landlock = status.contains("landlock");
    EXPECT_TRUE(seccomp || status.contains("\"sandbox\":\"none\"")) << status.constData();
    EXPECT_EQ(Log().count("Saving"), (seccomp ? 4 : 0) + (landlock ? 2 : 0)) << Log().toStdString();
    EXPECT_EQ(FWorkspace.Has("elsewhere"), !landlock);
    EXPECT_EQ(FWorkspace.Read("private").isEmpty(), !seccomp);
}

TEST_F(Workers, AFileWhoseWorkerSomebodyKilledGetsOneMoreTry) {
    QDir().mkpath(In("in"));
    WriteFolders(Folder(In("in"), "Killed"));
    WriteActions(List("Killed", Fault("killed once", In("mark")).replace("Fault\"", "FileFault\"")));
    Drop("a.pdf");
    Drop("b.pdf");
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf output/b.pdf process/a.pdf process/b.pdf");
    EXPECT_EQ(Log().count("Executing"), 2) << Log().toStdString();
}

TEST_F(Workers, AStopEndsThemAndLeavesTheirSources) {
    QDir().mkpath(In("in"));
    WriteFolders(Folder(In("in"), "Hang"));
    WriteActions(List("Hang", Fault("hang")));
    Drop("a.pdf");
    FHint.OnHint = [this](const string& text) {
        if (text.startsWith("Executing"))
            FThread->Terminate();
    };
    Start();
    FClock.PlayOne();
    FThread->WaitFor();
    FThread.reset();
    EXPECT_EQ(Tree(), "/a.pdf");
    EXPECT_TRUE(FWorkspace.Names("in/process").isEmpty());
}

TEST_F(Workers, ALongFolderKeepsNoShortOneWaiting) {
    FSettings.Workers.Count = 1;
    for (const char* folder : {"long", "in"})
        QDir().mkpath(In(folder));
    WriteFolders(Folder(In("long"), "Rotate") + Folder(In("in"), "Rotate"));
    WriteActions(List("Rotate", RotateAction));
    for (int i = 0; i < 60; ++i)
        MakePdf(FWorkspace.Path(QStringLiteral("long/l%1.pdf").arg(i)), 1);
    for (int i = 0; i < 3; ++i)
        Drop(QStringLiteral("s%1.pdf").arg(i));
    Play();
    const QStringList hints = FHint.Hints().filter("Executing");
    EXPECT_EQ(hints.size(), 63);
    EXPECT_EQ(hints.mid(0, 6).filter("/in/output/").size(), 3) << hints.mid(0, 6).join(u'\n').toStdString();
    const QStringList lines = LogLines().filter("Saving");
    EXPECT_TRUE(lines.mid(60).join(u' ').count("/in/output/") == 3) << "the log keeps the folders' order";
}

TEST_F(Workers, ScriptsKeepWhatTheyKeepAndAskOnTheAgentsDesktop) {
    struct TAnswering : TMessageBoxHost {
        int Show(const string& text, const string& caption, int /*flags*/) override {
            Texts.append(text + u'/' + caption);
            return IDYES;
        }
        QStringList Texts;
    } desktop;
    SetMessageBoxHost(&desktop);
    QDir().mkpath(In("in"));
    WriteFolders(Folder(In("in"), "Count"));
    WriteActions(List("Count", Script("var n = (typeof n == 'undefined' ? 0 : n) + 1;"
                                      "var answer = MessageBox('file ' + n, 4);"
                                      "if (answer != 6) throw new Error('answer ' + answer);")));
    for (int i = 0; i < 4; ++i)
        Drop(QStringLiteral("f%1.pdf").arg(i));
    Play();
    SetMessageBoxHost(nullptr);
    EXPECT_EQ(FWorkspace.Names("in/output").size(), 4);
    ASSERT_EQ(desktop.Texts.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(desktop.Texts.at(i).contains(QStringLiteral("file %1").arg(i + 1)))
            << desktop.Texts.at(i).toStdString();
}
