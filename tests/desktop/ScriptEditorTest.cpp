// The script editor's dialog with the real engine behind it, driven by keys and clicks.
#include "DesktopFixture.h"
#include "actions/DocumentScriptEngine.h"
#include "desktop/ScriptEditorDialog.h"
#include "desktop/memo/MemoPane.h"
#include "platform/StopSignal.h"

#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// What a user sees of the open dialog.
class TOpenEditor {
public:
    explicit TOpenEditor(TfrmJavaScriptEditor& form) : FForm(form) {
        Editor().activateWindow();
        Editor().setFocus();
        (void)QTest::qWaitForWindowActive(&form, RealInput::Patience);
    }
    [[nodiscard]] TMemoWidget& Editor() { return *FForm.findChild<TMemoWidget*>(); }
    [[nodiscard]] TMemoCompletion& Completion() { return Editor().Completion(); }
    [[nodiscard]] std::string Text() { return FForm.Script().Text().toStdString(); }
    [[nodiscard]] std::string Message() {
        return FForm.findChild<TMemoPane*>()->StatusLine().Message().Text().toStdString();
    }
    [[nodiscard]] bool IsOpen() const { return FForm.isVisible(); }
    [[nodiscard]] QStringList Offered() {
        QStringList texts;
        for (const TCompletionEntry& entry : Completion().ListCompletion().Entries)
            texts.append(entry.Text);
        return texts;
    }
    void Type(const char* text) { RealInput::Type(&Editor(), QString::fromUtf8(text)); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        RealInput::Click(QApplication::focusWidget(), key, modifiers);
    }
    void Click(const char* caption) {
        for (QPushButton* button : FForm.findChildren<QPushButton*>())
            if (button->text() == QLatin1String(caption))
                QTest::mouseClick(button, Qt::LeftButton);
    }
    /// Until the list that opens by itself is there.
    void AwaitList() {
        ASSERT_TRUE(RealInput::Await([this] { return Completion().IsOpen(); }));
    }

private:
    TfrmJavaScriptEditor& FForm;
};

class ScriptEditorTest : public DesktopTest {
protected:
    ScriptEditorTest() { StopSignal().Lower(); } // agents of other tests have ended

    enum class Answer { No, Yes };
    /// Shows `source`, lets `user` work on it, and closes the dialog if that didn't.
    Answer Edit(string& source, const std::function<void(TOpenEditor&)>& user, TJSEngine* engine,
                TJSCompletion* table) {
        OnShown<TfrmJavaScriptEditor>([&user](TfrmJavaScriptEditor& form) {
            TOpenEditor editor(form);
            user(editor);
            if (form.isVisible())
                form.reject();
        });
        return ScriptEditorHost().ScriptEdit(source, engine, table) ? Answer::Yes : Answer::No;
    }
    Answer Edit(string& source, const std::function<void(TOpenEditor&)>& user) {
        TJSCompletion table = BuildCompletion();
        return Edit(source, user, &GetDocumentScripting(), &table);
    }
};

TEST_F(ScriptEditorTest, AScriptIsWrittenWithCompletionAndConfirmed) {
    string source;
    const Answer answer = Edit(source, [](TOpenEditor& editor) {
        editor.Key(Qt::Key_Space, Qt::ControlModifier);
        ASSERT_TRUE(editor.Completion().IsOpen());
        EXPECT_EQ(editor.Offered().front(), "Document.");
        editor.Key(Qt::Key_Return);
        EXPECT_EQ(editor.Text(), "Document.\n");
        editor.Key(Qt::Key_Space, Qt::ControlModifier);
        EXPECT_THAT(editor.Offered(), Contains("function GetLastError  Integer;"));
        EXPECT_THAT(editor.Offered(), Not(Contains("Document.")));
        editor.Type("SaveA");
        editor.Key(Qt::Key_Return);
        EXPECT_EQ(editor.Text(), "Document.SaveAs()\n");
        EXPECT_TRUE(editor.Completion().Hint().Visible());
        editor.Type("'a.pdf'");
        editor.Key(Qt::Key_End);
        editor.Type(";");
        editor.Click("OK");
        EXPECT_FALSE(editor.IsOpen());
    });
    EXPECT_EQ(answer, Answer::Yes);
    EXPECT_EQ(source, "Document.SaveAs('a.pdf');\n");
}

TEST_F(ScriptEditorTest, TheListOpensByItselfBehindADot) {
    string source;
    EXPECT_EQ(Edit(source,
                   [](TOpenEditor& editor) {
                       editor.Completion().FAutoCompletion.Delay = 1;
                       editor.Type("Document.");
                       editor.AwaitList();
                       EXPECT_THAT(editor.Offered(), Contains("function SaveAs (fileName: string) Boolean;"));
                       editor.Key(Qt::Key_Escape);
                       EXPECT_FALSE(editor.Completion().IsOpen());
                       EXPECT_TRUE(editor.IsOpen());
                   }),
              Answer::No);
}

