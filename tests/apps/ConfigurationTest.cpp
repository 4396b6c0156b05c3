#include "testing/Workspace.h"

namespace {

/// morvanectl with a home of its own.
class ConfigurationTest : public testing::Test {
protected:
    ConfigurationTest() {
        qputenv("HOME", FWorkspace.Path("home dir").toUtf8());
        qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
    }
    ~ConfigurationTest() override { qunsetenv("XDG_CONFIG_HOME"); }

    static TProgramResult Ctl(const QStringList& words) { return RunProgram(MORVANECTL, words); }
    static constexpr char Folder[] = "home dir/.config/morvane/watched-folders/";

    TWorkspace FWorkspace;
};

TEST_F(ConfigurationTest, InitMakesWhatTheAgentCanUseAndNeverReplaces) {
    const TProgramResult made = Ctl({"init"});
    EXPECT_EQ(made.Exit, 0) << made.Errors.toStdString();
    EXPECT_EQ(made.Out.count("made "), 3);
    for (const char* file : {"actions.xml", "watchedfolders.xml"})
        EXPECT_EQ(RunProgram("xmllint", {"--noout", FWorkspace.Path(string(Folder) + file)}).Exit, 0);
    EXPECT_TRUE(QDir(FWorkspace.Path("home dir/Morvane")).exists());
    EXPECT_TRUE(made.Out.contains("drop files into " + FWorkspace.Path("home dir/Morvane").toUtf8()));
    const TProgramResult lint = Ctl({"lint"});
    EXPECT_EQ(lint.Exit, 0);
    EXPECT_EQ(lint.Out, "No faults: 1 folders, 1 action lists.\n");

    FWorkspace.Write(string(Folder) + "actions.xml", "mine");
    FWorkspace.Write(string(Folder) + "watchedfolders.xml", "mine too");
    const TProgramResult again = Ctl({"init"});
    EXPECT_EQ(again.Exit, 0);
    EXPECT_EQ(again.Out.count("kept "), 3);
    EXPECT_EQ(FWorkspace.Read(string(Folder) + "actions.xml"), "mine");
    EXPECT_EQ(FWorkspace.Read(string(Folder) + "watchedfolders.xml"), "mine too");
}

TEST_F(ConfigurationTest, InitOfANamedFolderWritesItIntoTheSettings) {
    // What a quoted value of the settings and an element of XML must escape.
    const string folder = FWorkspace.Path("a, b\\n & \"c\" <d>");
    EXPECT_EQ(Ctl({"init", folder}).Exit, 0);
    const TProgramResult lint = Ctl({"lint"});
    EXPECT_EQ(lint.Exit, 0) << lint.Errors.toStdString();

    const TProgramResult other = Ctl({"init", FWorkspace.Path("other")});
    EXPECT_EQ(other.Exit, 0);
    EXPECT_TRUE(other.Out.contains("The settings name another folder"));
    EXPECT_TRUE(FWorkspace.Has("other/actions.xml"));
}

TEST_F(ConfigurationTest, InitTellsWhatItCannotMake) {
    FWorkspace.Write("file", "in the way");
    const TProgramResult result = Ctl({"init", FWorkspace.Path("file/below")});
    EXPECT_EQ(result.Exit, 1);
    EXPECT_TRUE(result.Errors.contains("/file\": File exists")) << result.Errors.toStdString();
}

TEST_F(ConfigurationTest, LintNamesWhatTheAgentCouldNotUseWithItsLine) {
    FWorkspace.Write(
        "c/actions.xml",
        "<ActionManager>\n<ManagerActions>\n<ActionList>\n<Name>One</Name>\n<Colour>red</Colour>\n"
        "<Actions>\n<Action Class=\"TPDFActionRotatePages\">\n<Angel>90</Angel></Action>\n"
        "<Action Class=\"TPDFActionBake\"/>\n</Actions></ActionList>\n"
        "<ActionList><Name>one</Name></ActionList>\n</ManagerActions></ActionManager>");
    FWorkspace.Write("c/watchedfolders.xml",
                     "<WatchedFolder>\n<Other/>\n<Folders>\n<Folder>\n<Name>/no/such</Name>\n"
                     "<Action>Two</Action></Folder>\n<Folder><Name>/tmp</Name><Enabled>1</Enabled>\n"
                     "<CheckEvery>0</CheckEvery><Action>ONE</Action></Folder></Folders></WatchedFolder>");
    const TProgramResult result = Ctl({"lint", FWorkspace.Path("c")});
    EXPECT_EQ(result.Exit, 4);
    EXPECT_EQ(result.Out, "");
    const QByteArray actions = "\"" + FWorkspace.Path("c/actions.xml").toUtf8() + "\", line ";
    const QByteArray folders = "\"" + FWorkspace.Path("c/watchedfolders.xml").toUtf8() + "\", line ";
    EXPECT_EQ(result.Errors, actions + "5: unknown element \"Colour\" in \"ActionList\"\n" + //
                                 actions +
                                 "8: unknown element \"Angel\" in \"Action\", did you mean \"Angle\"?\n" + //
                                 actions + "9: unknown class \"TPDFActionBake\"\n" +                       //
                                 actions + "11: a second list named \"one\", which is never used\n" +
                                 folders + "2: unknown element \"Other\" in \"WatchedFolder\"\n" + //
                                 folders + "5: the folder \"/no/such\" does not exist\n" +         //
                                 folders + "6: there is no action list \"Two\"\n" +                //
                                 folders + "8: \"/tmp\" is never served, as its CheckEvery is 0\n");
}

TEST_F(ConfigurationTest, LintNamesActionsThatFailOrDoNothing) {
    const struct {
        QByteArray Action; ///< in line 1, unless it begins new ones
        QByteArray Fault;  ///< begins with its line; empty for none
    } rows[] = {
        {"<Action Class='TPDFActionRotatePages'/>", ""},
        {"<Action Class='TPDFActionRotatePages'><pageRange>odd, "
         "2-last</pageRange><Angle>-450</Angle></Action>",
         ""},
        {"<Action Class='TPDFActionRotatePages'>\n<Angle>45</Angle></Action>",
         "2: Angle: 45 is no multiple of 90"},
        {"<Action Class='TPDFActionRotatePages'><Angle>360</Angle></Action>",
         "1: Angle: 360 degrees turn nothing"},
        {"<Action Class='TPDFActionRotatePages' Angle='90'/>",
         "1: \"Angle\" stands as an attribute of \"Action\" and is not looked at: it must be an element, "
         "<Angle>90</Angle>"},
        {"<Action Class='TPDFActionRotatePages'><Angle unit='deg'>90</Angle></Action>",
         "1: the attribute \"unit\" of \"Angle\" is not looked at"},
        {"<Action Class='TPDFActionRotatePages'><Angle>ninety</Angle>\n<pageRange>1..2</pageRange></Action>",
         "1: Angle: \"ninety\" is no whole number|2: Invalid page range \"1..2\"."},
        {"<Action Class='TPDFActionRotatPages'/>",
         "1: unknown class \"TPDFActionRotatPages\", did you mean \"TPDFActionRotatePages\"?"},
        {"<Action><Angle>90</Angle></Action>\n<Action Class='TPDFActionEncrypt'/>",
         "1: \"Action\" lacks the attribute Class|2: \"TPDFActionEncrypt\" always fails the file"},
        {"<Action Class='TPDFActionAddWatermark'/>", "1: \"TPDFActionAddWatermark\" always fails the file"},
        {"<Action Class='TPDFActionInsertPages'/>", "1: \"TPDFActionInsertPages\" always fails the file"},
        {"<Action Class='TPDFActionAddWebLinkAnnotation'/>",
         "1: \"TPDFActionAddWebLinkAnnotation\" does nothing"},
        {"<Action Class='TPDFActionAddWatermarkDefined'/>",
         "1: \"TPDFActionAddWatermarkDefined\" does nothing"},
        {"<Action Class='TPDFActionDocumentInitialView'/>",
         "1: \"TPDFActionDocumentInitialView\" does nothing"},
        {"<Action Class='TPDFActionAddText'><x>nan</x>\n<y>inf</y>\n<Text>a</Text></Action>",
         "1: x: \"nan\" is no number that can be used|2: y: \"inf\" is no number that can be used"},
        {"<Action Class='TPDFActionAddText'/>",
         "1: \"TPDFActionAddText\" does nothing without the text Text"},
        {"<Action Class='TPDFActionAddBatesNumbering'><bates><FooterLeft>a</FooterLeft>\n"
         "<FontStyle>4</FontStyle></bates></Action>",
         "2: bates/FontStyle: 4 is out of range"},
        {"<Action Class='TPDFActionAddImage'><Filename>/no/logo.png</Filename></Action>",
         "1: the file \"/no/logo.png\" does not exist"},
        {"<Action Class='TPDFActionAddFileAttachment'/>",
         "1: \"TPDFActionAddFileAttachment\" always fails the file without fileName"},
        {"<Action Class='TPDFActionImportPages'><fileName>/etc/passwd</fileName>\n"
         "<pagePosition>ppFrist</pagePosition></Action>",
         "2: pagePosition: \"ppFrist\" is no TZQPDFPagePosition (ppCurrent, ppFirst, ppLast)"},
        {"<Action Class='TPDFActionExtractPages'><fileName>part.pdf</fileName></Action>",
         "1: \"part.pdf\" is no whole path"},
        {"<Action Class='TPDFActionJavaScript'><Javascript>\n\nvar 3x;\n</Javascript></Action>",
         "3: the script fails: SyntaxError: "},
        {"<Action Class='TPDFActionJavaScript'><Javascript>Document.Save()</Javascript></Action>", ""},
    };
    FWorkspace.Write("c/watchedfolders.xml", "<WatchedFolder/>");
    const QByteArray place = "\"" + FWorkspace.Path("c/actions.xml").toUtf8() + "\", line ";
    for (const auto& row : rows) {
        FWorkspace.Write("c/actions.xml",
                         "<ActionManager><ManagerActions><ActionList><Name>A</Name><Actions>" + row.Action +
                             "</Actions></ActionList></ManagerActions></ActionManager>");
        const TProgramResult result = Ctl({"lint", FWorkspace.Path("c")});
        const QList<QByteArray> faults = row.Fault.isEmpty() ? QList<QByteArray>() : row.Fault.split('|');
        const QList<QByteArray> told = result.Errors.split('\n');
        EXPECT_EQ(result.Exit, faults.isEmpty() ? 0 : 4) << row.Action.toStdString();
        EXPECT_EQ(told.size() - 1, faults.size()) << result.Errors.toStdString();
        for (qsizetype i = 0; i < faults.size(); ++i)
            EXPECT_TRUE(told.value(i).startsWith(place + faults[i])) << row.Action.toStdString() << "\n"
                                                                     << result.Errors.toStdString();
    }
}

TEST_F(ConfigurationTest, LintNamesFoldersThatCannotBeServed) {
    for (const char* folder : {"in", "other", "more", "last"})
        QDir().mkpath(FWorkspace.Path(folder));
    FWorkspace.Write("blocked/output", "a file");
    const struct {
        QByteArray Name, More, Fault; ///< the fault without its place
    } rows[] = {
        {"DIR/in", "<CheckEvery>-1</CheckEvery>", ""},
        {"", "", "the folder has no Name"},
        {"in", "", "\"in\" is no whole path: where it leads depends on where the agent was started"},
        {"DIR/blocked", "", "\"DIR/blocked/output\" is no folder"},
        {"DIR/blocked/output", "", "\"DIR/blocked/output\" is no folder"},
        {"DIR/other/../in/", "",
         "the folder \"DIR/other/../in/\" stands in line 1 already: each of its files goes "
         "to whichever of the two comes first"},
        {"DIR/more", "<Policy><QuietSeconds>-5</QuietSeconds></Policy>",
         "QuietSeconds: -5 is no time to wait"},
        {"DIR/last", "<Policy><RepeatLine>OnChange</RepeatLine></Policy>",
         "unknown element \"RepeatLine\" in \"Policy\", did you mean \"RepeatLines\"?"},
        {"DIR/other", "<Action>Wrok</Action>", "there is no action list \"Wrok\", did you mean \"Work\"?"},
    };
    FWorkspace.Write(
        "c/actions.xml",
        "<ActionManager><ManagerActions><ActionList><Name>Work</Name></ActionList></ManagerActions>"
        "</ActionManager>");
    QByteArray folders;
    QByteArray expected;
    int line = 0;
    for (const auto& row : rows) {
        folders += "<Folder><Name>" + row.Name + "</Name><Enabled>true</Enabled>" +
                   (row.More.contains("CheckEvery") ? "" : "<CheckEvery>1</CheckEvery>") +
                   (row.More.contains("Action") ? "" : "<Action>Work</Action>") + row.More + "</Folder>\n";
        ++line;
        if (!row.Fault.isEmpty())
            expected +=
                "\"DIR/c/watchedfolders.xml\", line " + QByteArray::number(line) + ": " + row.Fault + '\n';
    }
    const QByteArray here = FWorkspace.Path().chopped(1).toUtf8();
    FWorkspace.Write("c/watchedfolders.xml", "<WatchedFolder><Folders>" + folders.replace("DIR", here) +
                                                 "</Folders></WatchedFolder>");
    EXPECT_EQ(Ctl({"lint", FWorkspace.Path("c")}).Errors, expected.replace("DIR", here));
}

TEST_F(ConfigurationTest, LintTellsOfFilesThatCannotBeRead) {
    EXPECT_EQ(Ctl({"lint"}).Exit, 4);
    FWorkspace.Write("c/actions.xml",
                     "<ActionManager><ManagerActions>\n<oops</ManagerActions></ActionManager>");
    FWorkspace.Write("c/watchedfolders.xml",
                     "<WatchedFolder><Folders><Folder>\n<Name>/tmp</Name><CheckEvery>soon</CheckEvery>"
                     "</Folder></Folders></WatchedFolder>");
    const TProgramResult broken = Ctl({"lint", FWorkspace.Path("c")});
    EXPECT_EQ(broken.Exit, 4);
    EXPECT_EQ(broken.Errors.count('\n'), 2) << broken.Errors.toStdString();
    EXPECT_TRUE(broken.Errors.contains("actions.xml\", line 2, column"));
    EXPECT_TRUE(broken.Errors.contains("watchedfolders.xml\", line 2: CheckEvery: "));
    QFile::remove(FWorkspace.Path("c/actions.xml"));
    EXPECT_TRUE(Ctl({"lint", FWorkspace.Path("c")}).Errors.contains("actions.xml\": No such file"));
}

} // namespace
