// One pass: where each file ends up and what the log says, to the letter.
#include "agent/PlayedRun.h"
#include "agent/WorkMarks.h"
#include "testing/DeadToken.h"
#include "testing/Failing.h"

#include <QRegularExpression>

#include <csignal>
#include <sys/stat.h>

class Pass : public TPlayedRun {};

TEST_F(Pass, RoadOfOneFile) {
    ConfigureOne();
    const string path = Drop("a.PDF", 2);
    Play();
    const string in = FWorkspace.Path("in");
    EXPECT_EQ(Tree(), "output/a.PDF process/a.PDF");
    EXPECT_EQ(RunProgram("qpdf", {"--check", in + "/output/a.PDF"}).Exit, 0);
    EXPECT_TRUE(RunProgram("pdfinfo", {in + "/output/a.PDF"}).Out.contains("Page rot:        90"));
    EXPECT_EQ(LogLines(), QStringList({
                              string(256, u'-'),
                              "Started at 15-Nov-2026 12:00:01, Folder=\"" + in + "\"",
                              string(256, u'-'),
                              "Executing \"Rotate\" on " + in + "/output/a.PDF, SUCCESS.",
                              "Saving \"" + in + "/output/a.PDF\", SUCCESS.",
                              "Done at 15-Nov-2026 12:00:01",
                          }));
    EXPECT_TRUE(FWorkspace.Read("c/logs/2026.11.15.txt").endsWith("12:00:01\r\n"));
    EXPECT_EQ(FHint.Hints(), QStringList({"Executing \"Rotate\" on \"" + in + "/output/a.PDF\".",
                                          "Morvane Folder Watcher"}));
}

TEST_F(Pass, EmptyFolderGetsItsSubfoldersAndNoLine) {
    ConfigureOne();
    Play(3);
    EXPECT_EQ(FWorkspace.Names("in"), QStringList({"Error", "output", "process"}));
    EXPECT_TRUE(LogLines().isEmpty());
    EXPECT_TRUE(FWorkspace.Has("c/logs/2026.11.15.txt"));
}

TEST_F(Pass, NothingIsReplacedUnlessTheFolderSaysSo) {
    ConfigureOne();
    for (int i = 0; i < 3; ++i) {
        Drop("a.pdf", i + 1);
        Play();
    }
    EXPECT_EQ(Tree(), "output/a (1).pdf output/a (2).pdf output/a.pdf "
                      "process/a (1).pdf process/a (2).pdf process/a.pdf");
    FThread.reset();

    QDir(FWorkspace.Path("in")).removeRecursively();
    ConfigureOne("<OverwriteExistingFiles>true</OverwriteExistingFiles>");
    for (int i = 0; i < 2; ++i) {
        Drop("a.pdf", i + 1);
        Play();
    }
    EXPECT_EQ(Tree(), "output/a.pdf process/a (1).pdf process/a.pdf");
    EXPECT_TRUE(
        RunProgram("qpdf", {"--show-npages", FWorkspace.Path("in/output/a.pdf")}).Out.startsWith("2"));
}

TEST_F(Pass, ProtectedFileStaysAndIsReportedAtEachTurn) {
    ConfigureOne();
    const string path = FWorkspace.Path("in/secret.pdf");
    MakePdf(path, 1, {.UserPassword = "open", .OwnerPassword = "owner"});
    Play(2);
    EXPECT_EQ(Tree(), "/secret.pdf");
    EXPECT_EQ(Log().count("\"" + path + "\" is password protected, FAILURE."), 2);
    EXPECT_EQ(Log().count("Done at"), 2);
}

TEST_F(Pass, FailedFilesGoToErrorAndTheirLineTellsWhy) {
    ConfigureOne();
    FWorkspace.Write("in/text.pdf", "no PDF");
    FWorkspace.Write("in/empty.pdf", "");
    Drop("z.pdf");
    Play();
    EXPECT_EQ(Tree(), "output/z.pdf process/z.pdf Error/empty.pdf Error/text.pdf");
    EXPECT_TRUE(Log().contains(
        QRegularExpression("Excution failed. Unhandled exception .*text.pdf.*not a PDF file.*\\.")))
        << Log().toStdString();
    EXPECT_EQ(FWorkspace.Read("in/Error/text.pdf"), "no PDF");
}

