// Random keys and calls with every switch on and off, and edits of wrapped text.
//
// MORVANE_EDITOR_STEPS sets the number of steps of each test, MORVANE_EDITOR_SEED the first seed.
#include "EditorFixture.h"
#include "base/Exceptions.h"
#include "editor/style/JSMemoStyler.h"

#include <random>

namespace {

/// Every switch, key and operation; what must hold of any text at any time.
class TWildRun {
public:
    explicit TWildRun(unsigned seed) : FRandom(seed) {
        FEditor.Styled(FStyler);
        FEditor.Memo.Scroll().Resize({8, 16}, 200, 160);
        Reset();
    }

    void Step() {
        TAdvMemo& memo = FEditor.Memo;
        switch (FRandom() % 12) {
        case 0:
            return Switch();
        case 1:
            return FEditor.Key(Key(), FRandom() % 8);
        case 2:
            FEditor.Clipboard.Held = QString("p\tq\r\n{ x }\n\n").left(Below(12));
            return memo.Blocks().PasteFromClipBoard();
        case 3:
            FEditor.At(Below(30) - 1, Below(20) - 1);
            return;
        case 4:
            return memo.Selection().Take(RandomRange(), Below(2));
        case 5:
            return memo.Blocks().BlockIndent(Below(5), Below(9), Below(9) - 4, RecordUndo::Yes);
        case 6:
            memo.Lines().Delete(Below(20));
            memo.Lines().Insert(Below(memo.Lines().Count() + 1), "in\r\n\tsert");
            return;
        case 7:
            memo.Folding().CollapseNode(Below(10));
            return memo.Folding().ExpandNode(Below(10));
        case 8:
            return UndoRedo();
        case 9:
            return memo.Lines().Count() > 60 || Below(40) == 0 ? Reset() : memo.UpdateWrap();
        default:
            return FEditor.Type(QByteArray("ab {}\n\t(\"/*'1.").mid(Below(14), 1 + Below(2)));
        }
    }

    void Check() {
        TAdvMemo& memo = FEditor.Memo;
        const TAdvMemoStrings& lines = memo.Lines();
        ASSERT_EQ(lines.ListLengths().Count(), lines.Count());
        for (int i = 0; i < lines.Count(); ++i) {
            ASSERT_EQ(lines.ListLengths()[i], lines[i].size());
            ASSERT_FALSE(lines[i].contains('\t') || lines[i].contains('\r') || lines[i].contains('\n'));
        }
        ASSERT_LE(memo.UndoList().Position(), memo.UndoList().Count());
        ASSERT_LE(memo.UndoList().Count(), 100);
        ASSERT_GE(memo.Caret().X(), 0);
        ASSERT_GE(memo.Caret().Y(), 0);
        if (lines.Count() == 0 || Below(4))
            return;
        const int row = Below(lines.Count());
        QString text;
        for (const TStyleRun& run : memo.RunsOf(row))
            text += run.Text;
        ASSERT_EQ(text, lines[row]);
        TAdvMemoStrings copy;
        copy.Assign(lines);
        TLineStates fresh;
        ASSERT_EQ(fresh.LineStartState(row, copy, memo.Rules()), KeptState(row));
    }

private:
    int Below(int limit) { return int(FRandom() % unsigned(limit)); }
    /// What the control's own checkpoints say about the start of `row`.
    TStyle KeptState(int row) {
        (void)FEditor.Memo.RunsOf(row);
        return FEditor.Memo.Lines().GetLineProp(row)->Style;
    }
    TSelectionRange RandomRange() {
        const int rows = std::max(1, FEditor.Memo.Lines().Count());
        const int y1 = Below(rows), y2 = Below(rows);
        return {Below(FEditor.Memo.LineLength(y1) + 1), y1, Below(FEditor.Memo.LineLength(y2) + 1), y2};
    }
    int Key() {
        static const std::vector<int> Keys{
            keyLeft,   keyRight,  keyUp,  keyDown,      keyHome,  keyEnd, keyPageUp, keyPageDown,
            keyInsert, keyDelete, keyTab, keyBackspace, keySpace, keyF,   keyY,      keyZ};
        return Keys[size_t(Below(int(Keys.size())))];
    }
    void Switch() {
        TMemoSettings& s = FEditor.Memo.Settings;
        const std::vector<bool*> flags{
            &s.FSmartTabs,        &s.FEnhancedHomeKey, &s.FAutoIndent,
            &s.FAutoExpand,       &s.FDelErase,        &s.FTrimTrailingSpaces,
            &s.FSelectSingleLine, &s.FUndoLineByLine,  &FEditor.Memo.Rules().FUrlAware};
        bool& flag = *flags[size_t(Below(int(flags.size())))];
        flag = !flag;
        s.FSelectionMode = Below(4) ? smText : smBlock;
        s.FScrollMode = Below(2) ? smAuto : smStrict;
        s.FScrollBars = Below(2) ? sbBoth : sbNone;
        FEditor.Memo.ResetStyling();
        if (Below(4) == 0)
            FEditor.Memo.SetWordWrap(TWordWrapStyle(Below(3)));
        if (Below(8) == 0)
            FEditor.Memo.Folding().SetEnabled(Below(2));
    }
    void UndoRedo() {
        try {
            Below(2) ? FEditor.Memo.Undo() : FEditor.Memo.Redo();
        } catch (const Exception&) { // a linked entry without its partner: the history stays blocked
            Reset();
        }
    }
    void Reset() {
        FEditor.Memo.Settings.FRightMargin = 4 + Below(20);
        FEditor.Given("function f() {\n  /* a\n  b */ var c = \"d\";\n  if (c) {\n    e;\n  }\n}\n|");
    }

