// The two configuration files: what is written, what is read back, what is refused.
#include "actions/ActionClasses.h"
#include "actions/ActionManager.h"
#include "actions/PageActions.h"
#include "actions/WatchedFolders.h"
#include "base/Exceptions.h"
#include "engine/document/Document.h"
#include "testing/Raised.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

class Persistence : public testing::Test {
protected:
    Persistence() {
        RegisterActionClasses();
        qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
        FWorkspace.Write("settings/morvane/settings.ini",
                         "ConfigurationFolder=" + FWorkspace.Path("configuration").toUtf8());
        QDir().mkpath(FWorkspace.Path("configuration"));
    }
    /// Members of the classes, as the run-time tables know them.
    static QStringList MemberNames(const QMetaObject& type) {
        QStringList names;
        for (const QMetaProperty& member : Reflection::Members(type))
            names.append(QString::fromLatin1(member.name()));
        return names;
    }
    TWorkspace FWorkspace;
};

TEST_F(Persistence, MembersOfAListStandInTheTable) {
    EXPECT_EQ(MemberNames(TPDFActionList::staticMetaObject).join(u' '),
              "Name Description ExecuteOnActiveDocument ExecuteOnAllDocuments OutputFolder Files "
              "OverwriteExistingFiles Actions");
}

TEST_F(Persistence, AListSurvivesSaveAndLoad) {
    TPDFActionManager manager;
    TPDFActionList& list = manager.AddAction("All <of> them", "two\nlines & \x01");
    list.FExecuteOnAllDocuments = true;
    list.FOutputFolder = "/out";
    list.FFiles = {{"a.pdf", false, false}, {"/folder", true, true}};
    list.FActions->Add(std::make_unique<TPDFActionInsertPages>())->Fwidth = 0.1F;
    manager.Save();
    const QByteArray first = FWorkspace.Read("configuration/actions.xml");
    EXPECT_EQ(RunProgram("xmllint", {"--noout", FWorkspace.Path("configuration/actions.xml")}).Exit, 0);

    TPDFActionManager loaded;
    loaded.Load({});
    ASSERT_EQ(loaded.Count(), 1);
    EXPECT_EQ(loaded[0].FDescription, "two\nlines & \x01");
    EXPECT_EQ(loaded[0].FFiles, list.FFiles);
    loaded.Save();
    EXPECT_EQ(FWorkspace.Read("configuration/actions.xml"), first);
}

TEST_F(Persistence, FileFormat) {
    FWorkspace.Write("configuration/watchedfolders.xml", R"(<?xml version="1.0" encoding="UTF-8"?>
<WatchedFolder>
  <Folders>
    <Folder>
      <Name>/srv/scans</Name>
      <Enabled>True</Enabled>
      <CheckEvery>9223372036854775807</CheckEvery>
      <Action>Stamp</Action>
      <Newer>ignored</Newer>
    </Folder>
  </Folders>
</WatchedFolder>
)");
    TPDFWatchedFolders folders;
    folders.Load({});
    const TPDFWatchedFolder expected{"/srv/scans", true, false, 9223372036854775807, "Stamp"};
    ASSERT_EQ(folders.FFolders, TPDFWatchedFolderList{expected});
    folders.Save();
    EXPECT_EQ(FWorkspace.Read("configuration/watchedfolders.xml"), R"(<?xml version="1.0" encoding="UTF-8"?>
<WatchedFolder>
  <Folders>
    <Folder>
      <Name>/srv/scans</Name>
      <Enabled>true</Enabled>
      <OverwriteExistingFiles>false</OverwriteExistingFiles>
      <CheckEvery>9223372036854775807</CheckEvery>
      <Action>Stamp</Action>
    </Folder>
  </Folders>
</WatchedFolder>
)");
}

TEST_F(Persistence, UnknownActionIsKeptAndRaises) {
    FWorkspace.Write("configuration/actions.xml", R"(<?xml version="1.0" encoding="UTF-8"?>
<ActionManager><ManagerActions><ActionList><Name>n</Name><Actions>
<Action Class="TPDFActionFromTomorrow"><Deep a="1"><Member>x &amp; y</Member></Deep></Action>
</Actions></ActionList></ManagerActions></ActionManager>)");
    TPDFActionManager manager;
    manager.Load({});
    TZQPDFDocument document(nullptr);
    EXPECT_EQ(RaisedBy([&] { manager[0].Execute(document); }),
              "Unknown action class \"TPDFActionFromTomorrow\".");
    manager.Save();
    const QByteArray saved = FWorkspace.Read("configuration/actions.xml");
    EXPECT_TRUE(saved.contains(
        R"(<Action Class="TPDFActionFromTomorrow"><Deep a="1"><Member>x &amp; y</Member></Deep></Action>)"))
        << saved.constData();
}