TEST_F(Pass, AnActionThatRaisesFailsTheFile) {
    QDir().mkpath(FWorkspace.Path("in"));
    WriteFolders(Folder(FWorkspace.Path("in"), "Insert"));
    WriteActions(List("Insert", RotateAction + "<Action Class=\"TPDFActionInsertPages\"/>"));
    Drop("a.pdf");
    Play();
    EXPECT_EQ(Tree(), "Error/a.pdf");
    EXPECT_TRUE(Log().contains("Excution failed. Unhandled exception TPDFAction.Execute invalid "
                               "propert/parameter name AWidth."));
}

TEST_F(Pass, UnknownListMovesTheSourceWithoutAResult) {
    QDir().mkpath(FWorkspace.Path("in"));
    WriteFolders(Folder(FWorkspace.Path("in"), "None"));
    Drop("a.pdf");
    Play();
    EXPECT_EQ(Tree(), "process/a.pdf");
    EXPECT_TRUE(Log().contains("Excution failed. Invalid action specified \"None\"."));
    EXPECT_FALSE(Log().contains("Executing"));
}

TEST_F(Pass, UnknownActionClassLeavesNothingOutInSilence) {
    QDir().mkpath(FWorkspace.Path("in"));
    WriteFolders(Folder(FWorkspace.Path("in"), "New"));
    WriteActions(List("New", "<Action Class=\"TPDFActionFromTomorrow\"/>"));
    Drop("a.pdf");
    Play();
    EXPECT_EQ(Tree(), "Error/a.pdf");
    EXPECT_TRUE(Log().contains("Unhandled exception Unknown action class \"TPDFActionFromTomorrow\"."));
}

TEST_F(Pass, BadFoldersAreToldAndTheOthersServed) {
    QDir().mkpath(FWorkspace.Path("in"));
    const string in = FWorkspace.Path("in");
    WriteFolders("<Folder><Name>/off</Name><Enabled>false</Enabled><CheckEvery>1</CheckEvery></Folder>" +
                 Folder("/no/such", "Rotate") +
                 "<Folder><Name>/never</Name><CheckEvery>0</CheckEvery></Folder>" + Folder(in, "Rotate"));
    WriteActions(List("ROTATE", RotateAction));
    Drop("a.pdf");
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf");
    const QStringList lines = LogLines();
    EXPECT_EQ(
        lines.mid(0, 6),
        QStringList({string(256, u'*'), "Folder \"/off\" is disabled.", string(256, u'*'), string(256, u'*'),
                     "Watched folder path \"/no/such\" is invalid.", string(256, u'*')}));
    EXPECT_FALSE(Log().contains("never"));
}

TEST_F(Pass, DoneLineFollowsTheListReadLast) {
    QDir().mkpath(FWorkspace.Path("in"));
    QDir().mkpath(FWorkspace.Path("empty"));
    WriteActions(List("Rotate", RotateAction));
    WriteFolders(Folder(FWorkspace.Path("in"), "Rotate") + Folder(FWorkspace.Path("empty"), "Rotate"));
    Drop("a.pdf");
    Play();
    EXPECT_TRUE(Log().contains("Started at"));
    EXPECT_FALSE(Log().contains("Done at"));
}

TEST_F(Pass, NamesThatMakeNoPatternBelongToTheirFile) {
    ConfigureOne();
    for (int i = 0; i < 3; ++i) {
        Drop("a(b.pdf", i + 1);
        Drop("z.pdf", i + 1);
        Play();
    }
    // The first is worked on, the second finds its output name taken and fails, and the third can't even be
    // named in Error: it stays, and what lies behind it is served all the same.
    EXPECT_EQ(Tree(), "/a(b.pdf output/a(b.pdf output/z (1).pdf output/z (2).pdf output/z.pdf "
                      "process/a(b.pdf process/z (1).pdf process/z (2).pdf process/z.pdf Error/a(b.pdf");
    EXPECT_TRUE(Log().contains("missing closing parenthesis"));
}

