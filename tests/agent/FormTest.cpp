#include "agent/AgentPicture.h"
#include "agent/ControlPipe.h"
#include "agent/FoldersAgentForm.h"
#include "agent/FoldersThread.h"
#include "base/Exceptions.h"
#include "platform/AppInstances.h"
#include "platform/MessageBox.h"
#include "platform/NamedPipe.h"
#include "testing/Delivery.h"
#include "testing/PlayedHost.h"
#include "testing/RuntimeFolder.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

#include <future>

namespace {

/// A desktop that notes what it is asked to show.
class TNotedDesktop : public TTrayIconHost, public TMessageBoxHost {
public:
    TNotedDesktop() {
        SetTrayIconHost(this);
        SetMessageBoxHost(this);
    }
    ~TNotedDesktop() override {
        SetMessageBoxHost(nullptr);
        SetTrayIconHost(nullptr);
    }
    std::unique_ptr<TTrayIconView> Show(const TTrayIconLook& look) override {
        struct TView : TTrayIconView {
            explicit TView(TNotedDesktop& desktop) : Desktop(desktop) { Desktop.Events += "icon"; }
            ~TView() override { Desktop.Events += "no icon"; }
            void SetHint(const string& text) override { Desktop.Events += text; }
            void UpdateMenu(const TPopupMenu& /*menu*/) override {}
            void SetAttention(bool attention) override { Desktop.Attention = attention; }
            void Notify(const string& text) override { Desktop.Events += "notice " + text; }
            TNotedDesktop& Desktop;
        };
        Look = std::make_unique<TTrayIconLook>(look);
        const TfrmFoldersAgent* form = frmFoldersAgent;
        ThreadsBeforeIcon = form->FoldersThread() || form->PipeThread();
        return std::make_unique<TView>(*this);
    }
    int Show(const string& text, const string& caption, int flags) override {
        Events += QStringLiteral("box %1|%2|%3").arg(text, caption).arg(flags);
        if (HoldBoxes) {
            BoxIsOpen.set_value();
            Closed.get_future().wait();
        }
        return AnswerAsIfClosed(flags);
    }
    void CloseAll() override {
        if (HoldBoxes)
            Closed.set_value();
    }

    QStringList Events;
    bool Attention = false;
    std::unique_ptr<TTrayIconLook> Look;
    bool ThreadsBeforeIcon = false;
    bool HoldBoxes = false;
    std::promise<void> BoxIsOpen;
    std::promise<void> Closed;
};

class FormTest : public TRuntimeFolderTest {
protected:
    FormTest() {
        qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
        SetFolder(FWorkspace.Path("c"));
        QDir().mkpath(FWorkspace.Path("c"));
    }
    ~FormTest() override { qunsetenv("XDG_CONFIG_HOME"); }

