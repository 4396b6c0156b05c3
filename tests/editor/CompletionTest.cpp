// Completion and parameter hints, with the test in the place of windows and timer.
#include "editor/assist/Completion.h"
#include "EditorFixture.h"
#include "PlayedWindow.h"
#include "editor/style/JSMemoStyler.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

struct TCompletingEditor : TEditor {
    TAdvJSMemoStyler Styler;
    TPlayedWindow Window;
    TMemoCompletion Completion{Memo};
    std::vector<std::string> Tokens;

    explicit TCompletingEditor(const char* text = "|") : TEditor(text) {
        Styled(Styler);
        Completion.SetWindow(&Window);
        Memo.Scroll().Resize({8, 16}, 400, 160);
        Styler.FlistAuto = {
            {"Document."}, {"function Include (file: string) Boolean;"}, {"function Sleep ;"}};
        Styler.FHintParameter.Parameters = {"SaveAs (fileName: string, how: Integer) Boolean;", "None"};
        Completion.Events.OnGetAutoCompletionList = [this](const string& token, TCompletionList& list) {
            Tokens.push_back(token.toStdString());
            if (token == "DOCUMENT.")
                list = {{"function Save  Boolean;", ckFunc},
                        {"function SaveAs (fileName: string, how: Integer) Boolean;", ckFunc},
                        {"function Close ;", ckProc}};
        };
    }
    std::vector<std::string> Offered() const {
        std::vector<std::string> texts;
        for (const TCompletionEntry& entry : Completion.ListCompletion().Entries)
            texts.push_back(entry.Text.split(' ')[entry.Text.contains(' ') ? 1 : 0].toStdString());
        return texts;
    }
    void Fire() {
        ASSERT_EQ(Window.Delay, Completion.FAutoCompletion.Delay);
        Completion.TimerFired();
    }
};

TEST(Completion, OpensBehindAStartTokenAfterTheDelay) {
    TCompletingEditor editor;
    editor.Type("x = Document.");
    ASSERT_FALSE(editor.Completion.IsOpen());
    editor.Fire();
    ASSERT_TRUE(editor.Completion.IsOpen());
    EXPECT_EQ(editor.Window.Delay, -1);
    EXPECT_EQ(editor.Tokens, std::vector<std::string>{"DOCUMENT."});
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs", "Close"));
    EXPECT_EQ(editor.Completion.ListCompletion().ItemIndex, 0);
    // 13 columns of 8 behind the gutter; below the first row.
    EXPECT_EQ(editor.Window.List.Left, 100 + 40 + 13 * 8);
    EXPECT_EQ(editor.Window.List.Top, 200 + 16 + 2);
}

TEST(Completion, AKeyWithinTheDelayStopsTheTimer) {
    TCompletingEditor editor;
    editor.Type("Document.S");
    EXPECT_EQ(editor.Window.Delay, -1);
    editor.Completion.FAutoCompletion.AutoDisplay = false;
    editor.Type(".");
    editor.Fire();
    EXPECT_FALSE(editor.Completion.IsOpen());
    editor.Completion.FAutoCompletion.Active = false;
    editor.Type(".");
    EXPECT_EQ(editor.Window.Delay, -1);
}

TEST(Completion, TypingNarrowsAndBackspaceWidens) {
    TCompletingEditor editor;
    editor.Type("Document.");
    editor.Fire();
    editor.Type("s");
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs"));
    editor.Type("avea");
    EXPECT_THAT(editor.Offered(), ElementsAre("SaveAs"));
    EXPECT_EQ(editor.Shown(), "Document.savea|");
    editor.Type("\b");
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs"));
    editor.Type("xyz");
    EXPECT_THAT(editor.Offered(), ElementsAre());
    editor.Type("\n"); // nothing is selected
    EXPECT_TRUE(editor.Completion.IsOpen());
    editor.Type("\b\b\b\b\b\b\b");
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs", "Close"));
    editor.Completion.FAutoCompletion.FromFirstChar = false;
    editor.Type("os");
    EXPECT_THAT(editor.Offered(), ElementsAre("Close"));
    editor.Type("\b\b\b"); // the dot goes, and the list with it
    EXPECT_FALSE(editor.Completion.IsOpen());
    EXPECT_EQ(editor.Shown(), "Document|");
}

