// Moves of caret and selection.
#include "EditorFixture.h"
#include "editor/style/JSMemoStyler.h"

namespace {

struct TMove {
    const char* From;
    int Key;
    TShiftState Shift;
    const char* To;
};

TEST(Caret, MovesWithinTheLines) {
    const std::vector<TMove> moves{
        {"ab|\ncd", keyRight, 0, "ab\n|cd"},
        {"ab|  \ncd", keyRight, 0, "ab  \n|cd"}, // blanks at the end don't count
        {"ab\ncd|", keyRight, 0, "ab\n|cd"},     // at the end of the text the caret jumps to the line's start
        {"ab\n|cd", keyLeft, 0, "ab|\ncd"},
        {"|ab", keyLeft, 0, "|ab"},
        {"abcd|\nef", keyDown, 0, "abcd\nef|"},
        {"ab|", keyDown, 0, "ab|"},
        {"  foo bar  |", keyEnd, 0, "  foo bar|  "},
        {"  foo| bar", keyHome, 0, "|  foo bar"},
        {"a\nb|\nc", keyHome, ssCtrl, "|a\nb\nc"},
        {"a|\nb\nccc", keyEnd, ssCtrl, "a\nb\nccc|"},
        {"foo.bar (baz|)", keyLeft, ssCtrl, "foo.bar (|baz)"},
        {"foo.bar |(baz)", keyLeft, ssCtrl, "foo.|bar (baz)"},
        {"foo.|bar (baz)", keyRight, ssCtrl, "foo.bar |(baz)"},
        {"foo|\n bar", keyRight, ssCtrl, "foo\n| bar"},
        {"foo\n|bar", keyLeft, ssCtrl, "foo|\nbar"},
    };
    TAdvJSMemoStyler styler;
    for (const TMove& move : moves) {
        TEditor editor(move.From);
        editor.Styled(styler);
        editor.Key(move.Key, move.Shift);
        EXPECT_EQ(editor.Shown(), move.To) << move.From << " key " << std::hex << move.Key;
    }
}

TEST(Caret, EnhancedHomeWalksToWordsBehindBlanks) {
    TEditor editor("  foo bar|");
    editor.Memo.Settings.FEnhancedHomeKey = true;
    for (const char* expected : {"  foo |bar", "  |foo bar", "|  foo bar", "|  foo bar"}) {
        editor.Key(keyHome);
        EXPECT_EQ(editor.Shown(), expected);
    }
}

TEST(Caret, AutoExpandPadsShortLines) {
    TEditor editor("abcd|\ne");
    editor.Memo.Settings.FAutoExpand = true;
    editor.Key(keyDown);
    EXPECT_EQ(editor.Shown(), "abcd\ne   |");
    editor.Key(keyRight, 0, 2);
    EXPECT_EQ(editor.Shown(), "abcd\ne     |");
    editor.Memo.Lines().Clear();
    editor.Memo.Caret().SetColumn(2);
    EXPECT_EQ(editor.Shown(), "  |");
}

TEST(Caret, TrimsTheLineThatItLeaves) {
    TEditor editor("ab  |\ncd");
    editor.Memo.Settings.FTrimTrailingSpaces = true;
    editor.Key(keyDown);
    EXPECT_EQ(editor.Lines(), "ab\ncd");
    editor.Given("aa bb");
    editor.Memo.Settings.FRightMargin = 4;
    editor.Memo.SetWordWrap(wwRightMargin);
    editor.Key(keyDown);
    EXPECT_EQ(editor.Lines(), "aa \nbb"); // not where a wrapped continuation follows
}

TEST(Caret, TellsOfMoves) {
    TEditor editor("ab|\ncd");
    std::string told;
    editor.Memo.Events.FOnColumnChange = [&](int x) { told.append("x").append(std::to_string(x)); };
    editor.Memo.Events.FOnActiveLineChange = [&](int y) { told.append("y").append(std::to_string(y)); };
    editor.Key(keyDown);
    EXPECT_EQ(told.substr(0, 4), "y1x2");
}

TEST(Selection, GrowsWithShiftOnlyFromWhereItEnded) {
    TEditor editor("ab|cd\nef");
    editor.Key(keyRight, ssShift);
    editor.Key(keyDown, ssShift);
    EXPECT_EQ(editor.Memo.Selection().Range(), (TSelectionRange{2, 0, 2, 1}));
    EXPECT_EQ(editor.Memo.SelText(), "cd\ref");
    editor.Memo.Caret().MoveTo(0, 0); // elsewhere: the selection doesn't stretch to here
    editor.Key(keyRight, ssShift);
    EXPECT_TRUE(editor.Memo.Selection().IsEmpty());
    editor.Key(keyRight, ssShift);
    EXPECT_EQ(editor.Memo.SelText(), "b");
    editor.Key(keyLeft);
    EXPECT_TRUE(editor.Memo.Selection().IsEmpty());
}

TEST(Selection, BlocksAreRectangles) {
    TEditor editor("abcd\ne\nfghi");
    editor.Memo.Settings.FSelectionMode = smBlock;
    editor.Memo.Settings.FAutoExpand = true;
    editor.At(3, 2);
    editor.Key(keyUp, ssShift, 2);
    editor.Key(keyLeft, ssShift, 2);
    EXPECT_EQ(editor.Memo.Selection().Ordered(), (TSelectionRange{1, 0, 3, 2}));
    EXPECT_EQ(editor.Memo.SelText(), "bc\r  \rgh"); // the caret padded the short line
    editor.Key(keyDelete);
    EXPECT_EQ(editor.Shown(), "a|d\ne\nfi");
    editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "abcd\ne  \nfghi");
    EXPECT_EQ(editor.Memo.SelText(), "bc\r  \rgh");
    editor.Memo.Redo();
    EXPECT_EQ(editor.Lines(), "ad\ne\nfi");
}