TEST_F(Pass, LogIsAsciiAndOneLineStaysOne) {
    ConfigureOne();
    Drop(QStringLiteral("Договор\n😀.pdf"));
    Play();
    EXPECT_TRUE(FWorkspace.Has(QStringLiteral("in/output/Договор\n😀.pdf")));
    EXPECT_TRUE(Log().contains("Saving \"" + FWorkspace.Path("in/output/") + "?????????.pdf\", SUCCESS."))
        << Log().toStdString();
}

TEST_F(Pass, FilesInSubfoldersAndOtherNamesAreLeftAlone) {
    ConfigureOne();
    QDir().mkpath(FWorkspace.Path("in/sub"));
    MakePdf(FWorkspace.Path("in/sub/a.pdf"), 1);
    FWorkspace.Write("in/a.pdf.txt", "x");
    FWorkspace.Write("in/.b.pdf", "x");
    Play();
    EXPECT_EQ(Tree(), "/.b.pdf /a.pdf.txt");
    EXPECT_TRUE(FWorkspace.Has("in/sub/a.pdf"));
}

TEST_F(Pass, LeftoversOfADeadRunAreSwept) {
    ConfigureOne();
    for (const char* folder : {"output", "process", "Error"})
        FWorkspace.Write(string("in/") + folder + "/.morvane-abc123.part", "half");
    const string claims = "in/process/.morvane-claim-1." + DeadToken();
    MakePdf(FWorkspace.Write(claims + "/a.pdf", {}), 1);
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf") << "what it had taken is served again";
}

TEST_F(Pass, AFolderThatCannotBeServedHoldsUpNoOther) {
    ConfigureOne();
    QDir().mkpath(FWorkspace.Path("broken/process"));
    WriteFolders(Folder(FWorkspace.Path("broken"), "Rotate") + Folder(FWorkspace.Path("in"), "Rotate"));
    MakePdf(FWorkspace.Path("broken/b.pdf"), 1);
    const auto serve = [this](const QByteArray& linked) {
        if (linked.isEmpty())
            FWorkspace.Write("broken/output", "a file where the subfolder should be");
        else
            QFile::link(linked, FWorkspace.Path("broken/output"));
        Drop("a.pdf");
        Play();
        EXPECT_TRUE(FWorkspace.Has("in/output/a.pdf") && FWorkspace.Has("broken/b.pdf"))
            << linked.toStdString();
        QDir(FWorkspace.Path("in")).removeRecursively();
        QDir().mkpath(FWorkspace.Path("in"));
        QFile::remove(FWorkspace.Path("broken/output"));
    };
    serve({});
    serve("."); // results would come in as sources
    serve("process");
    serve("/no/such/folder");
    Play();
    EXPECT_TRUE(FWorkspace.Has("broken/output/b.pdf"));
}

TEST_F(Pass, AResultThatSomebodyPutThereMeanwhileIsNeverReplaced) {
    ConfigureOne();
    Drop("a.pdf");
    FHint.OnHint = [this](const string& text) {
        if (text.startsWith("Executing"))
            FWorkspace.Write("in/output/a.pdf", "somebody's");
    };
    Play();
    EXPECT_EQ(Tree(), "output/a (1).pdf output/a.pdf process/a.pdf");
    EXPECT_EQ(FWorkspace.Read("in/output/a.pdf"), "somebody's");
    EXPECT_TRUE(Log().contains("Saving \"" + FWorkspace.Path("in/output/a (1).pdf") + "\", SUCCESS."));
}

TEST_F(Pass, WhatIsPutInTheOutputFoldersPlaceLeadsNowhere) {
    ConfigureOne("<OverwriteExistingFiles>true</OverwriteExistingFiles>");
    FWorkspace.Write("elsewhere/a.pdf", "private");
    Drop("a.pdf");
    FHint.OnHint = [this](const string& text) {
        if (!text.startsWith("Executing"))
            return;
        ::rename(FWorkspace.Path("in/output").toUtf8(), FWorkspace.Path("in/moved").toUtf8());
        QFile::link(FWorkspace.Path("elsewhere"), FWorkspace.Path("in/output"));
    };
    Play();
    EXPECT_EQ(FWorkspace.Read("elsewhere/a.pdf"), "private");
    EXPECT_TRUE(FWorkspace.Has("in/moved/a.pdf") && FWorkspace.Has("in/process/a.pdf"));
}

