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
    static QPushButton* Button(const TfrmPassword& form, const QString& caption) {
        for (QPushButton* button : form.findChildren<QPushButton*>())
            if (button->text() == caption)
                return button;
        return nullptr;
    }
    static void Type(TfrmPassword& form, const QString& text) {
        QTest::keyClicks(form.findChild<QLineEdit*>(), text);
    }
    /// Asks on another thread, and delivers here what it asks.
    static std::optional<string> AskFromAfar(const string& message) {
        auto asked = std::async(std::launch::async, [&message] {
            const auto typed = PasswordPrompt().Ask(message);
            QMetaObject::invokeMethod(
                qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
            return typed;
        });
        QCoreApplication::exec();
        return asked.get();
    }
};

TEST_F(PromptTest, AsksWithAMaskedLineAndTwoButtons) {
    const string message = "'<b>3</b>.pdf' is protected. " + QString(200, 'n');
    OnPrompt([&](TfrmPassword& form) {
        EXPECT_EQ(form.windowTitle(), "Password");
        const QList<QLabel*> labels = form.findChildren<QLabel*>();
        ASSERT_EQ(labels.size(), 2);
        EXPECT_EQ(labels[0]->text().remove(u'\u200B'), message);
        EXPECT_EQ(labels[0]->textFormat(), Qt::PlainText);
        EXPECT_EQ(labels[1]->text(), "Enter password: ");
        auto* edit = form.findChild<QLineEdit*>();
        EXPECT_EQ(edit->echoMode(), QLineEdit::Password);
        EXPECT_TRUE(Button(form, "&OK")->isDefault());
        EXPECT_LT(form.width(), 600); // the name of any file fits
        EXPECT_GE(labels[0]->height(), labels[0]->heightForWidth(labels[0]->width()));
        QTest::keyClicks(edit, "s3cret");
        EXPECT_EQ(edit->displayText(), QString(6, edit->displayText()[0]));
        EXPECT_NE(edit->displayText()[0], 's');
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(PasswordPrompt().Ask(message), "s3cret");
}

TEST_F(PromptTest, CancelEscapeAndClosingAreNoAnswer) {
    const std::function<void(TfrmPassword&)> ways[] = {
        [](TfrmPassword& form) { QTest::mouseClick(Button(form, "&Cancel"), Qt::LeftButton); },
        [](TfrmPassword& form) { QTest::keyClick(&form, Qt::Key_Escape); },
        [](TfrmPassword& form) { form.close(); },
    };
    for (const auto& way : ways) {
        OnPrompt([&](TfrmPassword& form) {
            Type(form, "typed");
            way(form);
        });
        EXPECT_EQ(PasswordPrompt().Ask("m"), std::nullopt);
    }
}

TEST_F(PromptTest, EachAttemptLeavesItsFormHiddenAndEmpty) {
    const TWorkspace files;
    MakePdf(files.Path("3.pdf"), 1, {.UserPassword = "open", .OwnerPassword = "own"});
    QStringList attempts{"", "no", "open"};
    QStringList messages;
    const std::function<void(TfrmPassword&)> answer = [&](TfrmPassword& form) {
        messages += form.findChild<QLabel*>()->text();
        EXPECT_EQ(form.Password(), "");
        Type(form, attempts.takeFirst());
        if (!attempts.isEmpty())
            QTimer::singleShot(0, qApp, [&answer] { OnPrompt(answer); }); // once this one is hidden
        QTest::mouseClick(Button(form, "&OK"), Qt::LeftButton);
    };
    OnPrompt(answer);
    string password;
    EXPECT_TRUE(AskForPassword(files.Path("3.pdf"), TIsPasswordOkOption::poOpen, password));
    EXPECT_EQ(password, "open");
    EXPECT_EQ(messages, QStringList(3, "'3.pdf' is protected. To open it, enter its password."));
    QCoreApplication::processEvents();
    int kept = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* form = dynamic_cast<TfrmPassword*>(widget)) {
            ++kept;
            EXPECT_FALSE(form->isVisible());
            EXPECT_FALSE(form->windowHandle());
            EXPECT_TRUE(form->children().isEmpty());
        }
    EXPECT_EQ(kept, 3);
}

TEST_F(PromptTest, HoldsOnlyTheThreadThatAsks) {
    OnPrompt([](TfrmPassword& form) {
        EXPECT_FALSE(form.isModal()); // the agent's menu still works
        Type(form, "far");
        QTest::mouseClick(Button(form, "&OK"), Qt::LeftButton);
    });
    EXPECT_EQ(AskFromAfar("m"), "far");
}

TEST_F(PromptTest, TheEndCancelsOpenPromptsAndEveryLaterOne) {
    OnPrompt([](TfrmPassword& form) {
        Type(form, "half");
        PasswordPrompt().CancelAll();
    });
    EXPECT_EQ(AskFromAfar("m"), std::nullopt);
    EXPECT_EQ(PasswordPrompt().Ask("m"), std::nullopt);
    EXPECT_EQ(AskFromAfar("m"), std::nullopt);
}

TEST_F(PromptTest, APromptEndsWithTheApplication) {
    OnPrompt([](TfrmPassword& form) {
        Type(form, "half");
        QCoreApplication::exit();
    });
    EXPECT_EQ(PasswordPrompt().Ask("m"), std::nullopt);
    for (const QWidget* widget : QApplication::topLevelWidgets())
        EXPECT_FALSE(widget->isVisible());
}

class FileDialogTest : public DesktopTest {
protected:
    static void OnDialog(const std::function<void(QFileDialog&)>& call) { OnShown<QFileDialog>(call); }
    const TWorkspace FFiles;
};

TEST_F(FileDialogTest, AttachingAsksForAnExistingFileOfAnyKindAndForgetsIt) {
    const QString path = FFiles.Write("b.txt", "b");
    TPDFActionAddFileAttachment action;
    OnDialog([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.nameFilters(), QStringList{"All files (*)"});
        EXPECT_EQ(dialog.defaultSuffix(), "");
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_TRUE(action.Config());
    EXPECT_TRUE(action.fileName.isEmpty());
    OnDialog([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(action.Config());
}

TEST_F(FileDialogTest, AnswersWithTheNameAndItsDefaultExtension) {
    FFiles.Write("a.js", "a");
    TFileDialog asked{"Scripts (*.js)", ".js", /*FileMustExist=*/false, FFiles.Path("a.js")};
    OnDialog([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory().path(), QFileInfo(asked.FileName).path());
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, "new");
        QTest::keyClick(name, Qt::Key_Return);
    });
    EXPECT_TRUE(FileDialogHost().Execute(asked));
    EXPECT_EQ(asked.FileName, FFiles.Path("new.js"));
}

TEST_F(FileDialogTest, EndsWithTheApplication) {
    OnDialog([](QFileDialog&) { QCoreApplication::exit(); });
    TFileDialog asked{{}, {}, /*FileMustExist=*/true, "kept"};
    EXPECT_FALSE(FileDialogHost().Execute(asked));
    EXPECT_EQ(asked.FileName, "kept");
}

} // namespace
