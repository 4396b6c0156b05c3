// Search and replacement.
#include "EditorFixture.h"
#include "editor/edit/TextSearch.h"
#include "editor/style/JSMemoStyler.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

enum TQueryFlags { Plain = 0, Case = 1, Words = 2, Regex = 4, NoWrap = 8 };

TSearchQuery Query(const char* text, int flags = Plain) {
    return {text, (flags & Case) != 0, (flags & Words) != 0, (flags & Regex) != 0, (flags & NoWrap) == 0};
}

struct TSearchingEditor : TEditor {
    TTextSearch Search{Memo};
    explicit TSearchingEditor(const char* text, const char* query = "", int flags = Plain) : TEditor(text) {
        Search.MostTime = 60'000; // the machine may be busy
        Search.SetQuery(Query(query, flags));
    }
    /// "row:from-row:to" of what is selected.
    std::string Place() const {
        const TSelectionRange range = Memo.Selection().Range();
        return QString("%1:%2-%3:%4")
            .arg(range.StartY)
            .arg(range.StartX)
            .arg(range.EndY)
            .arg(range.EndX)
            .toStdString();
    }
    /// The places of all matches, forward from the caret.
    std::vector<std::string> Walk(bool forward = true) {
        std::vector<std::string> places;
        while (places.size() < 20 && (forward ? Search.FindNext() : Search.FindPrevious()) == TFound::Yes)
            places.push_back(Place());
        return places;
    }
};

struct TFindCase {
    const char* Text;
    const char* Query;
    int Flags;
    std::vector<std::string> Places;
};

TEST(TextSearch, FindsAllMatchesBothWays) {
    const TFindCase cases[] = {
        {"|Anna anna\nhanna", "anna", NoWrap, {"0:0-0:4", "0:5-0:9", "1:1-1:5"}},
        {"|Anna anna\nhanna", "anna", NoWrap | Case, {"0:5-0:9", "1:1-1:5"}},
        {"|Anna anna\nhanna", "anna", NoWrap | Words, {"0:0-0:4", "0:5-0:9"}},
        {"|aaaa", "aa", NoWrap, {"0:0-0:2", "0:2-0:4"}},
        {"|a.b a+b", "a+b", NoWrap, {"0:4-0:7"}},
        {"|ab aab", "a+b", NoWrap | Regex, {"0:0-0:2", "0:3-0:6"}},
        {"|a\nbc\na", "^a$", NoWrap | Regex, {"0:0-0:1", "2:0-2:1"}},
        {"|x {\n\n} {}", "\\{\\s*\\}", NoWrap | Regex, {"0:2-2:1", "2:2-2:4"}},
        {"|ab\nab", "^", NoWrap | Regex, {"1:0-1:0"}}, // the first is where the search stands already
        {"|f(x) foo", "f|foo", NoWrap | Regex | Words, {"0:0-0:1", "0:5-0:8"}},
        {"|\xC3\x84pfel \xC3\xA4pfel", "\xC3\xA4pfel", NoWrap, {"0:0-0:5", "0:6-0:11"}},
        {"|abc", "x", NoWrap, {}},
        {"|abc", "", NoWrap, {}},
    };
    for (const TFindCase& c : cases) {
        SCOPED_TRACE(std::string(c.Query) + " in " + c.Text);
        TSearchingEditor editor(c.Text, c.Query, c.Flags);
        EXPECT_EQ(editor.Walk(), c.Places);
        editor.At(editor.Memo.LineLength(editor.Memo.Lines().Count() - 1), editor.Memo.Lines().Count() - 1);
        std::vector<std::string> back = editor.Walk(false);
        std::reverse(back.begin(), back.end());
        if (std::string(c.Query) == "^")
            back.erase(back.begin());
        EXPECT_EQ(back, c.Places);
    }
}

TEST(TextSearch, WrapsAroundAndCounts) {
    TSearchingEditor editor("one two one\ntwo| one", "one");
    EXPECT_EQ(editor.Search.FindNext(), TFound::Yes);
    EXPECT_EQ(editor.Search.Count().Current, 3);
    EXPECT_EQ(editor.Search.FindNext(), TFound::Wrapped);
    EXPECT_EQ(editor.Place(), "0:0-0:3");
    EXPECT_EQ(editor.Search.FindPrevious(), TFound::Wrapped);
    EXPECT_EQ(editor.Place(), "1:4-1:7");
    EXPECT_EQ(editor.Search.Count().Count, 3);
    editor.Type("x"); // the selection goes, and with it the match
    EXPECT_EQ(editor.Search.Count().Count, 2);
    EXPECT_THAT(editor.Search.ColumnsOf(0), ElementsAre(TColumnRange{0, 3}, TColumnRange{8, 11}));
}

