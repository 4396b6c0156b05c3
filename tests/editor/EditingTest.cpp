// Edits by keys and calls, with their undo; and the line store under a control.
#include "EditorFixture.h"
#include "editor/style/JSMemoStyler.h"
#include "testing/MemoText.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

namespace {

struct TEdit {
    const char* From;
    void (*Do)(TEditor&);
    const char* To;
};

void Check(const std::vector<TEdit>& edits, void (*prepare)(TEditor&) = nullptr) {
    for (const TEdit& edit : edits) {
        TEditor editor(edit.From);
        if (prepare)
            prepare(editor);
        edit.Do(editor);
        EXPECT_EQ(editor.Shown(), edit.To) << edit.From;
    }
}

TEST(Editing, Plain) {
    Check({
        {"a|b", [](TEditor& e) { e.Type("xy"); }, "axy|b"},
        {"a|b", [](TEditor& e) { e.Type("\t"); }, "a    |b"}, // tabs don't go to stops
        {"  a|  b ", [](TEditor& e) { e.Type("\n"); }, "  a\n  |b"},
        {" |  a", [](TEditor& e) { e.Type("\n"); }, " \n |a"}, // no deeper than the caret
        {"a\n|b", [](TEditor& e) { e.Key(keyBackspace); }, "a|b"},
        {"|a", [](TEditor& e) { e.Key(keyBackspace); }, "|a"},
        {"a|\nb", [](TEditor& e) { e.Key(keyDelete); }, "a|b"},
        {"|ab", [](TEditor& e) { e.Key(keyDelete); }, "|b"},
        {"a|", [](TEditor& e) { e.Key(keyDelete); }, "a|"},
        {"foo bar|", [](TEditor& e) { e.Key(keyBackspace, ssCtrl); }, "foo |"},
        {"x\n|ab", [](TEditor& e) { e.Key(keyBackspace, ssCtrl); }, "x|ab"}, // and it stops at the line
        {"a\n|b\nc", [](TEditor& e) { e.Memo.Editing().DeleteLine(); }, "a\n|c"},
        {"a\nb|", [](TEditor& e) { e.Memo.Editing().DeleteLine(); }, "|a"},
        {"ab|cd", [](TEditor& e) { e.Key(keyTab, ssShift); }, "|abcd"},
        {"abcdef|", [](TEditor& e) { e.Key(keyTab, ssShift); }, "ab|cdef"},
        {"ab|cd", [](TEditor& e) { e.Key(keyTab, ssCtrl); }, "ab|cd"},
        {"a|b", [](TEditor& e) { e.Key(keyInsert), e.Type("xyz"); }, "axyz|"},
        {"a|bcdefg", [](TEditor& e) { e.Key(keyInsert), e.Type("\t"); }, "abcde|fg"},
        {"a|bc", [](TEditor& e) { e.Key(keyInsert), e.Type("\t"); }, "abc  |"},
        {"ab|", [](TEditor& e) { e.Memo.Caret().Write(5, 0), e.Memo.Editing().InsertChar('x'); },
         "ab   x|  "}, // as many blanks as the caret has columns, not as the gap has
    });
}

TEST(Editing, Selections) {
    struct {
        const char* From;
        void (*Do)(TEditor&);
        const char* To;
    } const cases[] = {
        {"a^bcd\nef|gh", [](TEditor& e) { e.Type("x"); }, "ax|gh"},
        {"a^b\nefgh|", [](TEditor& e) { e.Key(keyDelete); }, "a|"}, // the caret's old column pads nothing
        {"a|bcd\ne^fgh", [](TEditor& e) { e.Key(keyDelete); }, "a|fgh"},
        {"a^b|cd", [](TEditor& e) { e.Type("\n"); }, "a\n|cd"},
        {"a^b|cd", [](TEditor& e) { e.Type("\t"); }, "ab    |cd"}, // Tab in one line replaces nothing
        {"^a\nb\n|c", [](TEditor& e) { e.Key(keyTab); }, "    a\n    b\n|c"}, // counts from column 1
        {"^      a\n  b\nc|", [](TEditor& e) { e.Key(keyTab, ssShift); }, "  a\nb\nc|"},
        {"a^bc|d", [](TEditor& e) { e.Memo.Settings.FDelErase = false, e.Type("x"); }, "abcx|d"},
    };
    for (const auto& c : cases) {
        TEditor editor;
        GiveMarked(editor.Memo, c.From);
        c.Do(editor);
        EXPECT_EQ(editor.Shown(), c.To) << c.From;
    }
}

TEST(Editing, SmartTabs) {
    const auto smart = [](TEditor& e) { e.Memo.Settings.FSmartTabs = true; };
    Check(
        {
            {"foo bar\n|x", [](TEditor& e) { e.Type("\t"); }, "foo bar\n    |x"},
            {"foo bar\nq\nab|x  ", [](TEditor& e) { e.Type("\t"); }, "foo bar\nq\nab  |x"}, // trims the rest
            {"a\n|x", [](TEditor& e) { e.Type("\t"); }, "a\n    |x"},
            {"  foo bar\nq\n        |x", [](TEditor& e) { e.Key(keyBackspace); }, "  foo bar\nq\n|x"},
            {"a\n    |x", [](TEditor& e) { e.Key(keyBackspace); }, "a\n   |x"}, // the first two lines
            {"  foo bar\n\n      |x", [](TEditor& e) { e.Key(keyBackspace); }, "  foo bar\n\n  |x"},
        },
        smart);
    TEditor editor("foo bar\n|x");
    smart(editor);
    editor.Type("\t");
    EXPECT_EQ(editor.Memo.UndoList().Get(0).FUndoText, "\r    "); // a line break that was never typed
    editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "foo barx"); // the undo takes the one before it for that
    editor.Memo.Redo();
    EXPECT_EQ(editor.Lines(), "\n    foo barx"); // and the redo types it
}

