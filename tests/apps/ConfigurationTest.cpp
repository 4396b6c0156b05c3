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
    EXPECT_TRUE(QDir(FWorkspace.Path(string(Folder) + "inbox")).exists());
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
                                 actions + "8: unknown element \"Angel\" in \"Action\"\n" +  //
                                 actions + "9: unknown class \"TPDFActionBake\"\n" +         //
                                 actions + "11: a second list named \"one\", which is never used\n" +
                                 folders + "2: unknown element \"Other\" in \"WatchedFolder\"\n" + //
                                 folders + "5: the folder \"/no/such\" does not exist\n" +         //
                                 folders + "6: there is no action list \"Two\"\n" +                //
                                 folders + "8: \"/tmp\" is never served, as its CheckEvery is 0\n");
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