TEST(TextSearch, EmptyMatchesNeverStall) {
    TSearchingEditor editor("|a\xF0\x9F\x98\x80\nb", "x*", Regex);
    std::vector<std::string> places;
    for (int i = 0; i < 5; ++i) {
        ASSERT_NE(editor.Search.FindNext(), TFound::No);
        places.push_back(editor.Place());
    }
    EXPECT_THAT(places, ElementsAre("0:1-0:1", "0:3-0:3", "1:0-1:0", "1:1-1:1", "0:0-0:0"));
    EXPECT_FALSE(editor.Search.Count().Capped);
    EXPECT_TRUE(editor.Search.Error().isEmpty());
    EXPECT_EQ(editor.Search.ReplaceAll("-"), 5);
    EXPECT_EQ(editor.Lines(), "-a-\xF0\x9F\x98\x80-\n-b-");
}

TEST(TextSearch, TellsWhatIsWrongWithAnExpression) {
    TSearchingEditor editor("|aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa!", "a(b", Regex);
    EXPECT_FALSE(editor.Search.Error().isEmpty());
    EXPECT_EQ(editor.Search.ErrorColumn(), 4);
    EXPECT_EQ(editor.Search.FindNext(), TFound::No);
    EXPECT_EQ(editor.Search.ReplaceAll("x"), 0);
    editor.Search.SetQuery(Query("(a+)+$", Regex)); // grows without bounds in the length of the text
    EXPECT_EQ(editor.Search.FindNext(), TFound::No);
    EXPECT_FALSE(editor.Search.Error().isEmpty());
    editor.Search.SetQuery(Query("a!", Plain));
    EXPECT_EQ(editor.Search.FindNext(), TFound::Yes);
    EXPECT_TRUE(editor.Search.Error().isEmpty());
}

TEST(TextSearch, FindsWhatAWrapCutsAndWhatAFoldHides) {
    TSearchingEditor wrapped("|first words here\nmore", "words here");
    wrapped.Memo.Settings.FRightMargin = 14;
    wrapped.Memo.SetWordWrap(wwRightMargin);
    ASSERT_EQ(wrapped.Memo.Lines().Count(), 3);
    EXPECT_EQ(wrapped.Search.FindNext(), TFound::Yes);
    EXPECT_EQ(wrapped.Memo.SelText(), "words here");
    EXPECT_EQ(wrapped.Search.ReplaceAll("w"), 1);
    wrapped.Memo.SetWordWrap(wwNone);
    EXPECT_EQ(wrapped.Lines(), "first w\nmore");

    TAdvJSMemoStyler styler;
    TSearchingEditor folded("|a {\n b {\n  c\n }\n}", "c");
    folded.Styled(styler);
    folded.Memo.Folding().SetEnabled(true);
    folded.Memo.Folding().CollapseNode(1);
    folded.Memo.Folding().CollapseNode(0);
    ASSERT_FALSE(folded.Memo.Folding().IsVisible(2));
    EXPECT_EQ(folded.Search.FindNext(), TFound::Yes);
    EXPECT_TRUE(folded.Memo.Folding().IsVisible(2));
}

struct TReplaceCase {
    const char* Text; // the bar is the caret
    const char* Query;
    int Flags;
    const char* By;
    const char* After;
};