    std::mt19937 FRandom;
    TAdvJSMemoStyler FStyler;
    TEditor FEditor;
};

TEST(Model, AnythingGoes) {
    const int steps = Setting("MORVANE_EDITOR_STEPS", 20000);
    unsigned seed = unsigned(Setting("MORVANE_EDITOR_SEED", 1));
    for (int done = 0; done < steps; ++seed) {
        TWildRun run(seed);
        for (int i = 0; i < 500 && done < steps; ++i, ++done) {
            run.Step();
            run.Check();
            if (testing::Test::HasFatalFailure())
                FAIL() << "seed " << seed << ", step " << i;
        }
    }
}

TEST(Model, EditsOfWrappedTextEditTheTextBehindIt) {
    const int steps = Setting("MORVANE_EDITOR_STEPS", 20000) / 10;
    std::mt19937 random(unsigned(Setting("MORVANE_EDITOR_SEED", 1)));
    TEditor editor("a");
    editor.Memo.Settings.FRightMargin = 7;
    editor.Memo.Settings.FAutoIndent = false;
    editor.Memo.SetWordWrap(wwRightMargin);
    QString model = "a";
    const TMemoWords& words = editor.Memo.Words();
    for (int step = 0; step < steps; ++step) {
        int offset = int(random() % unsigned(model.size() + 1)), x = 0, y = 0;
        const bool removes = random() % 100 < unsigned(model.size());
        QString changed = model;
        const QChar c = QString("ab \n")[int(random() % 4)];
        if (removes && offset < model.size())
            changed.remove(offset, 1);
        else if (!removes)
            changed.insert(offset, c);
        if ((changed + '\n').contains(" \n"))
            continue; // blanks at the end of a line are trimmed when the caret leaves it
        words.PosFromText(offset, x, y);
        editor.At(x, y);
        if (removes)
            editor.Key(keyDelete);
        else
            editor.Type(QString(c).toLatin1());
        model = changed;
        ASSERT_EQ(words.TextFromPos(editor.Memo.Caret().X(), editor.Memo.Caret().Y()),
                  offset + (removes ? 0 : 1))
            << step;
        TAdvMemoStrings joined;
        TAdvMemoStrings& lines = editor.Memo.Lines();
        for (int i = 0; i < lines.Count(); ++i) {
            ASSERT_LE(lines[i].size(), 7);
            if (editor.Memo.IsContinuation(i))
                joined.Put(joined.Count() - 1, joined[joined.Count() - 1] + lines[i]);
            else
                joined.Add(lines[i]);
        }
        ASSERT_EQ(joined.Text(), model + '\n') << step;
    }
}

} // namespace