    void SetFolder(const string& folder) const {
        FWorkspace.Write("settings/morvane/settings.ini", "ConfigurationFolder=" + folder.toUtf8());
    }
    static string Ask(const string& command) {
        TNamedPipeClient pipe{QLatin1String(ControlPipe::Name)};
        pipe.OpenPipe();
        pipe.WritePipe(command);
        return pipe.Read(60'000);
    }
    static bool Send(const char* command) {
        try {
            TNamedPipeClient pipe{QLatin1String(ControlPipe::Name)};
            pipe.OpenPipe();
            pipe.WritePipe(QLatin1String(command));
            pipe.WritePipe(QLatin1String(ControlPipe::Check));
            return pipe.Read(60'000) == QLatin1String(ControlPipe::CheckReply);
        } catch (const EPipeError&) {
            return false;
        }
    }

    TWorkspace FWorkspace;
    TNotedDesktop FDesktop;
    TPlayedClock FClock;
    TPlainFiles FFiles;
};

TEST_F(FormTest, ShowsItsIconBeforeAnythingElseAndStaysHiddenItself) {
    {
        const TfrmFoldersAgent form({FClock, FFiles});
        EXPECT_EQ(FDesktop.Events, QStringList("icon"));
        EXPECT_FALSE(FDesktop.ThreadsBeforeIcon);
        EXPECT_TRUE(form.FoldersThread() && form.PipeThread());
        EXPECT_FALSE(form.Terminated());
        EXPECT_EQ(form.FCaption, "Watched Folders Agent");
        EXPECT_EQ(form.FClientWidth * 1000 + form.FClientHeight, 405'240);
        EXPECT_EQ(frmFoldersAgent, &form);
        EXPECT_EQ(FindWindows("TfrmFoldersAgent"), std::vector<TWindowHandle>{form.Handle()});
    }
    EXPECT_EQ(FDesktop.Events, QStringList({"icon", "no icon"}));
    EXPECT_EQ(frmFoldersAgent, nullptr);
}

TEST_F(FormTest, TheIconHasItsFramesAndTheMenuEndsTheApplication) {
    TfrmFoldersAgent form({FClock, FFiles});
    const TTrayIconLook& look = *FDesktop.Look;
    EXPECT_EQ(look.Hint, "");
    EXPECT_FALSE(look.Animate);
    EXPECT_EQ(look.AnimateInterval, 500);
    ASSERT_EQ(look.Icons->Count(), 6);
    EXPECT_EQ(look.Icons->Width() * 100 + look.Icons->Height(), 1616);
    std::set<std::vector<ARGB>> different;
    for (int frame = 0; frame < 6; ++frame)
        different.insert((*look.Icons)[frame].Pixels);
    EXPECT_EQ(different.size(), 6u);
    QStringList captions;
    for (const TMenuItem& item : look.PopupMenu->Items)
        captions.append(item.Caption);
    EXPECT_EQ(captions, QStringList({"Open log", "Failed (0)", "Pause", "Exit"}));
    EXPECT_FALSE(look.PopupMenu->Items[1].Enabled);
    look.PopupMenu->Items[3].OnClick();
    EXPECT_TRUE(form.Terminated());
}

TEST_F(FormTest, ThePictureIsOpaqueInsideAndClearAtItsCorners) {
    for (const int size : {16, 22, 64}) {
        const TPicture picture = AgentPicture(size);
        ASSERT_EQ(int(picture.Pixels.size()), size * size);
        EXPECT_EQ(picture.Pixels[0] >> 24, 0u) << size;
        EXPECT_EQ(picture.Pixels[size_t(size * (size * 3 / 4) + size / 2)], 0xFFF6A623u) << size;
        const size_t badge = size_t(size * (size * 7 / 10) + size / 2);
        EXPECT_EQ(AttentionPicture(size).Pixels[badge], 0xFFC62828u) << size;
    }
}

TEST_F(FormTest, WithoutAConfigurationFolderItSaysSoAndEnds) {
    const string longer = FWorkspace.Path(string(250, u'x'));
    qputenv("MORVANE_TEST_FOLDER", FWorkspace.Path("none").toUtf8());
    qputenv("MORVANE_TEST_EMPTY", "");
    for (const string& folder :
         {string("%MORVANE_TEST_EMPTY%"), FWorkspace.Path("none"), FWorkspace.Write("file", "not a folder"),
          longer, string("%MORVANE_TEST_FOLDER%/c"), string("%NOT_SET_ANYWHERE%")}) {
        FDesktop.Events.clear();
        SetFolder(folder);
        const TfrmFoldersAgent form({FClock, FFiles});
        EXPECT_EQ(
            FDesktop.Events,
            QStringList({"icon", "box Configuration Path is missing or invalid. |Morvane Folder Watcher|16"}))
            << folder.toStdString();
        EXPECT_TRUE(form.Terminated());
        EXPECT_EQ(form.ExitCode(), EXIT_FAILURE) << "a service starts again";
        EXPECT_FALSE(form.FoldersThread() || form.PipeThread());
    }
}

TEST_F(FormTest, TheFolderMayHoldReferencesAndADelimiterAtItsEnd) {
    qputenv("MORVANE_TEST_FOLDER", FWorkspace.Path().toUtf8());
    for (const string& folder :
         {FWorkspace.Path("c/"), string("%MORVANE_TEST_FOLDER%c"), string("%MORVANE_TEST_FOLDER%/c//")}) {
        SetFolder(folder);
        const TfrmFoldersAgent form({FClock, FFiles});
        EXPECT_TRUE(form.FoldersThread()) << folder.toStdString();
    }
}

TEST_F(FormTest, ATroubleIsShownAsLongAsItLastsAndNotifiedOnce) {
    FWorkspace.Write("c/actions.xml", "<Act");
    TfrmFoldersAgent form({FClock, FFiles});
    ASSERT_TRUE(DeliverUntil([&] { return FDesktop.Attention; }));
    const auto notices = [&] { return FDesktop.Events.filter("notice "); };
    EXPECT_TRUE(DeliverUntil([&] { return notices().size() == 1; }));
    EXPECT_TRUE(notices()[0].contains("actions.xml\", line 1"));
    FWorkspace.Write("c/actions.xml", "<ActionManager>\n<Act");
    FClock.Play(3);
    EXPECT_TRUE(DeliverUntil([&] { return FDesktop.Events.last().contains("line 2"); }))
        << "the hint follows";
    FWorkspace.Write("c/actions.xml", "<ActionManager/>");
    FClock.Play(2);
    EXPECT_TRUE(DeliverUntil([&] { return !FDesktop.Attention; }));
    EXPECT_EQ(notices().size(), 1);
    EXPECT_EQ(FDesktop.Events.last(), "Morvane Folder Watcher");
}

TEST_F(FormTest, APauseOutlastsTheAgentAndFailuresAreOneNotice) {
    QDir().mkpath(FWorkspace.Path("in"));
    const string in = FWorkspace.Path("in");
    FWorkspace.Write("c/actions.xml", "<ActionManager/>");
    FWorkspace.Write("c/watchedfolders.xml", "<WatchedFolder><Folders><Folder><Name>" + in.toUtf8() +
                                                 "</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery>"
                                                 "</Folder></Folders></WatchedFolder>");
    const auto hearing = [] { return Send(ControlPipe::Check); };
    const auto waiting = [&] { return FWorkspace.Names("in").filter(".pdf").size(); };
    {
        const TfrmFoldersAgent form({FClock, FFiles});
        FClock.Play(1);
        ASSERT_TRUE(DeliverUntil(hearing));
        EXPECT_EQ(Ask("pause /no/such"), "No folder \"/no/such\" is configured.");
        EXPECT_EQ(Ask("pause " + in + u'/'), "OK");
        for (const char* name : {"in/a.pdf", "in/b.pdf", "in/c.pdf"})
            FWorkspace.Write(name, "no PDF");
        FClock.Play(2);
        EXPECT_EQ(waiting(), 3);
        EXPECT_TRUE(Ask("status").contains("\"state\":\"paused\""));
    }
    FClock.Restart();
    const TfrmFoldersAgent form({FClock, FFiles});
    FClock.Play(2);
    EXPECT_EQ(waiting(), 3);
    ASSERT_TRUE(DeliverUntil(hearing));
    EXPECT_EQ(Ask("resume"), "OK");
    FClock.Play(2);
    EXPECT_EQ(waiting(), 0);
    EXPECT_TRUE(DeliverUntil([&] { return FDesktop.Look->PopupMenu->Items[1].Caption == "Failed (3)"; }));
    EXPECT_EQ(FDesktop.Events.filter("notice "), QStringList("notice 3 files failed in \"" + in + "\"."));
}

TEST_F(FormTest, CommandsReachTheFoldersThreadUntilItHasGone) {
    TfrmFoldersAgent form({FClock, FFiles});
    while (!Send("check")) {
    }
    EXPECT_TRUE(Send("refresh.actions"));
    EXPECT_TRUE(form.FoldersThread()->FRefreshActions);
    EXPECT_FALSE(form.FoldersThread()->FRefreshFolders);
    EXPECT_TRUE(Send("refresh.folders"));
    EXPECT_TRUE(form.FoldersThread()->FRefreshFolders);
    form.StopThreads();
    EXPECT_THROW(form.RefreshFolders(), Exception);
    EXPECT_THROW(form.RefreshActions(), Exception);
    EXPECT_FALSE(Send("check"));
}

TEST_F(FormTest, AWriteInTheConfigurationFolderRaisesTheFlag) {
    const TfrmFoldersAgent form({FClock, FFiles});
    EXPECT_TRUE(form.FoldersThread()->FDirChanged); // what came while the form was made is looked for
    FWorkspace.Write("c/actions.xml", "<ActionManager/>");
    FWorkspace.Write("c/watchedfolders.xml", "<WatchedFolder/>");
    do { // until the notices of both have come
        FClock.Play(1);
        DeliverFor(50);
    } while (form.FoldersThread()->FDirChanged);
    FWorkspace.Write("c/actions.xml", "<ActionManager/>");
    EXPECT_TRUE(DeliverUntil([&] { return form.FoldersThread()->FDirChanged.load(); }));
}

TEST_F(FormTest, ASecondInstancesCommandLineIsDropped) {
    const TfrmFoldersAgent form({FClock, FFiles});
    const TMessage message{.Number = WM_COPYDATA,
                           .Data =
                               std::make_shared<TCopyData>(TCopyData{CopyDataCommandLine, "agent\n--x "})};
    EXPECT_EQ(SendMessage(form.Handle(), message), 0);
    EXPECT_FALSE(form.Terminated());
    EXPECT_EQ(FDesktop.Events, QStringList("icon"));
}

TEST_F(FormTest, StoppingAnswersABoxThatTheRunWaitsFor) {
    // Files that need an answer before they can be listed.
    struct TAskingFiles : TPlainFiles {
        QStringList ReadyFiles(const TFolder&, qint64, const TQuietTime&) override {
            [[maybe_unused]] const int answer = MessageBoxHost().Show("Go on?", "", MB_OKCANCEL);
            return {};
        }
    } files;
    FDesktop.HoldBoxes = true;
    QDir().mkpath(FWorkspace.Path("in"));
    FWorkspace.Write(
        "c/watchedfolders.xml",
        "<WatchedFolder><Folders><Folder><Name>" + FWorkspace.Path("in").toUtf8() +
            "</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery></Folder></Folders></WatchedFolder>");
    const TfrmFoldersAgent form({FClock, files});
    FClock.PlayOne();
    FDesktop.BoxIsOpen.get_future().wait();
    // That the form can be destroyed now is what is tested: its thread is inside the box.
}

TEST_F(FormTest, HintsOfTheRunAreShownOnTheFormsThreadTheLastOneSurely) {
    TfrmFoldersAgent form({FClock, FFiles});
    std::thread run([&] {
        for (int i = 1; i <= 1000; ++i)
            form.SetHint(QString::number(i));
    });
    run.join();
    EXPECT_EQ(form.TrayIcon1.Hint(), "1000");
    EXPECT_EQ(FDesktop.Events, QStringList("icon")); // nothing was shown on the run's thread
    EXPECT_TRUE(DeliverUntil([&] { return FDesktop.Events.last() == "1000"; }));
    EXPECT_EQ(FDesktop.Events, QStringList({"icon", "1000"}));
    form.SetHint("again");
    form.SetHint("again");
    EXPECT_TRUE(DeliverUntil([&] { return FDesktop.Events.last() == "again"; }));
    DeliverFor(20);
    EXPECT_EQ(FDesktop.Events, QStringList({"icon", "1000", "again"}));
}

} // namespace