struct TTrouble {
    const char* Name;
    const char* Call;
    int Error;
};

void PrintTo(const TTrouble& trouble, std::ostream* out) {
    *out << trouble.Name;
}

class Trouble : public TPlayedRun, public testing::WithParamInterface<TTrouble> {};

/// Nothing of it is the file's fault: it waits, is told once, and goes its way when the trouble is over.
TEST_P(Trouble, OfTheSurroundingsMakesFilesWait) {
    ConfigureOne();
    for (const char* name : {"a.pdf", "b.pdf", "c.pdf", "d.pdf", "e.pdf"})
        Drop(name);
    {
        const TFailing failing(GetParam().Call, GetParam().Error);
        Play(100);
        EXPECT_GT(TFailing::Made(), 0);
        EXPECT_LT(TFailing::Made(), 120) << "the pauses don't grow";
    }
    EXPECT_FALSE(Tree().contains("Error/")) << Tree().toStdString();
    EXPECT_FALSE(Tree().contains("process/")) << Tree().toStdString();
    EXPECT_LE(Log().count("Excution failed."), 5) << Log().toStdString();
    EXPECT_LE(FWorkspace.Names("in/output").size(), 5) << "results grow";
    Play(70);
    EXPECT_EQ(Tree(), "output/a.pdf output/b.pdf output/c.pdf output/d.pdf output/e.pdf "
                      "process/a.pdf process/b.pdf process/c.pdf process/d.pdf process/e.pdf");
    EXPECT_LE(Log().count("Excution failed."), 5);
    EXPECT_EQ(Log().count("Saving"), 5);
}

INSTANTIATE_TEST_SUITE_P(
    , Trouble,
    testing::Values(TTrouble{"FullOutput", "write", ENOSPC}, TTrouble{"Quota", "fsync", EDQUOT},
                    TTrouble{"ReadOnly", "create part", EROFS},
                    TTrouble{"TooManyOpenFiles", "open source", EMFILE},
                    TTrouble{"FullProcess", "mkdir claims", ENOSPC}, TTrouble{"StaleClaim", "claim", ESTALE},
                    TTrouble{"Publishing", "publish", EIO}, TTrouble{"Settling", "settle", ENOSPC},
                    TTrouble{"SyncOfResults", "fsync folder", EIO}),
    [](const auto& param) { return param.param.Name; });

TEST_F(Pass, AFailedFileThatCannotLeaveIsToldOnce) {
    ConfigureOne();
    FWorkspace.Write("in/text.pdf", "no PDF");
    {
        const TFailing failing("settle", ENOSPC);
        Play(100);
        EXPECT_GT(TFailing::Made(), 2);
    }
    EXPECT_EQ(Log().count("Excution failed."), 2) << "what is wrong with it, and why it stays";
    Play(70);
    EXPECT_EQ(Tree(), "Error/text.pdf");
}

TEST_F(Pass, ASourceThatCannotBeTakenGivesNoResultAndIsNotTriedAgain) {
    ConfigureOne();
    Drop("a.pdf");
    {
        const TFailing failing("claim", EACCES);
        Play(100);
        EXPECT_EQ(TFailing::Made(), 1);
        ::chmod(FWorkspace.Path("in/a.pdf").toUtf8(), 0604);
        Play(100);
        EXPECT_EQ(TFailing::Made(), 2) << "the file changed";
    }
    EXPECT_EQ(Tree(), "/a.pdf");
    EXPECT_EQ(Log().count("Excution failed."), 2) << Log().toStdString();
}

TEST_F(Pass, RepeatedBlocksAreLeftOutWhereTheFolderWantsThat) {
    ConfigureOne("<Policy><RepeatLines>OnChange</RepeatLines></Policy>");
    MakePdf(FWorkspace.Path("in/secret.pdf"), 1, {.UserPassword = "open", .OwnerPassword = "owner"});
    Play(3);
    EXPECT_EQ(Log().count("is password protected"), 1);
    EXPECT_EQ(Log().count("Done at"), 1);
    Drop("a.pdf");
    Play(3);
    EXPECT_EQ(Log().count("Saving"), 1);
    EXPECT_EQ(Log().count("is password protected"), 3) << "with the file, and again without";
    EXPECT_EQ(Log().count("Started at"), 3);
}