TEST_F(Persistence, MissingFileIsEmptyAndABadOneRaises) {
    TPDFActionManager manager;
    manager.AddAction("old", "");
    manager.Load({});
    EXPECT_EQ(manager.Count(), 0);
    manager.AddAction("old", "");
    const string bad = FWorkspace.Write("bad.xml", "<ActionManager>\n<Manager");
    const string raised = RaisedBy([&] { manager.Load(bad); });
    EXPECT_TRUE(raised.contains("bad.xml") && raised.contains(QRegularExpression("\\b2\\b")))
        << raised.toStdString();
    EXPECT_EQ(manager.Count(), 0) << "the list was emptied before the file was read";
}

TEST_F(Persistence, APlainPassPutsResultsBesideTheirSources) {
    GetActionManager().AddAction("Turn", "").FActions->Add(std::make_unique<TPDFActionRotatePages>());
    const string in = FWorkspace.Path("in");
    const struct {
        TPDFWatchedFolder Folder;
        Integer Index;
        QByteArray Source;
        string Result; ///< the name of a page that is looked at
        QByteArray Turned;
        string Raised;
    } cases[] = {
        {{in, true, false, 1, "Turn"}, 0, SamplePdf(1), "a (1).pdf", "90", ""},
        {{in, true, true, 1, "tURN"}, 0, SamplePdf(1), "a.pdf", "90", ""},
        {{in, true, false, 1, "none"}, 0, SamplePdf(1), "a (1).pdf", "0", ""},
        {{in, false, true, 1, "Turn"}, 0, SamplePdf(1), "a.pdf", "0", ""},
        {{in, true, true, 1, "Turn"}, 1, SamplePdf(1), "a.pdf", "0", "no watched folder with the index 1."},
        {{in, true, true, 1, "Turn"}, -1, SamplePdf(1), "a.pdf", "0", "no watched folder with the index -1."},
        {{in, true, true, 1, "Turn"}, 0, "text", "", "", "not a PDF file"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Folder.Action.toStdString() + c.Raised.toStdString());
        QDir(in).removeRecursively();
        FWorkspace.Write("in/a.pdf", c.Source);
        TPDFWatchedFolders folders;
        folders.FFolders = {c.Folder};
        const string raised = RaisedBy([&] { folders.Execute(c.Index); });
        EXPECT_TRUE(raised.contains(c.Raised) && raised.isEmpty() == c.Raised.isEmpty())
            << raised.toStdString();
        EXPECT_EQ(FWorkspace.Read("in/a.pdf") == c.Source, c.Result != "a.pdf" || c.Turned == "0");
        const QByteArray info = RunProgram("pdfinfo", {in + u'/' + c.Result}).Out.simplified();
        EXPECT_TRUE(c.Result.isEmpty() || info.contains("Page rot: " + c.Turned)) << info.toStdString();
    }
}

TEST_F(Persistence, AssignCopiesDeeply) {
    TPDFActionList source;
    source.FName = "source";
    source.FActions->Add(std::make_unique<TPDFActionRotatePages>())->FAngle = 180;
    TPDFActionList copy;
    copy.FActions->Add(std::make_unique<TPDFActionCropPages>());
    copy.Assign(source);
    ASSERT_EQ(copy.FActions->Count(), 1);
    auto* rotate = qobject_cast<TPDFActionRotatePages*>((*copy.FActions)[0]);
    ASSERT_NE(rotate, nullptr);
    EXPECT_EQ(rotate->FAngle, 180);
    rotate->FAngle = 270;
    EXPECT_EQ(static_cast<TPDFActionRotatePages*>((*source.FActions)[0])->FAngle, 180);

    TPDFWatchedFolders folders;
    folders.FFolders = {{"/a", true, true, -1, "x", {.QuietSeconds = 7}}};
    TPDFWatchedFolders other;
    other.Assign(folders);
    EXPECT_EQ(other.FFolders, folders.FFolders);
}