TEST(Editing, Clipboard) {
    TEditor editor("abcd\nefgh");
    editor.Select({2, 0, 1, 1});
    editor.Memo.KeyPress(QChar(3));
    EXPECT_EQ(editor.Clipboard.Held, "cd\ne");
    editor.Key(keyDelete, ssShift);
    EXPECT_EQ(editor.Shown(), "ab|fgh");
    editor.Clipboard.Held = "1\r\n2\t";
    editor.Memo.KeyPress(QChar(22));
    EXPECT_EQ(editor.Shown(), "ab1\n2    |fgh");
    editor.Select({0, 0, 1, 1});
    editor.Key(keyInsert, ssShift);
    EXPECT_EQ(editor.Shown(), "1\n2    |    fgh");
    editor.Memo.Undo(); // the deletion and the paste are one step
    EXPECT_EQ(editor.Lines(), "ab1\n2    fgh");
    EXPECT_EQ(editor.Memo.SelText(), "ab1\r2");
    editor.Memo.Redo();
    EXPECT_EQ(editor.Lines(), "1\n2        fgh");
    editor.Clipboard.Held = "kept";
    editor.Key(keyInsert, ssCtrl);
    EXPECT_EQ(editor.Clipboard.Held, "kept"); // nothing selected, nothing copied
}

TEST(Editing, ReadOnlyLetsUndoThroughAndNothingElse) {
    TEditor editor("a|b");
    editor.Type("x");
    editor.Memo.Settings.FReadOnly = true;
    editor.Type("y\n\t");
    editor.Key(keyBackspace);
    editor.Key(keyDelete);
    editor.Clipboard.Held = "p";
    editor.Memo.KeyPress(QChar(22));
    editor.Memo.KeyPress(QChar(1));
    EXPECT_EQ(editor.Shown(), "ax|b");
    EXPECT_TRUE(editor.Memo.Selection().IsEmpty()); // not even Ctrl+A
    editor.Key(keyZ, ssCtrl);
    EXPECT_EQ(editor.Shown(), "a|b");
    editor.Key(keyY, ssCtrl); // but redo isn't
    EXPECT_EQ(editor.Shown(), "a|b");
    editor.Memo.Settings.FReadOnly = false;
    editor.Memo.Events.FOnAllowEdit = [] { return false; };
    editor.Type("q");
    editor.Key(keyBackspace);
    EXPECT_EQ(editor.Lines(), "ab");
}

TEST(Editing, OverwriteToggleLooksAtTheOldestEntries) {
    TEditor editor("|ab");
    editor.Key(keyInsert);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 0); // nothing to hang it on
    editor.Key(keyInsert);
    editor.Type("x");
    editor.Key(keyInsert, 0, 3);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 4);
    editor.Memo.Undo();
    EXPECT_FALSE(editor.Memo.Settings.FOverwrite);
    editor.Memo.Redo();
    EXPECT_TRUE(editor.Memo.Settings.FOverwrite);
    editor.Memo.UndoList().Delete(3); // now both oldest are toggles
    editor.Key(keyInsert);
    EXPECT_EQ(editor.Memo.UndoList().Count(), 3);
    editor.Memo.Events.FOnOverwriteToggle = [](bool& allow) { allow = false; };
    editor.Key(keyInsert);
    EXPECT_FALSE(editor.Memo.Settings.FOverwrite);
}

