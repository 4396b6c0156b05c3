// The exact history: whatever is done, undoing and redoing go through the very texts that were there.
//
// MORVANE_EDITOR_SESSIONS sets the number of random sessions, MORVANE_EDITOR_SEED the first seed.
#include "EditorFixture.h"
#include "PlayedWindow.h"
#include "editor/edit/LineCommands.h"
#include "editor/edit/TextSearch.h"
#include "editor/style/JSMemoStyler.h"

#include <map>
#include <random>

namespace {

struct TExactEditor : TEditor {
    TAdvJSMemoStyler Styler;
    explicit TExactEditor(const char* text = "|", int limit = 1000) {
        Styler.UseTodaysLanguage();
        Memo.Rules().FCaseSensitive = true;
        Styled(Styler);
        Memo.Settings.TurnOnComforts();
        Memo.Folding().SetEnabled(true);
        Memo.KeepExactHistory(limit);
        Given(text);
    }
    [[nodiscard]] std::string AfterUndo(int steps) {
        while (steps-- > 0)
            Key(keyZ, ssCtrl);
        return Shown();
    }
};

TEST(ExactHistory, GivesBackWhatTheRuleLoses) {
    struct {
        const char* Text;
        std::function<void(TExactEditor&)> Do;
        const char* Done;
        int Steps;
        const char* Undone;
    } const cases[] = {
        {"  a|   b  ", [](auto& e) { e.Type("\n"); }, "  a\n  |b", 1, "  a|   b  "}, // blanks come back
        {"|", [](auto& e) { e.Type("//\nreturn value"), e.Key(keyHome), e.Key(keyBackspace); },
         "//|return value", 2, "//\n|"},
        {"ab|c", [](auto& e) { e.Memo.Settings.FOverwrite = true, e.Type("x"); }, "abx|", 1, "ab|c"},
        {"|a \nb\nc",
         [](auto& e) { // the caret leaves a line that is trimmed then
             e.Memo.Settings.FTrimTrailingSpaces = true;
             e.Memo.Selection().Take({0, 0, 0, 2}, /*block=*/false);
             e.Key(keyTab);
         },
         "    a\n    b\n|c", 1, "|a \nb\nc"},
        {"one|", [](auto& e) { e.Type(" two"), e.Type(" three"); }, "one two three|", 1, "one|"},
        {"|", [](auto& e) { e.Type("a\nb\nc"); }, "a\nb\nc|", 1, "a\nb\n|"}, // one line at most
        {"abc|d", [](auto& e) { e.Key(keyBackspace, 0, 3); }, "|d", 1, "abc|d"},
    };
    for (const auto& test : cases) {
        TExactEditor editor(test.Text);
        test.Do(editor);
        EXPECT_EQ(editor.Shown(), test.Done);
        EXPECT_EQ(editor.AfterUndo(test.Steps), test.Undone) << test.Done;
        for (int i = 0; i < test.Steps; ++i)
            editor.Key(keyZ, ssCtrl | ssShift); // redoes
        EXPECT_EQ(editor.Shown(), test.Done);
    }
}

TEST(ExactHistory, TellsTheSavedTextAndItsLines) {
    TExactEditor editor("a|\nb");
    EXPECT_TRUE(editor.Memo.UndoList().IsAtSaved());
    editor.Type("x");
    EXPECT_EQ(editor.Memo.GetModifiedState(0), lmModified);
    EXPECT_FALSE(editor.Memo.UndoList().IsAtSaved());
    (void)editor.AfterUndo(1);
    EXPECT_EQ(editor.Memo.GetModifiedState(0), lmUnmodified); // the strip goes
    EXPECT_TRUE(editor.Memo.UndoList().IsAtSaved());
    editor.Type("y");
    editor.Memo.MarkSaved();
    EXPECT_EQ(editor.Memo.GetModifiedState(0), lmSaved);
    editor.Type("z"); // doesn't merge into what was saved
    (void)editor.AfterUndo(1);
    EXPECT_TRUE(editor.Memo.UndoList().IsAtSaved());
    EXPECT_EQ(editor.Memo.GetModifiedState(0), lmSaved);
    (void)editor.AfterUndo(1);
    EXPECT_FALSE(editor.Memo.UndoList().IsAtSaved());
    EXPECT_EQ(editor.Memo.GetModifiedState(0), lmModified); // the file holds "ay"
}

/// Random work on a script, with the text noted at every state of the history.
class TSession {
public:
    explicit TSession(unsigned seed)
        : FRandom(seed),
          FEditor("function f() {\n    if (a) {\n        b(\"c\");\n    }\n}\n|", seed % 3 ? 15 : 1000) {
        FCompletion.SetWindow(&FWindow);
        FCompletion.FAutoCompletion.Yielding = true;
        FEditor.Styler.FlistAuto = {{"Document."}, {"function beta (c: string) Boolean;"}, {"function f ;"}};
        Note();
    }
    ~TSession() { FCompletion.SetWindow(nullptr); }