TEST(TextSearch, ReplacesAllAsOneUndoStep) {
    const TReplaceCase cases[] = {
        {"a b| a\nc a", "a", Plain, "xyz", "xyz b| xyz\nc xyz"},
        {"a b| a", "a", Plain, "", " b| "},
        {"aba|", "a", Plain, "$1\\1", "$1\\1b$1\\1|"},
        {"f(x, y)|;", "\\((\\w), (\\w)\\)", Regex, "($2, \\1)", "f(y, x)|;"},
        {"|ab", "(a)(b)", Regex, "$0\\0$$\\\\$3", "|abab$\\$3"},
        {"a;b|", ";", Regex, ";\\n", "a;\nb|"},
        {"a\n|b\nc", "\\n", Regex, "", "a|bc"},
        {"x\n  |tail  \ny  ", " +$", Regex, "", "x\n  |tail\ny"},
        {"|", "^$", Regex, "new", "|new"},
        {"a long match| here", "long match here", Plain, "it", "a it|"},
    };
    for (const TReplaceCase& c : cases) {
        SCOPED_TRACE(std::string(c.Query) + " in " + c.Text);
        TSearchingEditor editor(c.Text, c.Query, c.Flags);
        EXPECT_GT(editor.Search.ReplaceAll(c.By), 0);
        EXPECT_EQ(editor.Shown(), c.After);
        EXPECT_EQ(editor.Memo.UndoList().Count(), 1);
        editor.Memo.Undo();
        EXPECT_EQ(editor.Shown(), c.Text);
        editor.Memo.Redo();
        EXPECT_EQ(editor.Shown(), c.After);
        editor.Memo.Undo();
        EXPECT_EQ(editor.Shown(), c.Text);
        editor.Memo.Settings.FReadOnly = true;
        EXPECT_EQ(editor.Search.ReplaceAll(c.By), 0);
    }
}

TEST(TextSearch, ReplacesOneAfterTheOther) {
    TSearchingEditor editor("|ab ab\nab", "a(b)", Regex);
    EXPECT_EQ(editor.Search.Replace("<$1>"), TFound::Yes); // nothing is selected yet
    EXPECT_EQ(editor.Lines(), "ab ab\nab");
    EXPECT_EQ(editor.Search.Replace("<$1>"), TFound::Yes);
    EXPECT_EQ(editor.Search.Replace("<$1>"), TFound::Yes);
    EXPECT_EQ(editor.Search.Replace("<$1>"), TFound::No);
    EXPECT_EQ(editor.Lines(), "<b> <b>\n<b>");
    for (int i = 0; i < 3; ++i)
        editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "ab ab\nab");
    EXPECT_FALSE(editor.Memo.CanUndo());
}

TEST(TextSearch, TakesManyMatchesAtOnce) {
    string text;
    for (int i = 0; i < 5000; ++i)
        text += QString("var item%1 = Document.Item(%1);\n").arg(i);
    TSearchingEditor editor("|");
    editor.Memo.SetText(text);
    editor.At(4, 2500);
    editor.Search.SetQuery(Query("item", Words));
    EXPECT_EQ(editor.Search.Count().Count, 5000);
    EXPECT_FALSE(editor.Search.Count().Capped);
    EXPECT_EQ(editor.Search.ReplaceAll("Entry"), 5000);
    EXPECT_EQ(editor.Memo.LineText(4999), "var item4999 = Document.Entry(4999);");
    EXPECT_TRUE(editor.Memo.Caret().IsAt(4, 2500));
    EXPECT_EQ(editor.Memo.GetModifiedState(17), lmModified);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 1);
    editor.Memo.Undo();
    EXPECT_EQ(editor.Memo.Text(), text);

    editor.Memo.Lines().Put(17, "other;");
    editor.Memo.SetModifiedStateInt(17, lmSaved);
    EXPECT_EQ(editor.Search.ReplaceAll("Entry"), 4999);
    EXPECT_EQ(editor.Memo.GetModifiedState(17), lmSaved); // in the stretch, but unchanged
    editor.Memo.Undo();

    // More than are listed: what lies behind is found all the same.
    editor.Search.SetQuery(Query("m"));
    const TMatchCount count = editor.Search.Count();
    EXPECT_TRUE(count.Capped);
    EXPECT_LE(count.Count, TTextSearch::MostCounted);
    editor.At(0, 4999);
    EXPECT_EQ(editor.Search.FindNext(), TFound::Yes);
    EXPECT_EQ(editor.Place(), "4999:7-4999:8");
    EXPECT_THAT(editor.Search.ColumnsOf(4999),
                ElementsAre(TColumnRange{7, 8}, TColumnRange{19, 20}, TColumnRange{27, 28}));
    EXPECT_EQ(editor.Search.FindPrevious(), TFound::Yes);
    EXPECT_EQ(editor.Place(), "4998:27-4998:28");
}

} // namespace