struct TTestChecker : TAdvMemoChecker {
    bool ChecksLines() const override { return true; }
    bool ChecksWords() const override { return true; }
    string CheckLine(const string& line) override { return string(line).replace("teh", "the"); }
    string CheckWord(const string& word) override { return word == "adn" ? string("and") : word; }
};

TEST(Typing, CorrectsFinishedWords) {
    TEditor editor("|");
    TTestChecker checker;
    editor.Memo.FMemoChecker = &checker;
    editor.Memo.Events.FonWordComplete = [](string& word) {
        if (word == "fn")
            word = "function";
    };
    editor.Type("adn fn(");
    EXPECT_EQ(editor.Shown(), "and function(|");
    editor.Type(" teh\n");
    EXPECT_EQ(editor.Lines(), "and function( the\n");
    editor.Memo.Undo();
    editor.Memo.Undo(); // the correction, as a swap of the whole line
    EXPECT_EQ(editor.Lines(), "and function( teh");
    editor.At(0, 0);
    editor.Memo.Redo();
    EXPECT_EQ(editor.Lines(), "and function( the");
}

TEST(Typing, CharCaseAndKeyPress) {
    TEditor editor("|");
    editor.Memo.Settings.FCharCase = ecUpperCase;
    editor.Memo.Events.OnKeyPress = [](QChar& c) {
        if (c == 'b')
            c = QChar();
    };
    editor.Type("ab\x7f");
    editor.Memo.KeyPress(QChar(0x0431));
    EXPECT_EQ(editor.Lines(), "A\u0411");
    std::string asked;
    editor.Memo.Events.FOnFind = [&] { asked += 'f'; };
    editor.Memo.Events.FOnReplace = [&] { asked += 'h'; };
    editor.Key(keyF, ssCtrl);
    editor.Key(keyH, ssCtrl);
    EXPECT_EQ(asked, "fh");
}

TEST(Lines, ActLikeEditsUnderAControl) {
    TEditor editor("a\nb\n|c");
    TAdvMemoStrings& lines = editor.Memo.Lines();
    editor.Memo.Bookmarks().Set(3, 1, lines);
    EXPECT_EQ(lines.Add("x\r\ny\tz"), 4);
    EXPECT_EQ(editor.Lines(), "a\nb\nc\nx\ny    z");
    lines.Insert(1, "p\r\n");
    EXPECT_EQ(editor.Lines(), "a\np\n\nb\nc\nx\ny    z"); // an empty line behind the last break
    EXPECT_EQ(editor.Memo.Bookmarks().Line(3), 3);
    lines.Put(0, "\ta");
    EXPECT_EQ(lines[0], "    a");
    lines.Delete(99);
    editor.At(1, 4);
    lines.Delete(3);
    EXPECT_EQ(editor.Shown(), "    a\np\n\nc|\nx\ny    z"); // the caret goes up with its line
    EXPECT_EQ(editor.Memo.Bookmarks().Line(3), -1);
    editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "    a\np\n\nb\nc\nx\ny    z");
    for (int i = 0; i < lines.Count(); ++i)
        EXPECT_EQ(lines.ListLengths()[i], lines[i].size());
    editor.Given("only|");
    lines.Delete(0);
    EXPECT_EQ(lines.Count(), 0);
    EXPECT_EQ(editor.Memo.Caret().X(), 0);
    editor.Memo.Undo();
    EXPECT_EQ(editor.Lines(), "only");
}

