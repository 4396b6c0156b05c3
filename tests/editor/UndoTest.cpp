// The history: what merges, what is dropped, and what an undo doesn't bring back.
#include "EditorFixture.h"
#include "base/Exceptions.h"

namespace {

TEST(Undo, TypingMergesWhereItGoesOn) {
    TEditor editor("xy|z");
    editor.Type("abc");
    editor.Key(keyLeft);
    editor.Type("d");
    EXPECT_EQ(editor.Memo.UndoList().Count(), 2);
    editor.Memo.Undo();
    EXPECT_EQ(editor.Shown(), "xyab|cz");
    editor.Memo.Undo();
    EXPECT_EQ(editor.Shown(), "xy|z");
    EXPECT_FALSE(editor.Memo.CanUndo());
    editor.Memo.Redo();
    editor.Memo.Redo();
    EXPECT_EQ(editor.Shown(), "xyabd|cz");
}

TEST(Undo, LineBreaksMergeUnlessLineByLine) {
    for (const bool lineByLine : {false, true}) {
        TEditor editor("  |");
        editor.Memo.Settings.FUndoLineByLine = lineByLine;
        editor.Type("a\nb\n");
        EXPECT_EQ(editor.Shown(), "  a\n  b\n  |");
        EXPECT_EQ(editor.Memo.UndoList().Count(), lineByLine ? 4 : 1);
        while (editor.Memo.CanUndo())
            editor.Memo.Undo();
        EXPECT_EQ(editor.Shown(), "  |");
        while (editor.Memo.CanRedo())
            editor.Memo.Redo();
        EXPECT_EQ(editor.Shown(), "  a\n  b\n  |");
        EXPECT_TRUE(editor.Memo.Settings.FAutoIndent); // off only meanwhile
        // Only the entry of typing marks the lines that a redo breaks.
        EXPECT_EQ(editor.Memo.GetModifiedState(2), lineByLine ? lmUnmodified : lmModified);
    }
}

TEST(Undo, DeletionsMergeByDirection) {
    TEditor editor("|abcd");
    editor.Key(keyDelete, 0, 3);
    ASSERT_EQ(editor.Memo.UndoList().Count(), 1);
    EXPECT_EQ(editor.Memo.UndoList().Get(0).FUndoText, "cba"); // undoing turns that right
    editor.Key(keyEnd);
    editor.Key(keyBackspace);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 2);
    editor.Memo.Undo();
    editor.Memo.Undo();
    EXPECT_EQ(editor.Shown(), "|abcd");
}

TEST(Undo, TypingMergesIntoAnUndoneEntry) {
    TEditor editor("|xyz");
    editor.Type("ab");
    editor.Memo.Undo();
    int told = 0;
    editor.Memo.Events.FOnUndoChange = [&](bool, bool) { ++told; };
    editor.At(2, 0);
    editor.Type("c");
    EXPECT_EQ(editor.Memo.UndoList().Get(0).FUndoText, "abc");
    EXPECT_EQ(editor.Memo.UndoList().Position(), 1); // still undone, with what was just typed
    EXPECT_EQ(told, 0);
    editor.Memo.Redo();
    EXPECT_EQ(editor.Lines(), "abcxycz");
}

TEST(Undo, ANewEntryDropsWhatWasUndone) {
    TEditor editor("|xyz");
    editor.Type("ab");
    editor.Memo.Undo();
    editor.Key(keyEnd);
    editor.Key(keyBackspace);
    EXPECT_FALSE(editor.Memo.CanRedo());
    EXPECT_EQ(editor.Memo.UndoList().Count(), 1);
}

TEST(Undo, KeepsAHundredEntriesWhateverLimitIsSet) {
    TEditor editor("|");
    for (int i = 0; i < 101; ++i) {
        editor.At(0, 0); // nothing merges
        editor.Type("x");
    }
    EXPECT_EQ(editor.Memo.UndoList().Count(), 100);
    EXPECT_TRUE(editor.Memo.CanUndo());
    editor.Memo.SetUndoLimit(100);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 100);
    editor.Memo.SetUndoLimit(5);
    EXPECT_EQ(editor.Memo.UndoLimit(), 100);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 0);
}

TEST(Undo, TakesBackOnlyCharactersThatAreStillThere) {
    TEditor editor("|");
    editor.Type("abc");
    editor.Memo.Lines().Put(0, "aXc");
    editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "aX"); // the walk stops matching at the stranger
}