TEST_F(ScriptEditorTest, AnErrorKeepsTheDialogOpenAndSaysWhere) {
    string source = "var a = 1;\nvar b = ;\n";
    const Answer answer = Edit(source, [](TOpenEditor& editor) {
        editor.Click("OK");
        EXPECT_TRUE(editor.IsOpen());
        EXPECT_EQ(editor.Text(), "var a = 1;\nvar b = ;\n");
        EXPECT_THAT(editor.Message(), HasSubstr("Line 2: SyntaxError"));
        TAdvMemo& memo = editor.Editor().Memo();
        EXPECT_TRUE(memo.Caret().IsAt(8, 1));
        ASSERT_NE(memo.Lines().GetLineProp(1), nullptr);
        ASSERT_TRUE(memo.Lines().GetLineProp(1)->HasErrorInfo());
        EXPECT_EQ((*memo.Lines().GetLineProp(1)->FErrStart)[0], 8);
        editor.Type("2");
        editor.Click("OK");
        EXPECT_FALSE(editor.IsOpen());
    });
    EXPECT_EQ(answer, Answer::Yes);
    EXPECT_EQ(source, "var a = 1;\nvar b = 2;\n");
}

TEST_F(ScriptEditorTest, AnErrorWithoutAPlaceIsToldWithoutOne) {
    string source = string(100'000, '(');
    EXPECT_EQ(Edit(source,
                   [](TOpenEditor& editor) {
                       editor.Click("OK");
                       EXPECT_TRUE(editor.IsOpen());
                       EXPECT_FALSE(editor.Message().empty());
                       EXPECT_THAT(editor.Message(), Not(HasSubstr("Line 0")));
                       EXPECT_TRUE(editor.Editor().Memo().ErrorMarks().Of(0).empty());
                   }),
              Answer::No);
}

TEST_F(ScriptEditorTest, ConfirmingRunsNothing) {
    string source = "globalThis.ran = true; throw new Error('no')";
    EXPECT_EQ(Edit(source, [](TOpenEditor& editor) { editor.Click("OK"); }), Answer::Yes);
    EXPECT_TRUE(GetDocumentScripting().Evaluate("if (typeof ran != 'undefined') throw 1", "test"));
}

TEST_F(ScriptEditorTest, KeysOfTheDialogOutsideAndInsideTheScript) {
    const struct {
        const char* What;
        std::function<void(TOpenEditor&)> User;
    } cancelling[] = {
        {"Return on OK",
         [](TOpenEditor& e) { e.Key(Qt::Key_Tab, Qt::ControlModifier), e.Key(Qt::Key_Return); }},
        {"Escape on OK",
         [](TOpenEditor& e) { e.Key(Qt::Key_Tab, Qt::ControlModifier), e.Key(Qt::Key_Escape); }},
        {"a click on Cancel", [](TOpenEditor& e) { e.Click("Cancel"); }},
    };
    for (const auto& c : cancelling) {
        string source = "a";
        EXPECT_EQ(Edit(source,
                       [&](TOpenEditor& editor) {
                           editor.Type("x");
                           c.User(editor);
                           EXPECT_FALSE(editor.IsOpen()) << c.What;
                       }),
                  Answer::No);
        EXPECT_EQ(source, "a") << c.What;
    }
    string source = "a";
    EXPECT_EQ(
        Edit(source,
             [](TOpenEditor& editor) {
                 for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape, Qt::Key_Enter}) {
                     editor.Key(key);
                     EXPECT_TRUE(editor.IsOpen());
                 }
                 EXPECT_EQ(editor.Text(), "\n    \n    a\n");
                 for (int i = 0; i < 10; ++i)
                     editor.Key(Qt::Key_Z, Qt::ControlModifier);
                 EXPECT_EQ(editor.Text(), "a\n");
             }),
        Answer::No);
}

TEST_F(ScriptEditorTest, WithoutEngineAndTableItIsAPlainEditor) {
    string source = "var = not a script";
    const Answer answer = Edit(
        source,
        [](TOpenEditor& editor) {
            editor.Key(Qt::Key_Space, Qt::ControlModifier);
            EXPECT_FALSE(editor.Completion().IsOpen());
            editor.Type("// ");
            editor.Click("OK");
        },
        nullptr, nullptr);
    EXPECT_EQ(answer, Answer::Yes);
    EXPECT_EQ(source, "// var = not a script\n");
}

TEST_F(ScriptEditorTest, AnEmptyScriptIsNotCompiled) {
    TJSEngine& engine = GetDocumentScripting();
    ASSERT_FALSE(engine.Evaluate("throw new Error('before')", "test"));
    string source;
    EXPECT_EQ(Edit(source, [](TOpenEditor& editor) { editor.Click("OK"); }), Answer::Yes);
    EXPECT_EQ(source, "");
}

TEST(ScriptEditorEntries, AHintHasNoLeadingKeyword) {
    const struct {
        const char* Source;
        const char* Hint;
    } cases[] = {
        {"function SaveAs (fileName: string) Boolean;", "SaveAs (fileName: string) Boolean;"},
        {"function Save  Boolean;", "Save  Boolean;"},
        {"procedure function function A;", "function A;"},
        {"Function A;", "Function A;"},
        {"Document.", "Document."},
    };
    for (const auto& c : cases) {
        string method;
        string hint;
        TfrmJavaScriptEditor::GetMethodAndHint(c.Source, method, hint);
        EXPECT_EQ(method, c.Source);
        EXPECT_EQ(hint, c.Hint);
    }
}

} // namespace