TEST(Lines, StatesFollowEditsSavesAndLoads) {
    const QTemporaryDir folder;
    const QString name = folder.filePath("t.js");
    TEditor editor("a  |\nb");
    TAdvMemo& memo = editor.Memo;
    const auto states = [&] {
        std::string s;
        for (int i = 0; i < memo.Lines().Count(); ++i)
            s += "umS"[memo.GetModifiedState(i)];
        return s;
    };
    editor.Type("x");
    EXPECT_EQ(states(), "mu");
    memo.Lines().SaveToFile(name);
    EXPECT_EQ(states(), "Su");
    editor.Key(keyDown);
    editor.Type("\ty");
    EXPECT_EQ(states(), "Sm");
    int changes = 0;
    memo.Events.OnChange = [&] { ++changes; };
    memo.Lines().LoadFromFile(name);
    EXPECT_EQ(states(), "uu");
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(memo.CanUndo());
    EXPECT_EQ(editor.Shown(), "|a  x\nb");
    editor.Type("\t");
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    memo.Lines().SaveToStream(buffer);
    EXPECT_EQ(buffer.data(), "    a  x\nb\n");
    EXPECT_EQ(states(), "Su");
    buffer.seek(0);
    memo.Lines().LoadFromStream(buffer);
    EXPECT_EQ(memo.Scroll().MaxLength(), 8);
}

TEST(Lines, WrappedTextSavesJoinedAndComesBackCut) {
    const QTemporaryDir folder;
    const QString name = folder.filePath("t.js");
    TEditor editor("aaa bbb ccc  \nd|");
    editor.Memo.Settings.FRightMargin = 5;
    editor.Memo.SetWordWrap(wwRightMargin);
    EXPECT_EQ(editor.Shown(), "aaa \nbbb \nccc  \nd|");
    editor.Memo.Lines().SaveToFile(name);
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "aaa bbb ccc\nd\n");
    EXPECT_EQ(editor.Lines(), "aaa \nbbb \nccc\nd");
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    editor.Memo.Lines().SaveToStream(buffer);
    EXPECT_EQ(buffer.data(), "aaa \nbbb \nccc\nd\n"); // a stream gets the cuts
    editor.At(1, 0);
    editor.Type("xx");
    EXPECT_EQ(editor.Shown(),
              "axx|aa\n \nbbb \nccc\nd"); // a word that fills the limit is cut before its blank
    editor.Key(keyDelete, 0, 2);
    EXPECT_EQ(editor.Shown(), "axx| \nbbb \nccc\nd");
    editor.Memo.SetWordWrap(wwNone);
    EXPECT_EQ(editor.Shown(), "axx| bbb ccc\nd");
}

TEST(Source, ActivationBringsTheCaretIntoTheTextThatIsLeft) {
    struct {
        int X, Y;
        const char* Left;
        const char* Shown;
    } const cases[] = {{3, 3, "ab", "ab|"}, {4, 0, "ab\ncd", "ab|\ncd"}, {1, 1, "a\nbcd", "a\nb|cd"}};
    for (const auto& test : cases) {
        TAdvMemoSource source;
        TEditor left, right;
        left.Memo.SetMemoSource(&source);
        right.Memo.SetMemoSource(&source);
        left.Given("long\nlong\nlong\nlong");
        left.At(test.X, test.Y);
        left.Memo.Selection().Take({0, 0, test.X, test.Y}, /*block=*/false);
        right.Given(test.Left);
        left.Memo.Activate();
        EXPECT_EQ(left.Shown(), test.Shown);
        const bool stayed = left.Memo.Caret().IsAt(test.X, test.Y);
        EXPECT_EQ(left.Memo.Selection().IsEmpty(), !stayed); // places that went select nothing
    }
}

TEST(Source, SharesTextHistoryAndStyler) {
    TAdvJSMemoStyler styler;
    TAdvMemoSource source;
    source.SetStyler(&styler);
    TEditor left, right;
    left.Memo.SetMemoSource(&source);
    right.Memo.SetMemoSource(&source);
    left.Given("ab|\nif");
    EXPECT_EQ(right.Lines(), "ab\nif");
    EXPECT_TRUE(right.Memo.RunsOf(1).at(0).State.iskeyWord);
    right.Key(keyEnd, ssCtrl);
    left.Type("x");
    EXPECT_EQ(right.Shown(), "abx\nif|");
    left.Key(keyDown);
    left.Memo.Editing().DeleteLine();
    right.Key(keyHome); // its caret's line is gone: it comes into range
    EXPECT_EQ(right.Shown(), "|abx");
    right.Memo.Undo();
    right.Memo.Undo();
    EXPECT_EQ(left.Lines(), "ab\nif");
    left.Memo.SetMemoSource(nullptr);
    EXPECT_EQ(left.Memo.Lines().Count(), 0);
    EXPECT_EQ(right.Lines(), "ab\nif");
    right.Type("q");
    right.Memo.SetMemoSource(nullptr);
    source.UndoList.Undo(); // nobody is there to do it
    EXPECT_EQ(source.Lines[0], "abq");
}

} // namespace
