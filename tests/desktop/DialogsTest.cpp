// The dialogs of the desktop: the password prompt, from the main thread and from others, and the file dialog.
#include "actions/ContentActions.h"
#include "desktop/DesktopFixture.h"
#include "desktop/PasswordForm.h"
#include "platform/FileDialog.h"
#include "scripting/AskForPassword.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <future>

namespace {

class PromptTest : public DesktopTest {
protected:
    static void OnPrompt(const std::function<void(TfrmPassword&)>& call) { OnShown<TfrmPassword>(call); }
    static void TypeAndClick(TfrmPassword& form, const QString& text, const QString& caption) {
        QTest::keyClicks(form.findChild<QLineEdit*>(), text);
        for (QPushButton* button : form.findChildren<QPushButton*>())
            if (button->text() == caption)
                QTest::mouseClick(button, Qt::LeftButton);
    }
    /// Asks on another thread, and delivers here what it asks.
    static std::optional<string> AskFromAfar() {
        auto asked = std::async(std::launch::async, [] {
            const auto typed = PasswordPrompt().Ask("m");
            QMetaObject::invokeMethod(
                qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
            return typed;
        });
        QCoreApplication::exec();
        return asked.get();
    }
};

TEST_F(PromptTest, AsksWithAMaskedLineAndRoomForAnyName) {
    const string message = "'<b>3</b>.pdf' is protected. " + QString(200, 'n');
    OnPrompt([&](TfrmPassword& form) {
        EXPECT_EQ(form.windowTitle(), "Password");
        const QList<QLabel*> labels = form.findChildren<QLabel*>();
        EXPECT_EQ(labels[0]->text().remove(u'\u200B'), message);
        EXPECT_EQ(labels[0]->textFormat(), Qt::PlainText);
        EXPECT_GE(labels[0]->height(), labels[0]->heightForWidth(labels[0]->width()));
        EXPECT_LT(form.width(), 600);
        EXPECT_EQ(labels[1]->text(), "Enter password: ");
        auto* edit = form.findChild<QLineEdit*>();
        QTest::keyClicks(edit, "s3cret");
        EXPECT_EQ(edit->displayText(), QString(6, edit->displayText()[1]));
        QTest::keyClick(edit, Qt::Key_Return); // OK is the default
    });
    EXPECT_EQ(PasswordPrompt().Ask(message), "s3cret");
}

TEST_F(PromptTest, EveryOtherWayOutIsNoAnswer) {
    const std::function<void(TfrmPassword&)> ways[] = {
        [](TfrmPassword& form) { TypeAndClick(form, "typed", "&Cancel"); },
        [](TfrmPassword& form) { QTest::keyClick(&form, Qt::Key_Escape); },
        [](TfrmPassword& form) { form.close(); },
        [](TfrmPassword&) { QCoreApplication::exit(); },
    };
    for (const auto& way : ways) {
        OnPrompt(way);
        EXPECT_EQ(PasswordPrompt().Ask("m"), std::nullopt);
    }
}

TEST_F(PromptTest, EachAttemptLeavesItsFormHiddenAndEmpty) {
    const TWorkspace files;
    MakePdf(files.Path("3.pdf"), 1, {.UserPassword = "open", .OwnerPassword = "own"});
    QStringList attempts{"", "no", "open"};
    const std::function<void(TfrmPassword&)> answer = [&](TfrmPassword& form) {
        EXPECT_EQ(form.Password(), "");
        const QString attempt = attempts.takeFirst();
        if (!attempts.isEmpty())
            QTimer::singleShot(0, qApp, [&answer] { OnPrompt(answer); }); // once this one is hidden
        TypeAndClick(form, attempt, "&OK");
    };
    OnPrompt(answer);
    string password;
    EXPECT_TRUE(AskForPassword(files.Path("3.pdf"), TIsPasswordOkOption::poOpen, password));
    EXPECT_EQ(password, "open");
    QCoreApplication::processEvents();
    int kept = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* form = dynamic_cast<TfrmPassword*>(widget)) {
            ++kept;
            EXPECT_FALSE(form->isVisible() || form->windowHandle());
            EXPECT_TRUE(form->children().isEmpty());
        }
    EXPECT_EQ(kept, 3);
}

TEST_F(PromptTest, HoldsOnlyTheThreadThatAsksUntilTheEnd) {
    OnPrompt([](TfrmPassword& form) {
        EXPECT_FALSE(form.isModal()); // the agent's menu still works
        TypeAndClick(form, "far", "&OK");
    });
    EXPECT_EQ(AskFromAfar(), "far");
    OnPrompt([](TfrmPassword&) { PasswordPrompt().CancelAll(); });
    EXPECT_EQ(AskFromAfar(), std::nullopt);
    EXPECT_EQ(AskFromAfar(), std::nullopt); // and every later one
    EXPECT_EQ(PasswordPrompt().Ask("m"), std::nullopt);
}

class FileDialogTest : public DesktopTest {};

TEST_F(FileDialogTest, AttachingAsksForAnExistingFileOfAnyKindAndForgetsIt) {
    const TWorkspace files;
    const QString path = files.Write("b.txt", "b");
    TPDFActionAddFileAttachment action;
    OnShown<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.nameFilters(), QStringList{"All files (*)"});
        EXPECT_EQ(dialog.defaultSuffix(), "");
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_TRUE(action.Config());
    EXPECT_TRUE(action.fileName.isEmpty());
    OnShown<QFileDialog>([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(action.Config());
}

TEST_F(FileDialogTest, AnswersWithWhatWasTypedUntilTheEnd) {
    const TWorkspace files;
    TFileDialog asked{"Scripts (*.js)", ".js", /*FileMustExist=*/false, files.Write("a.js", "a")};
    OnShown<QFileDialog>([&](QFileDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, RealInput::Patience));
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, "new");
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_TRUE(FileDialogHost().Execute(asked));
    EXPECT_EQ(asked.FileName, files.Path("new.js"));
    OnShown<QFileDialog>([](QFileDialog&) { QCoreApplication::exit(); });
    EXPECT_FALSE(FileDialogHost().Execute(asked));
}

} // namespace