TEST(Completion, CtrlSpaceCompletesTheWordAtTheCaret) {
    TCompletingEditor editor("(in|");
    editor.Key(keySpace, ssCtrl);
    EXPECT_THAT(editor.Offered(), ElementsAre("Include"));
    editor.Type("\x1b");
    EXPECT_FALSE(editor.Completion.IsOpen());
    editor.Given("Document.sa|");
    editor.Key(keySpace, ssCtrl);
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs"));
    editor.Type("\t");
    EXPECT_FALSE(editor.Completion.IsOpen());
    editor.Given("nothing|");
    editor.Key(keySpace, ssCtrl);
    EXPECT_FALSE(editor.Completion.IsOpen());
    editor.Given("|");
    editor.Memo.Settings.FReadOnly = true;
    editor.Key(keySpace, ssCtrl);
    EXPECT_FALSE(editor.Completion.IsOpen());
    editor.Memo.Settings.FReadOnly = false;
    editor.Completion.Events.OnBeforeAutoCompletion = [](const string&, bool& allow) { allow = false; };
    editor.Key(keySpace, ssCtrl);
    EXPECT_FALSE(editor.Completion.IsOpen());
}

struct TAcceptance {
    const char* Text;
    int Index;
    const char* Keys;
    const char* Expected;
};

TEST(Completion, AcceptedEntriesReplaceTheWord) {
    const std::vector<TAcceptance> cases{
        {"Document.sa|", 1, "\n", "Document.SaveAs(|)"},
        {"Document.sa|", 1, " ", "Document.SaveAs(|)"},
        {"Document.sa| x", 0, "\n", "Document.Save| x"},
        {"Document.cl|", 0, "\n", "Document.Close|"},
        {"in|", 0, "\n", "Include(|)"},
        {"y[do|]", 0, "\n", "y[Document.|]"},
        {"x=do|", 0, "\n", "Document.|"}, // no blank before the word: all of it goes, on purpose
    };
    for (const TAcceptance& c : cases) {
        TCompletingEditor editor(c.Text);
        editor.Key(keySpace, ssCtrl);
        ASSERT_TRUE(editor.Completion.IsOpen()) << c.Text;
        editor.Key(keyDown, 0, c.Index);
        const std::string before = editor.Lines();
        editor.Type(c.Keys);
        EXPECT_EQ(editor.Shown(), c.Expected) << c.Text;
        EXPECT_FALSE(editor.Completion.IsOpen());
        editor.Memo.Undo();
        EXPECT_EQ(editor.Lines(), before); // one step
    }
}

TEST(Completion, ClicksAndOwnTexts) {
    TCompletingEditor editor("Document.sa|ve");
    editor.Key(keySpace, ssCtrl);
    editor.Completion.ListClicked(1);
    EXPECT_EQ(editor.Shown(), "Document.SaveAs(|)"); // a click replaces the whole word, a key up to the caret
    editor.Given("|");
    editor.Styler.FlistAuto = {{"var a:b"}};
    editor.Key(keySpace, ssCtrl);
    editor.Completion.ListClicked(0);
    EXPECT_EQ(editor.Shown(), "a:b|"); // and has no stop at a colon
    editor.Given("|");
    editor.Key(keySpace, ssCtrl);
    editor.Type("\n");
    EXPECT_EQ(editor.Shown(), "a|");
    editor.Completion.Events.OnInsertAutoCompletionEntry = [](string& text) { text = "own (text)"; };
    editor.Given("|");
    editor.Key(keySpace, ssCtrl);
    editor.Type("\n");
    EXPECT_EQ(editor.Shown(), "own (text)|");
}

TEST(Completion, FilteringCutsEntriesBehindTheirDot) {
    TCompletingEditor editor("Do|");
    editor.Key(keySpace, ssCtrl);
    EXPECT_THAT(editor.Offered(), ElementsAre("Document."));
    editor.Type("c"); // nothing is left of "Document." to be found
    EXPECT_THAT(editor.Offered(), ElementsAre());
    editor.Type("\x1b");
    editor.Given("x'do|'");
    editor.Key(keySpace, ssCtrl);
    ASSERT_TRUE(editor.Completion.IsOpen());
    editor.Completion.ListClicked(0);
    EXPECT_EQ(editor.Shown(), "x'Document.|'"); // a click stops at quotes, a key doesn't
}

