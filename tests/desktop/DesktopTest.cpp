#include "agent/AgentPicture.h"
#include "agent/AgentProgram.h"
#include "agent/FoldersAgentForm.h"
#include "base/Journal.h"
#include "desktop/DesktopFixture.h"
#include "platform/AppInstances.h"
#include "platform/MessageBox.h"
#include "platform/TrayIcon.h"
#include "testing/PlayedHost.h"
#include "testing/Workspace.h"

#include <QCloseEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include <clocale>
#include <future>

namespace {

QStringList Captions(const QMessageBox& box) {
    QStringList captions;
    for (const QAbstractButton* button : box.buttons())
        captions += button->text().remove('&');
    captions.sort();
    return captions;
}
void Click(const QMessageBox& box, const QString& caption) {
    for (QAbstractButton* button : box.buttons())
        if (button->text().remove('&') == caption)
            button->click();
}
void OnBox(const std::function<void(QMessageBox&)>& call) {
    DesktopTest::OnShown<QMessageBox>(call);
}

TEST_F(DesktopTest, EachBoxHasItsButtonsAndTheirCodes) {
    const struct {
        int Flags;
        QStringList Buttons; // sorted
        QList<int> Codes;
    } cases[] = {
        {MB_OK | MB_ICONERROR, {"OK"}, {1}},
        {MB_OKCANCEL, {"Cancel", "OK"}, {2, 1}},
        {MB_ABORTRETRYIGNORE, {"Abort", "Ignore", "Retry"}, {3, 5, 4}},
        {MB_YESNOCANCEL | MB_ICONQUESTION, {"Cancel", "No", "Yes"}, {2, 7, 6}},
        {MB_YESNO, {"No", "Yes"}, {7, 6}},
        {MB_RETRYCANCEL, {"Cancel", "Retry"}, {2, 4}},
        {MB_CANCELTRYCONTINUE, {"Cancel", "Continue", "Try Again"}, {2, 11, 10}},
    };
    for (const auto& c : cases)
        for (int i = 0; i < c.Buttons.size(); ++i) {
            OnBox([&](QMessageBox& box) {
                EXPECT_EQ(Captions(box), c.Buttons);
                EXPECT_EQ(box.text(), "<b>Really?</b>");
                EXPECT_EQ(box.textFormat(), Qt::PlainText);
                Click(box, c.Buttons[i]);
            });
            EXPECT_EQ(MessageBoxHost().Show("<b>Really?</b>", "Caption", c.Flags), c.Codes[i]) << c.Flags;
        }
}

TEST_F(DesktopTest, EscapeIsCancelWhereThereIsOne) {
    OnBox([](QMessageBox& box) { box.reject(); });
    EXPECT_EQ(MessageBoxHost().Show("text", "", MB_YESNOCANCEL), IDCANCEL);
    OnBox([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(MessageBoxHost().Show("text", "", MB_OK), IDOK);
}

TEST_F(DesktopTest, FlagsNameTheDefaultButtonAndALongTextLeavesRoomForIt) {
    const struct {
        int Flags;
        const char* Default;
    } cases[] = {
        {MB_YESNOCANCEL, "&Yes"},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, "&No"},
        {MB_YESNOCANCEL | MB_DEFBUTTON3 | MB_ICONQUESTION, "Cancel"},
        {MB_YESNO | MB_DEFBUTTON3, "&Yes"}, // there is no third
    };
    const QString text = QString("line\n").repeated(500);
    for (const auto& c : cases) {
        OnBox([&](QMessageBox& box) {
            EXPECT_LT(box.height(), box.screen()->availableGeometry().height());
            EXPECT_EQ(box.detailedText(), text);
            EXPECT_EQ(box.defaultButton()->text(), c.Default);
            EXPECT_TRUE(box.isModal()); // its caller is on this thread
            QTest::keyClick(box.defaultButton(), Qt::Key_Return);
        });
        EXPECT_GT(MessageBoxHost().Show(text, "", c.Flags), 0);
    }
}

TEST_F(DesktopTest, AnyThreadMayAskAndSeveralAtOnce) {
    auto first = std::async(std::launch::async, [] { return MessageBoxHost().Show("1", "", MB_YESNO); });
    auto second = std::async(std::launch::async, [] { return MessageBoxHost().Show("2", "", MB_YESNO); });
    int clicked = 0;
    const std::function<void(QMessageBox&)> answer = [&](QMessageBox& box) {
        Click(box, box.text() == "1" ? "Yes" : "No");
        if (++clicked == 2)
            QCoreApplication::exit();
        else
            OnBox(answer);
    };
    OnBox(answer);
    QCoreApplication::exec();
    EXPECT_EQ(first.get(), IDYES);
    EXPECT_EQ(second.get(), IDNO);
}

TEST_F(DesktopTest, TheEndAnswersOpenBoxesAndEveryLaterOne) {
    auto held = std::async(std::launch::async, [] { return MessageBoxHost().Show("", "", MB_OKCANCEL); });
    OnBox([](QMessageBox&) {
        MessageBoxHost().CloseAll();
        QCoreApplication::exit();
    });
    QCoreApplication::exec();
    EXPECT_EQ(held.get(), IDCANCEL);
    EXPECT_EQ(MessageBoxHost().Show("", "", MB_YESNO), IDNO);
}

TEST_F(DesktopTest, ABoxDoesNotOutliveTheApplicationsEnd) {
    OnBox([](QMessageBox&) { QCoreApplication::exit(); });
    EXPECT_EQ(MessageBoxHost().Show("nobody answers", "", MB_YESNO), IDNO);
    for (const QWidget* widget : QApplication::topLevelWidgets())
        EXPECT_FALSE(widget->isVisible());
}

TEST_F(DesktopTest, ATrayIconWorksWithoutATrayAreaToo) {
    TImageList frames(16, 16);
    for (int i = 0; i < AgentFrames; ++i)
        frames.Add(AgentFrame(16, i));
    int clicks = 0;
    TPopupMenu menu{{{"Exit", [&] { ++clicks; }}}};
    TTrayIcon icon(nullptr);
    icon.Icon = {AgentPicture(16), AgentPicture(32)};
    icon.Icons = &frames;
    icon.PopupMenu = &menu;
    icon.FAnimate = true;
    icon.FAnimateInterval = 1;
    icon.SetVisible(/*visible=*/true);
    icon.SetHint("busy");
    QTimer::singleShot(30, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* shown = qobject_cast<QMenu*>(widget); shown && shown->actions().size() == 1) {
            EXPECT_EQ(shown->actions()[0]->text(), "Exit");
            shown->actions()[0]->trigger();
        }
    EXPECT_EQ(clicks, 1);
    icon.SetVisible(/*visible=*/false);
    EXPECT_EQ(QApplication::topLevelWidgets().size(), 0);
}

/// A desktop, and a configuration that serves one folder.
class DesktopAgentTest : public DesktopTest {
protected:
    DesktopAgentTest() {
        qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
        qputenv("XDG_RUNTIME_DIR", FWorkspace.Path().toUtf8());
        FWorkspace.Write("settings/morvane/settings.ini",
                         "ConfigurationFolder=" + FWorkspace.Path("c").toUtf8());
        QDir().mkpath(FWorkspace.Path("in"));
        FWorkspace.Write("c/watchedfolders.xml",
                         "<WatchedFolder><Folders><Folder><Name>" + FWorkspace.Path("in").toUtf8() +
                             "</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery></Folder></Folders>"
                             "</WatchedFolder>");
    }
    ~DesktopAgentTest() override {
        qunsetenv("XDG_CONFIG_HOME");
        qunsetenv("XDG_RUNTIME_DIR");
    }
    const TWorkspace FWorkspace;
};

TEST_F(DesktopAgentTest, TheSessionsEndEndsTheAgentWhateverWindowIsOpen) {
    struct TStubborn : QWidget {
        void closeEvent(QCloseEvent* event) override { event->ignore(); }
    } window;
    window.show();
    const auto instances = CheckSingleInstance();
    auto held = std::async(std::launch::async, [] { return MessageBoxHost().Show("", "", MB_YESNO); });
    OnBox([](QMessageBox&) {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
    EXPECT_EQ(RunFoldersAgent(*instances), EXIT_SUCCESS);
    EXPECT_EQ(held.get(), IDNO);
}

TEST_F(DesktopAgentTest, AnExitInsideTheEventLoopEndsTheRunBeforeWhatItUses) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const auto instances = CheckSingleInstance();
            QTimer::singleShot(100, qApp, [] {
                struct TUsed { // made after the agent, as much of what the run's work needs
                    ~TUsed() { JournalLine(frmFoldersAgent.load()->PipeThread() ? "in use" : "free"); }
                };
                static const TUsed used;
                std::exit(EXIT_FAILURE); // as the library does whose display has died
            });
            [[maybe_unused]] const int code = RunFoldersAgent(*instances);
        },
        testing::ExitedWithCode(EXIT_FAILURE), "free");
}

TEST_F(DesktopAgentTest, TheDesktopLivesOnWhileAStopWaitsForTheRun) {
    // The run's work takes until the desktop has had its turn.
    struct TLongWork : TPlainFiles {
        QStringList ReadyFiles(const TFolder&, qint64, const TQuietTime&) override {
            Begun.set_value();
            DesktopTurn = Turn.get_future().wait_for(std::chrono::minutes(1));
            return {};
        }
        std::promise<void> Begun, Turn;
        std::future_status DesktopTurn{};
    } files;
    TPlayedClock clock;
    {
        const TfrmFoldersAgent form({clock, files});
        clock.PlayOne();
        files.Begun.get_future().wait();
        QTimer::singleShot(0, qApp, [&] { files.Turn.set_value(); });
    }
    EXPECT_EQ(files.DesktopTurn, std::future_status::ready);
}

TEST_F(DesktopTest, NumbersKeepTheirPointWhateverTheLocale) {
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    EXPECT_TRUE(FDesktop->IsThere());
}

TEST(NoDesktop, WithoutADisplayThereIsNone) {
    qunsetenv("DISPLAY");
    qunsetenv("WAYLAND_DISPLAY");
    const TDesktop desktop;
    EXPECT_FALSE(desktop.IsThere());
    EXPECT_EQ(TrayIconHost(), nullptr);
    EXPECT_EQ(qobject_cast<QApplication*>(QCoreApplication::instance()), nullptr);
    EXPECT_EQ(MessageBoxHost().Show("to the journal", "", MB_YESNO), IDNO);
}

} // namespace