TEST(Selection, SingleLineStaysInItsLine) {
    TEditor editor("ab|cd\nefgh");
    editor.Memo.Settings.FSelectSingleLine = true;
    editor.Key(keyRight, ssShift, 5);
    EXPECT_EQ(editor.Shown(), "abcd|\nefgh");
    EXPECT_EQ(editor.Memo.SelText(), "cd");
    editor.Key(keyDown, ssShift);
    EXPECT_EQ(editor.Memo.Selection().Range().StartY, 1);
}

struct TTestView : TMemoView {
    TScrollRange Range;
    int Repaints = 0;
    void RepaintRows(int, int) override { ++Repaints; }
    void RepaintAll() override { ++Repaints; }
    void CaretMoved() override {}
    void RestartCaretBlink() override {}
    void ScrollChanged(const TScrollRange& range) override { Range = range; }
};

struct TShownEditor : TEditor {
    TTestView View;
    /// 20 lines of 30 characters in a view of 10 columns and 5 rows.
    TShownEditor() {
        Memo.View = &View;
        std::string text = "|";
        for (int i = 0; i < 20; ++i)
            text += std::string(30, char('a' + i)) + (i < 19 ? "\n" : "");
        Given(text.c_str());
        Memo.Scroll().Resize({8, 16}, 87, 95);
    }
    std::pair<int, int> Corner() { return {Memo.Scroll().LeftCol(), Memo.Scroll().TopLine()}; }
};

using TCorner = std::pair<int, int>;

TEST(Scroll, FollowsTheCaret) {
    TShownEditor editor;
    editor.At(10, 0);
    EXPECT_EQ(editor.Corner(), (TCorner{2, 0})); // two columns inside the right edge
    editor.At(1, 5);
    EXPECT_EQ(editor.Corner(), (TCorner{0, 1}));
    editor.At(15, 0);
    editor.At(6, 0);
    EXPECT_EQ(editor.Corner(), (TCorner{4, 0})); // two columns of context on the left
    editor.Key(keyPageDown);
    EXPECT_EQ(editor.Memo.Caret().Y(), 5);
    EXPECT_EQ(editor.Corner().second, 5);
    editor.Key(keyPageDown, ssCtrl);
    EXPECT_EQ(editor.Memo.Caret().Y(), 19);
    EXPECT_EQ(editor.View.Range.Top, 15);
    EXPECT_EQ(editor.View.Range.Rows, 20);
    EXPECT_EQ(editor.View.Range.PageRows, 5);
    editor.Key(keyPageUp, ssCtrl);
    editor.Key(keyDown, ssCtrl);
    EXPECT_EQ(editor.Corner().second, 1);
    EXPECT_EQ(editor.Memo.Caret().Y(), 1); // drawn along from above
    editor.At(0, 5);
    editor.Key(keyUp, ssCtrl);
    EXPECT_EQ(editor.Memo.Caret().Y(), 4);
}