struct TPolicyCase {
    const char* Name;
    const char* Script;
    NarrowString (*File)();
    const char* Reason; // of the failure
};

void PrintTo(const TPolicyCase& test, std::ostream* out) {
    *out << test.Name;
}

class Policy : public TPlayedRun, public testing::WithParamInterface<TPolicyCase> {};

/// The same file, whose loss the rules call a success, fails where its folder says so, and leaves no result.
TEST_P(Policy, FailsWhatItsFolderDoesNotAccept) {
    QDir().mkpath(FWorkspace.Path("in"));
    WriteActions(
        List("Work", Narrow(string("<Action Class=\"TPDFActionJavaScript\"><Javascript>%1</Javascript>"
                                   "</Action>")
                                .arg(string(GetParam().Script).toHtmlEscaped()))));
    for (const bool fails : {false, true}) {
        const string member = string(GetParam().Name);
        WriteFolders(Folder(FWorkspace.Path("in"), "Work",
                            fails ? "<Policy><" + member + ">Fail</" + member + "></Policy>" : string()));
        FWorkspace.Write("in/a.pdf", GetParam().File());
        if (FThread)
            FThread->FRefreshFolders = true;
        Play(2);
        EXPECT_EQ(FWorkspace.Has("in/Error/a.pdf"), fails) << Log().toStdString();
        EXPECT_EQ(FWorkspace.Names("in/output").size(), 1) << "none of the failed one";
        EXPECT_EQ(Log().contains(string("Unhandled exception ") + GetParam().Reason), fails)
            << Log().toStdString();
    }
    EXPECT_EQ(FStatus.Summary(), "1 folder, 1 file done, 1 failed.");
}

NarrowString RestrictedFile() {
    const TWorkspace workspace;
    MakePdf(workspace.Path("a.pdf"), 1, {.OwnerPassword = "owner", .Restrictions = {"--modify=none"}});
    return workspace.Read("a.pdf");
}

NarrowString GoodFile() {
    return SamplePdf(1);
}

NarrowString FileWithoutItsPages() {
    return SamplePdf(3).replace("/Count 3", "/Count 9");
}

INSTANTIATE_TEST_SUITE_P(
    , Policy,
    testing::Values(TPolicyCase{"OnScriptError", "throw new Error('no stamp')", GoodFile,
                                "PDFActions.Inline:1:"},
                    TPolicyCase{"OnRefused", "Document.RotatePages('1-', 90)", RestrictedFile,
                                "The document's permissions don't allow changing"},
                    TPolicyCase{"OnDamage", "Document.RotatePages('1-', 90)", FileWithoutItsPages, "6 pages"},
                    TPolicyCase{"OnSignature", "Document.RotatePages('1-', 90)", SignedPdf, ""}),
    [](const auto& param) { return param.param.Name; });

TEST_F(Pass, AFileOverWhichRunsDiedComesLastAndTheSecondCrashIsEnough) {
    ConfigureOne();
    Drop("a.pdf");
    Drop("b.pdf");
    FState = FWorkspace.Path("state");
    const auto dieOverA = [this](bool crash) {
        const pid_t child = ::fork();
        if (child == 0) {
            if (crash)
                MarkFatalSignals();
            TWorkMarks marks(FState);
            struct stat info {};
            ::stat(FWorkspace.Path("in/a.pdf").toUtf8(), &info);
            marks.Begin(FWorkspace.Path("in/a.pdf"), StateOf(info));
            ::raise(crash ? SIGFPE : SIGKILL);
        }
        ::waitpid(child, nullptr, 0);
    };
    dieOverA(false);
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf output/b.pdf process/a.pdf process/b.pdf");
    EXPECT_LT(Log().indexOf("output/b.pdf"), Log().indexOf("output/a.pdf"));
    FThread.reset();
    if (MarksFatalSignals) {
        Drop("a.pdf");
        dieOverA(true);
        dieOverA(true);
        Play();
        EXPECT_TRUE(FWorkspace.Has("in/Error/a.pdf"));
        EXPECT_TRUE(Log().contains("The program failed twice while it worked on"));
    }
}