    void Run() {
        for (int i = 0; i < 80; ++i) {
            Step();
            if (testing::Test::HasFatalFailure())
                return;
        }
        TAdvMemo& memo = FEditor.Memo;
        const std::string last = Text();
        const int undone = memo.UndoList().Position();
        while (memo.CanUndo())
            Back();
        while (memo.CanRedo())
            Forth();
        for (int i = 0; i < undone && !testing::Test::HasFatalFailure(); ++i)
            Back();
        ASSERT_EQ(Text(), last); // wrapping may cut otherwise
    }

private:
    int Below(int limit) { return int(FRandom() % unsigned(limit)); }
    void Note() {
        FEditor.Memo.UndoList().Flush();
        FTexts[FEditor.Memo.UndoList().Here()] = Text();
    }
    std::string Text() { return FEditor.Memo.WholeText().toStdString(); }
    void Back() {
        FEditor.Memo.Undo();
        Compare();
    }
    void Forth() {
        FEditor.Memo.Redo();
        Compare();
    }
    void Compare() {
        const auto noted = FTexts.find(FEditor.Memo.UndoList().Here());
        ASSERT_NE(noted, FTexts.end()) << FTrace; // it was more than one step
        ASSERT_EQ(Text(), noted->second);
    }
    void Keys(int key) {
        const TShiftState shift = Below(3) ? 0 : TShiftState(ssCtrl);
        for (int count = 1 + Below(3); count > 0; --count) {
            FEditor.Key(key, shift);
            Note();
        }
    }
    void Step() {
        TAdvMemo& memo = FEditor.Memo;
        TLineCommands commands(memo);
        FLastStep = int(FRandom() % 16);
        FTrace += char('a' + FLastStep);
        switch (FLastStep) {
        case 0:
            FEditor.Key(
                std::vector<int>{keyLeft, keyRight, keyUp, keyDown, keyHome, keyEnd}[size_t(Below(6))],
                TShiftState(Below(4)));
            break;
        case 1:
            Keys(keyBackspace);
            break;
        case 2:
            Keys(keyDelete);
            break;
        case 3: {
            const int y1 = Below(memo.Lines().Count()), y2 = Below(memo.Lines().Count());
            memo.Caret().MoveTo(Below(memo.LineLength(y2) + 1), y2);
            memo.Selection().Take({Below(memo.LineLength(y1) + 1), y1, memo.Caret().X(), y2}, Below(5) == 0);
            break;
        }
        case 4:
            FEditor.Clipboard.Held = QString("p\tq\r\n{ x }  \n\n").left(Below(14));
            memo.Blocks().PasteFromClipBoard();
            break;
        case 5:
            Below(2) ? FEditor.Key(keyTab, Below(2) ? TShiftState(ssShift) : 0) : commands.ToggleComment();
            break;
        case 6:
            Below(2) ? commands.MoveUp() : commands.Duplicate();
            break;
        case 7:
            memo.Folding().CollapseAround(Below(8));
            break;
        case 8: {
            TTextSearch search(memo);
            search.SetQuery({Below(2) ? "b" : "\\s+", false, false, true, true});
            (void)search.ReplaceAll(Below(2) ? "q\\n" : "");
            break;
        }
        case 12:
            FEditor.Key(keySpace, ssCtrl); // a completion, accepted
            FCompletion.AcceptCompletionEntry(AddBrackets::Yes);
            FCompletion.CloseCompletionList();
            break;
        case 9:
            memo.CanUndo() ? Back() : void();
            return;
        case 10:
            memo.CanRedo() ? Forth() : void();
            return;
        case 11:
            if (Below(8) == 0) {
                memo.Settings.FRightMargin = 5 + Below(20);
                memo.SetWordWrap(memo.Settings.FWordWrap == wwNone ? wwRightMargin : wwNone);
            } else if (Below(4) == 0) {
                memo.MarkSaved();
            }
            break;
        default:
            for (const char c : QByteArray("ab  {}\n(\"/*'1.)]").mid(Below(16), 1 + Below(3))) {
                FEditor.Type(QByteArray(1, c));
                Note(); // each may be a step
            }
        }
        Note();
        if (memo.Lines().Count() > 200) {
            memo.SelectAll();
            memo.Blocks().DeleteSelection();
            Note();
        }
    }

    std::mt19937 FRandom;
    TExactEditor FEditor;
    TPlayedWindow FWindow;
    TMemoCompletion FCompletion{FEditor.Memo};
    std::map<unsigned, std::string> FTexts;
    int FLastStep = 0;
    std::string FTrace;
};

TEST(ExactHistory, NoSessionLosesText) {
    const int sessions = Setting("MORVANE_EDITOR_SESSIONS", 200);
    const auto first = unsigned(Setting("MORVANE_EDITOR_SEED", 1));
    for (unsigned seed = first; seed < first + unsigned(sessions); ++seed) {
        TSession(seed).Run();
        if (HasFatalFailure())
            FAIL() << "seed " << seed;
    }
}

} // namespace