TEST(Completion, OtherKeysInTheList) {
    TCompletingEditor editor("|");
    bool cancelled = false;
    editor.Completion.Events.OnCancelAutoCompletion = [&] { cancelled = true; };
    editor.Key(keySpace, ssCtrl);
    editor.Key(keyEnd);
    EXPECT_EQ(editor.Completion.ListCompletion().ItemIndex, 2);
    editor.Key(keyDown);
    editor.Key(keyUp);
    EXPECT_EQ(editor.Completion.ListCompletion().ItemIndex, 1);
    editor.Type(";");
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(editor.Shown(), "|"); // the key is used up
    EXPECT_FALSE(editor.Window.ListShown);
    editor.Given("|ab");
    editor.Completion.Events.OnGetAutoCompletionListIndex = [](const string&, const TCompletionList&,
                                                               int& index) { index = 2; };
    editor.Styler.FlistAuto.push_back({"abx"});
    editor.Completion.ShowCompletionList();
    EXPECT_EQ(editor.Completion.ListCompletion().ItemIndex, 2);
    editor.Key(keyDelete);
    EXPECT_EQ(editor.Shown(), "|b");
    EXPECT_TRUE(editor.Completion.IsOpen());
    editor.Completion.ListDeactivated();
    EXPECT_FALSE(editor.Completion.IsOpen());
}

TEST(Completion, KeepsTheLastSizeAndThenAutoWidthIsOffForGood) {
    TCompletingEditor editor("|");
    TAutoCompletion& settings = editor.Completion.FAutoCompletion;
    settings.KeepLastSize = true;
    editor.Key(keySpace, ssCtrl);
    // The widest: the kind's column, the name in bold with its blank, the rest, the scroll bar and a margin.
    EXPECT_EQ(editor.Window.List.Width, 90 + 8 * 12 + 23 * 10 + 16 + 8);
    editor.Window.List.Width = 123;
    editor.Window.List.Height = 45;
    editor.Type("\x1b");
    EXPECT_FALSE(settings.AutoWidth);
    editor.Key(keySpace, ssCtrl);
    EXPECT_EQ(editor.Window.List.Width, 123);
    EXPECT_EQ(editor.Window.List.Height, 45);
    editor.Type("\x1b");
    settings.AutoWidth = true;
    settings.MaxWidth = 150;
    editor.Key(keySpace, ssCtrl);
    EXPECT_EQ(editor.Window.List.Width, 150);
}

TEST(CompletionBox, DrawsKindsNamesAndParameters) {
    TAutoCompletion settings;
    settings.ShowImages = true;
    TAutoCompletionListBox box(settings);
    box.Entries = {{"function F(a)", ckFunc}, {"x", ckIdentifier}, {"var y[1]", ckVar}};
    const TPlayedWindow metrics;
    EXPECT_EQ(box.AutoAdaptWidth(metrics), 90 + 12 + 30 + 20 + 16 + 8);
    EXPECT_EQ(box.ItemHeight(), 16);
    EXPECT_EQ(box.ImageOf(0), 3);
    EXPECT_EQ(box.ImageOf(1), -1);
    EXPECT_EQ(box.PiecesOf(0, /*selected=*/false, metrics),
              (std::vector<TEntryPiece>{{"function ", 20, false, true, 0x00800000},
                                        {"F", 110, true, false, {}},
                                        {"(a)", 122, false, false, {}}}));
    EXPECT_EQ(box.PiecesOf(1, /*selected=*/true, metrics),
              (std::vector<TEntryPiece>{{"x", 0, true, false, {}}}));
    EXPECT_FALSE(box.PiecesOf(2, /*selected=*/true, metrics)[0].Colored);
}

