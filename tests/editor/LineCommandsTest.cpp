// Commands for whole lines, and places by line and column.
#include "editor/edit/LineCommands.h"
#include "EditorFixture.h"
#include "editor/place/LinePlace.h"
#include "editor/style/JSMemoStyler.h"
#include "testing/MemoText.h"

namespace {

using TCommand = void (TLineCommands::*)();

struct TLineCase {
    const char* Name;
    TCommand Command;
    const char* Text;
    const char* After;
};

TEST(LineCommands, AreOneStepThatUndoTakesBack) {
    const TLineCase cases[] = {
        {"a line", &TLineCommands::ToggleComment, "ab|c", "// ab|c"},
        {"an indented line", &TLineCommands::ToggleComment, "  ab|c", "  // ab|c"},
        {"back", &TLineCommands::ToggleComment, "  // ab|c", "  ab|c"},
        {"back without a blank", &TLineCommands::ToggleComment, "//ab|c", "ab|c"},
        {"the caret in the mark", &TLineCommands::ToggleComment, " /|/ a", " |a"},
        {"the smallest indent", &TLineCommands::ToggleComment, "^  if\n    a\n\n  b|",
         "^  // if\n  //   a\n\n  // b|"},
        {"some commented", &TLineCommands::ToggleComment, "^// a\nb|", "^// // a\n// b|"},
        {"all commented", &TLineCommands::ToggleComment, "^// a\n\n  //b\n|c", "^a\n\n  b\n|c"},
        {"the start of a line isn't touched", &TLineCommands::ToggleComment, "a^b\n|c", "// a^b\n|c"},
        {"up", &TLineCommands::MoveUp, "a\nb|c\nd", "b|c\na\nd"},
        {"up at the top", &TLineCommands::MoveUp, "a|b\nc", "a|b\nc"},
        {"some up", &TLineCommands::MoveUp, "long\n^b\nc|c\nd", "^b\nc|c\nlong\nd"},
        {"down", &TLineCommands::MoveDown, "a|b\n\nc", "\na|b\nc"},
        {"some down", &TLineCommands::MoveDown, "^a\nb\n|c\nd", "c\n^a\nb\n|d"},
        {"down at the end", &TLineCommands::MoveDown, "a\nb|", "a\nb|"},
        {"copies", &TLineCommands::Duplicate, "x\na^b|", "x\nab\na^b|"},
    };
    TAdvJSMemoStyler styler;
    for (const TLineCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TEditor editor;
        editor.Styled(styler);
        GiveMarked(editor.Memo, c.Text);
        const std::string before = Marked(editor.Memo);
        TLineCommands commands(editor.Memo);
        (commands.*c.Command)();
        EXPECT_EQ(Marked(editor.Memo), c.After);
        EXPECT_LE(editor.Memo.UndoList().Count(), 1);
        editor.Memo.Undo();
        EXPECT_EQ(Marked(editor.Memo), before);
        editor.Memo.Redo();
        EXPECT_EQ(Marked(editor.Memo), c.After);
        editor.Memo.Undo();
        editor.Memo.Settings.FReadOnly = true;
        (commands.*c.Command)();
        EXPECT_EQ(Marked(editor.Memo), before);
    }
}

TEST(LineCommands, TakeWrappedLinesWhole) {
    TAdvJSMemoStyler styler;
    TEditor editor("one\na line that is cut in|to pieces\ntwo");
    editor.Styled(styler);
    editor.Memo.Settings.FRightMargin = 10;
    editor.Memo.SetWordWrap(wwRightMargin);
    TLineCommands commands(editor.Memo);
    commands.MoveUp();
    commands.ToggleComment();
    editor.Memo.SetWordWrap(wwNone);
    EXPECT_EQ(editor.Shown(), "// a line that is cut in|to pieces\none\ntwo");
}

TEST(LineCommands, OpenTheFoldsThatTheyWorkOn) {
    TAdvJSMemoStyler styler;
    TEditor editor("a {\n b\n}\nc|");
    editor.Styled(styler);
    editor.Memo.Folding().SetEnabled(true);
    editor.Memo.Folding().CollapseNode(0);
    TLineCommands(editor.Memo).MoveUp();
    EXPECT_EQ(editor.Shown(), "a {\n b\nc|\n}");
    EXPECT_EQ(editor.Memo.Folding().VisibleCount(), 4);
}

TEST(LinePlace, IsReadFromText) {
    const std::pair<const char*, std::optional<TLinePlace>> cases[] = {
        {"12", TLinePlace{12, 1}},    {" 3 : 7 ", TLinePlace{3, 7}}, {"3,7", TLinePlace{3, 7}},
        {"3:", TLinePlace{3, 1}},     {"0:0", TLinePlace{1, 1}},     {"", std::nullopt},
        {"x", std::nullopt},          {"-2", std::nullopt},          {"1:2:3", std::nullopt},
        {"99999999999", std::nullopt}};
    for (const auto& [text, place] : cases)
        EXPECT_EQ(ReadPlace(text), place) << text;
}

TEST(LinePlace, CountsWrappedLinesOnce) {
    TEditor editor("a line that is cut\nb|");
    editor.Memo.Settings.FRightMargin = 8;
    editor.Memo.SetWordWrap(wwRightMargin);
    EXPECT_EQ(PlaceOfCaret(editor.Memo), (TLinePlace{2, 2}));
    for (const TLinePlace& place :
         {TLinePlace{1, 1}, TLinePlace{1, 13}, TLinePlace{1, 19}, TLinePlace{2, 1}}) {
        GoToPlace(editor.Memo, place);
        EXPECT_EQ(PlaceOfCaret(editor.Memo), place);
    }
    GoToPlace(editor.Memo, {99, 99});
    EXPECT_EQ(PlaceOfCaret(editor.Memo), (TLinePlace{2, 2}));
}

} // namespace