TEST(Scroll, StrictModeWithoutBarsHoldsTheCaretInstead) {
    TShownEditor editor;
    editor.Memo.Settings.FScrollBars = sbNone;
    editor.Memo.Settings.FScrollMode = smStrict;
    editor.Key(keyEnd);
    EXPECT_EQ(editor.Corner(), (TCorner{0, 0}));
    EXPECT_EQ(editor.Memo.Caret().X(), 9);
    editor.Key(keyDown, 0, 9);
    EXPECT_EQ(editor.Memo.Caret().Y(), 4);
}

TEST(Scroll, CompoundEditsRepaintOnce) {
    TShownEditor editor;
    editor.Memo.Blocks().InsertBuffer("a");
    editor.View.Repaints = 0;
    editor.Memo.Blocks().BlockIndent(0, 19, 2, RecordUndo::Yes);
    EXPECT_EQ(editor.View.Repaints, 1);
}

TEST(Folding, FindsBlocksAndSkipsClosedOnes) {
    TAdvJSMemoStyler styler;
    TEditor editor("a {\n b {\n c\n }\n}\nd {}\n} e {\nf\n}");
    editor.Styled(styler);
    TMemoFolding& folding = editor.Memo.Folding();
    folding.SetEnabled(true);
    const auto prop = [&](int row) { return editor.Memo.Lines().GetLineProp(row); };
    EXPECT_EQ(folding.FoldEnd(0), 4);
    EXPECT_EQ(folding.FoldEnd(1), 3);
    EXPECT_EQ(folding.FoldEnd(5), 5);
    EXPECT_EQ(folding.FoldEnd(6), 8);
    EXPECT_TRUE(prop(2)->FHasParent && prop(4)->FHasParent);
    EXPECT_FALSE(prop(5)->FHasParent);
    editor.At(0, 2);
    folding.CollapseNode(0);
    EXPECT_EQ(editor.Memo.Caret().Y(), 0); // drawn out of what closes
    EXPECT_EQ(folding.VisibleCount(), 5);
    editor.Key(keyDown);
    EXPECT_EQ(editor.Memo.Caret().Y(), 5);
    editor.Memo.Caret().SetColumn(0);
    editor.Key(keyLeft);
    EXPECT_EQ(editor.Memo.Caret().Y(), 0);
    editor.Memo.Lines().Delete(0); // the fold goes with its first line
    EXPECT_EQ(folding.VisibleCount(), 8);
    EXPECT_EQ(folding.FoldEnd(0), 2);
    EXPECT_FALSE(prop(3)->FHasParent);
}

TEST(Words, PlacesAndWords) {
    TEditor editor("var x = foo.bar|(1)");
    EXPECT_EQ(editor.Memo.Words().WordAtCursor(), "foo.bar(1)"); // without a styler
    TAdvJSMemoStyler styler;
    editor.Styled(styler);
    EXPECT_EQ(editor.Memo.Words().WordAtCursor(), "bar");
    EXPECT_EQ(editor.Memo.Words().FullWordAtCursor(), "foo.bar");
    EXPECT_EQ(editor.Memo.Words().TokenAtXY(9, 0), "foo");
    editor.At(10, 0);
    EXPECT_EQ(editor.Memo.Words().WordTillCursor(), "fo");
    editor.Given("aa bb\ncc");
    editor.Memo.Settings.FRightMargin = 4;
    editor.Memo.SetWordWrap(wwRightMargin);
    ASSERT_EQ(editor.Lines(), "aa \nbb\ncc");
    for (int offset = 0; offset <= 8; ++offset) {
        int x = 0, y = 0;
        editor.Memo.Words().PosFromText(offset, x, y);
        EXPECT_EQ(editor.Memo.Words().TextFromPos(x, y), offset); // cuts count nothing
        EXPECT_EQ(y, offset < 3 ? 0 : offset < 6 ? 1 : 2);
    }
}

} // namespace