TEST(ParameterHint, FindsTheOpenCall) {
    struct TCall {
        const char16_t* Line;
        int Result;
        const char* Word;
        int Count;
    };
    const std::vector<TCall> calls{
        {u"f(", 1, "f", 0},      {u"a.f(x, y, ", 3, "a.f", 2}, {u"f(g(1), ", -1, "", 0},
        {u"f(     ", -1, "", 0}, // five blanks
        {u"f(    ", 1, "f", 0},  {u"f (", 2, "", 0},           {u"x=f(", 3, "x=f", 0},
        {u"abc", 0, "", 0},      {u"f(a.....", -1, "", 0},
    };
    for (const TCall& c : calls) {
        string word;
        int count = 0;
        EXPECT_EQ(FindHintCall(c.Line, 99, {}, word, count), c.Result);
        if (c.Result < 0)
            continue;
        EXPECT_EQ(word, c.Word);
        EXPECT_EQ(count, c.Count);
    }
}

TEST(ParameterHint, ShowsTheCurrentParameterInBold) {
    TCompletingEditor editor("Document.saveas(|");
    const TAdvHintForm& hint = editor.Window.Hint;
    editor.Key(keySpace, ssCtrl | ssShift);
    ASSERT_TRUE(editor.Window.HintShown);
    EXPECT_EQ((std::vector<string>{hint.part1, hint.part2, hint.part3}),
              (std::vector<string>{"", "fileName: string", ", how: Integer"}));
    EXPECT_EQ(hint.Active, 2);
    EXPECT_EQ(hint.Place, (TMemoRect{100 + 40 + 16 * 8, 200 + 16, 16 * 12 + 14 * 10 + 6, 19}));
    editor.Type("\"a\",");
    editor.Completion.Hint().ShowParameterHint();
    EXPECT_EQ((std::vector<string>{hint.part1, hint.part2, hint.part3}),
              (std::vector<string>{"fileName: string,", " how: Integer", ""}));
    EXPECT_EQ(hint.Place.Left, 100 + 40 + 16 * 8); // an open hint keeps its left
    editor.Type(" 1,");
    editor.Completion.Hint().ShowParameterHint();
    EXPECT_EQ(hint.part2, "");
    EXPECT_EQ(hint.Active, 1);
    editor.Type(")");
    editor.Completion.Hint().ShowParameterHint();
    EXPECT_FALSE(editor.Window.HintShown);
}

TEST(ParameterHint, GoesWithTheLineAndByItsModes) {
    TCompletingEditor editor("saveas(|\nunknown(");
    TParameterHint& hint = editor.Completion.Hint();
    hint.RestTimerFired();
    EXPECT_TRUE(editor.Window.HintShown);
    editor.Key(keyDown);
    EXPECT_FALSE(editor.Window.HintShown);
    hint.OnGetParameterHint = [](const string& word, string& text, bool& handled) {
        text = word + "(mine)";
        handled = true;
    };
    editor.Key(keyEnd);
    hint.ShowParameterHint();
    EXPECT_EQ(editor.Window.Hint.part2, "mine");
    hint.SetAutoHintParameters(hpManual);
    EXPECT_FALSE(editor.Window.HintShown);
    hint.RestTimerFired();
    EXPECT_FALSE(editor.Window.HintShown);
    hint.SetAutoHintParameters(hpNone);
    editor.Key(keySpace, ssCtrl | ssShift);
    EXPECT_FALSE(editor.Window.HintShown);
}

TEST(AutoCorrect, ReplacesFinishedWords) {
    TCompletingEditor editor("|");
    editor.Completion.FAutoCorrect.OldValue = {"fuction", "lone"};
    editor.Completion.FAutoCorrect.NewValue = {"function"};
    editor.Type("fuction lone ");
    EXPECT_EQ(editor.Shown(), "function lone |");
    editor.Completion.FAutoCorrect.Active = false;
    editor.Type("fuction ");
    EXPECT_EQ(editor.Shown(), "function lone fuction |");
}

struct TYieldingEditor : TCompletingEditor {
    explicit TYieldingEditor(const char* text = "|") : TCompletingEditor(text) {
        Styler.UseTodaysLanguage();
        Completion.FAutoCompletion.Yielding = true;
        Memo.KeepExactHistory(100);
    }
};

