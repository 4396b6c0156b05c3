// The script editor's dialog with the real engine behind it, driven by keys and clicks.
#include "DesktopFixture.h"
#include "actions/DocumentScriptEngine.h"
#include "desktop/ScriptEditorDialog.h"
#include "desktop/memo/MemoPane.h"
#include "platform/StopSignal.h"

#include <QMessageBox>
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
    /// A question has taken the focus.
    void Return() {
        FForm.activateWindow();
        Editor().setFocus();
        (void)QTest::qWaitForWindowActive(&FForm);
    }
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
        return TfrmJavaScriptEditor::ScriptEdit(source, engine, table) ? Answer::Yes : Answer::No;
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

/// The dialog as people have it: with a file behind it.
class ComfortableEditorTest : public ScriptEditorTest {
protected:
    void EditFile(const string& text, const std::function<void(TOpenEditor&, TfrmJavaScriptEditor&)>& user) {
        OnShown<TfrmJavaScriptEditor>([&user](TfrmJavaScriptEditor& form) {
            TOpenEditor editor(form);
            user(editor, form);
            if (form.isVisible()) {
                Answer(QMessageBox::Discard);
                form.close();
            }
        });
        TJSCompletion table = BuildCompletion();
        ScriptEditorHost().EditFile({"a.js", text, ReadOnly,
                                     [this](const string& now) {
                                         if (!Refuses)
                                             Saved.append(now);
                                         return !Refuses;
                                     }},
                                    &GetDocumentScripting(), &table);
    }
    /// Answers the next question.
    static void Answer(QMessageBox::StandardButton button) {
        OnShown<QMessageBox>([button](QMessageBox& box) {
            ++Questions;
            box.button(button)->click();
        });
    }
    void SetUp() override { Questions = 0; }

    QStringList Saved;
    bool Refuses = false;
    bool ReadOnly = false;
    static inline int Questions = 0;
};

TEST_F(ComfortableEditorTest, ClosingWithChangesAsks) {
    const struct {
        QMessageBox::StandardButton Button;
        bool Stays;
        QStringList Saved;
    } cases[] = {{QMessageBox::Cancel, true, {}},
                 {QMessageBox::Discard, false, {}},
                 {QMessageBox::Save, false, {"xa"}}};
    for (const auto& c : cases)
        for (const char* way : {"Cancel", "close", "Escape"}) {
            Saved.clear();
            Questions = 0;
            EditFile("a", [&](TOpenEditor& editor, TfrmJavaScriptEditor& form) {
                EXPECT_FALSE(form.isWindowModified());
                editor.Type("x");
                EXPECT_TRUE(QTest::qWaitFor([&] { return form.isWindowModified(); }));
                Answer(c.Button);
                if (way[0] == 'C')
                    editor.Click("Cancel");
                else if (way[0] == 'c')
                    form.close();
                else
                    form.reject();
                EXPECT_EQ(editor.IsOpen(), c.Stays) << way;
                EXPECT_EQ(Questions, 1) << way;
                EXPECT_EQ(editor.Text(), "xa\n");
            });
            EXPECT_EQ(Saved, c.Saved) << way;
        }
    Questions = 0;
    EditFile("a", [](TOpenEditor& editor, TfrmJavaScriptEditor&) {
        editor.Type("x");
        editor.Key(Qt::Key_Z, Qt::ControlModifier); // as it was
        editor.Click("Cancel");
        EXPECT_FALSE(editor.IsOpen());
    });
    EXPECT_EQ(Questions, 0);
}

TEST_F(ComfortableEditorTest, SavingStaysAndARefusalKeepsEverything) {
    EditFile("a\n", [this](TOpenEditor& editor, TfrmJavaScriptEditor& form) {
        TAdvMemo& memo = form.Script();
        EXPECT_EQ(memo.Lines().Count(), 2); // the empty last line shows
        EXPECT_TRUE(form.windowTitle().startsWith("a.js"));
        editor.Type("x");
        Refuses = true;
        editor.Key(Qt::Key_S, Qt::ControlModifier);
        EXPECT_TRUE(QTest::qWaitFor([&] { return form.isWindowModified(); }));
        EXPECT_TRUE(memo.Caret().IsAt(1, 0));
        EXPECT_TRUE(memo.CanUndo());
        EXPECT_EQ(memo.GetModifiedState(0), lmModified);
        Refuses = false;
        editor.Key(Qt::Key_S, Qt::ControlModifier);
        EXPECT_EQ(Saved, QStringList("xa\n"));
        EXPECT_FALSE(form.isWindowModified());
        EXPECT_EQ(memo.GetModifiedState(0), lmSaved);
        EXPECT_TRUE(memo.CanUndo());
        editor.Click("OK");
        EXPECT_FALSE(editor.IsOpen());
    });
    EXPECT_EQ(Questions, 0);
}

TEST_F(ComfortableEditorTest, AnErrorIsMarkedWhileTypingAndSavedOnlyAfterAQuestion) {
    EditFile("", [this](TOpenEditor& editor, TfrmJavaScriptEditor& form) {
        editor.Type("var b = ;");
        const auto marked = [&form] { return !form.Script().ErrorMarks().Of(0).empty(); };
        EXPECT_TRUE(QTest::qWaitFor(marked));
        EXPECT_TRUE(form.Script().Caret().IsAt(9, 0)); // that moves nothing
        Answer(QMessageBox::Cancel);
        editor.Click("OK");
        EXPECT_TRUE(editor.IsOpen());
        EXPECT_EQ(Saved, QStringList());
        editor.Return();
        Answer(QMessageBox::Save);
        editor.Key(Qt::Key_S, Qt::ControlModifier);
        EXPECT_EQ(Saved, QStringList("var b = ;"));
        EXPECT_TRUE(editor.IsOpen());
        editor.Return();
        editor.Key(Qt::Key_Left);
        editor.Type("1");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !marked(); }));
    });
    EXPECT_EQ(Questions, 3); // the last one on leaving
}

TEST_F(ComfortableEditorTest, AFileThatCannotBeWrittenIsRead) {
    ReadOnly = true;
    EditFile("a", [](TOpenEditor& editor, TfrmJavaScriptEditor& form) {
        EXPECT_TRUE(form.windowTitle().contains("read-only"));
        editor.Type("x");
        EXPECT_EQ(editor.Text(), "a\n");
        editor.Key(Qt::Key_S, Qt::ControlModifier);
        editor.Click("OK");
        EXPECT_FALSE(editor.IsOpen());
    });
    EXPECT_EQ(Saved, QStringList());
}

TEST_F(ComfortableEditorTest, AScriptWithoutAFileKeepsItsForm) {
    string source = "a\r\n\tb";
    OnShown<TfrmJavaScriptEditor>([](TfrmJavaScriptEditor& form) {
        TOpenEditor editor(form);
        editor.Type("x");
        editor.Key(Qt::Key_S, Qt::ControlModifier); // confirms, and stays
        editor.Type("y");
        Answer(QMessageBox::Discard);
        editor.Click("Cancel");
    });
    EXPECT_TRUE(ScriptEditorHost().ScriptEdit(source, nullptr, nullptr));
    EXPECT_EQ(source, "xa\r\n\tb");
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