TEST(Undo, RecordsNothingWhilePerforming) {
    TEditor editor("|");
    editor.Type("a");
    int results = 0;
    editor.Memo.Events.OnChange = [&] {
        if (editor.Memo.UndoList().IsPerforming())
            results += editor.Memo.AddUndoStep(std::make_unique<TIndentUndo>(0, 0, 1));
    };
    editor.Memo.Undo();
    EXPECT_LT(results, 0);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 1);
}

TEST(Undo, OnlyRedoTellsOfAChangeByItself) {
    TEditor editor("|a");
    editor.Type("b");
    editor.Key(keyInsert);
    int told = 0;
    editor.Memo.Events.OnChange = [&] { ++told; };
    editor.Memo.Undo();
    EXPECT_EQ(told, 0);
    editor.Memo.Redo();
    EXPECT_EQ(told, 1);
}

TEST(Undo, ALinkedEntryWithoutItsPartnerBlocksTheHistory) {
    TEditor editor("ab|");
    editor.Memo.AddUndoStep(std::make_unique<TPasteUndo>(0, 0, 2, 0, "ab", /*linked=*/true));
    EXPECT_THROW(editor.Memo.Undo(), Exception);
    EXPECT_TRUE(editor.Memo.UndoList().IsPerforming());
    EXPECT_FALSE(editor.Memo.Settings.FAutoIndent);
    editor.Type("x");
    EXPECT_EQ(editor.Memo.UndoList().Count(), 1); // nothing is recorded any more
    editor.Given("ab|");                          // until the text is replaced
    editor.Type("x");
    EXPECT_TRUE(editor.Memo.CanUndo());
}

TEST(Undo, ACorrectionWithoutPlacesLeavesTheColumn) {
    TEditor editor("a\nbcd|");
    editor.Memo.Lines().Put(1, "bxd");
    editor.Memo.AddUndoStep(std::make_unique<TCorrectUndo>(1, "bcd"));
    editor.Memo.Undo();
    EXPECT_EQ(editor.Shown(), "a\nbcd|");
    editor.At(0, 0);
    editor.Memo.Redo();
    EXPECT_EQ(editor.Shown(), "a\n|bxd");
}

struct TInexact {
    const char* Name;
    const char* From;
    void (*Do)(TEditor&);
    const char* Undone;
    const char* Redone;
};

/// All on purpose: the history keeps what was typed, not the lines.
TEST(Undo, DoesNotBringBack) {
    const std::vector<TInexact> cases{
        {"a character typed over another", "|ab", [](TEditor& e) { e.Key(keyInsert), e.Type("x"); }, "ab",
         "ab"},
        {"blanks behind a line break", "a|b  ", [](TEditor& e) { e.Type("\n"); }, "ab", "a\nb"},
        {"blanks that indentation replaces", "  a|  b", [](TEditor& e) { e.Type("\n"); }, "  ab", "  a\n  b"},
        {"fewer blanks than an unindent asks for", "| a",
         [](TEditor& e) { e.Memo.Blocks().BlockIndent(0, 0, -4, RecordUndo::Yes); }, "    a", "a"},
        {"trailing blanks of a line that was left", "|\n",
         [](TEditor& e) {
             e.Memo.Settings.FTrimTrailingSpaces = true;
             e.Type("a b  "), e.Key(keyDown);
         },
         "\n", "a b  \n"},
        {"text under cuts that are gone", "aaa bbb|",
         [](TEditor& e) {
             e.Memo.Settings.FRightMargin = 4;
             e.Memo.SetWordWrap(wwRightMargin);
             e.Type("x");
             e.Memo.SetWordWrap(wwNone);
         },
         "aaa bbbx", "aaax bbbx"},
        {"blanks that a smart backspace joins", "a\nb\n    |c",
         [](TEditor& e) {
             e.Memo.Settings.FSmartTabs = true;
             e.At(0, 2), e.Type("    "), e.Memo.Undo();
         },
         "a\nb\n    c", "a\nb\n        c"},
    };
    for (const TInexact& c : cases) {
        TEditor editor(c.From);
        c.Do(editor);
        if (editor.Memo.CanUndo())
            editor.Memo.Undo();
        EXPECT_EQ(editor.Lines(), c.Undone) << c.Name;
        editor.Memo.Redo();
        EXPECT_EQ(editor.Lines(), c.Redone) << c.Name;
    }
}

} // namespace