TEST(YieldingCompletion, NoKeyIsLostWhereverTheListOpens) {
    for (const QString script :
         {"for (var i = 0; i < 3; i++) { f(\"a, b\"); }", "Document.Save \nx = Document.Close ;",
          "a.b = 1.5; // Document. and\nDocument.SaveAs('x. y', 2)\n  s.SaveAs "}) {
        for (int pause = 1; pause <= script.size(); ++pause) {
            TYieldingEditor editor;
            editor.Memo.Settings.FAutoIndent = false;
            editor.Type(script.left(pause).toUtf8());
            if (editor.Window.Delay >= 0)
                editor.Completion.TimerFired();
            editor.Type(script.mid(pause).toUtf8());
            ASSERT_EQ(editor.Lines(), script.toStdString()) << "pause behind " << pause;
        }
    }
}

TEST(YieldingCompletion, KeysChooseWhatWasTypedAtOrMovedTo) {
    struct {
        const char* Typed; // behind "Document.", with the list open
        std::vector<int> Keys;
        const char* Text;
        bool Open;
    } const cases[] = {
        {"", {keyReturn}, "Document.\n|", false},
        {"", {keyDown, keyReturn}, "Document.SaveAs(|)", false},
        {"", {keyDown, keySpace}, "Document.SaveAs(|)", false},
        {"Cl", {keyReturn}, "Document.Close|", false},
        {"Cl", {keySpace}, "Document.Close |", false},
        {"Cl", {keyTab}, "Document.Close|", false},
        {"Save", {keyReturn}, "Document.Save\n|", false}, // it is there in full
        {"Sx", {}, "Document.Sx|", false},                // nothing fits
        {"Sx", {keyBackspace}, "Document.S|", false},
        {"Save", {keyBackspace}, "Document.Sav|", true},
        {"", {keyBackspace}, "Document|", false},
        {"S", {keyLeft}, "Document.|S", false},
        {"S(", {}, "Document.S(|", false},
        {"", {keyEscape}, "Document.|", false},
    };
    for (const auto& test : cases) {
        TYieldingEditor editor;
        editor.Type("Document.");
        editor.Fire();
        ASSERT_TRUE(editor.Completion.IsOpen());
        editor.Type(test.Typed);
        for (const int key : test.Keys) {
            editor.Memo.KeyDown(key, 0);
            const char16_t c = key == keyReturn      ? keyEnterChar
                               : key == keySpace     ? u' '
                               : key == keyTab       ? keyTabChar
                               : key == keyBackspace ? keyBackspaceChar
                               : key == keyEscape    ? keyEscapeChar
                                                     : 0;
            if (c)
                editor.Memo.KeyPress(c);
        }
        EXPECT_EQ(editor.Shown(), test.Text) << test.Typed;
        EXPECT_EQ(editor.Completion.IsOpen(), test.Open) << test.Text;
    }
}

TEST(YieldingCompletion, OpensBehindDotsThatHaveMembersAndOnRequest) {
    struct {
        const char* Typed;
        bool Opens;
    } const cases[] = {{"Document.", true},   {"f(", false},     {"// Document.", false},
                       {"'Document.", false}, {"other.", false}, {"x = Document.", true}};
    for (const auto& test : cases) {
        TYieldingEditor editor;
        editor.Type(test.Typed);
        editor.Completion.TimerFired();
        EXPECT_EQ(editor.Completion.IsOpen(), test.Opens) << test.Typed;
    }
    TYieldingEditor editor("x = Doc|");
    editor.Key(keySpace, ssCtrl);
    EXPECT_THAT(editor.Offered(), ElementsAre("Document."));
    editor.Type("\n"); // chosen: its members follow
    EXPECT_EQ(editor.Shown(), "x = Document.|");
    EXPECT_THAT(editor.Offered(), ElementsAre("Save", "SaveAs", "Close"));
    editor.Key(keyZ, ssCtrl);
    EXPECT_EQ(editor.Shown(), "x = Doc|"); // one step
    EXPECT_FALSE(editor.Completion.IsOpen());
}

TEST(YieldingCompletion, PutsTheCaretInsideBracketsThatEndACutLine) {
    TYieldingEditor editor("Incl|   ");
    editor.Memo.Settings.FRightMargin = 9; // as wide as "Include()"
    editor.Memo.SetWordWrap(wwRightMargin);
    editor.Key(keySpace, ssCtrl);
    editor.Type("\n");
    EXPECT_EQ(editor.Shown(), "Include(|)\n");
    editor.Key(keyZ, ssCtrl);
    EXPECT_EQ(editor.Lines(), "Incl   "); // one step
}

} // namespace
