// Random editing against a plain model of the text and its history.
//
// MORVANE_EDITOR_STEPS sets the number of steps of each test, MORVANE_EDITOR_SEED the first seed.
#include "EditorFixture.h"
#include "editor/style/JSMemoStyler.h"

#include <QBuffer>

#include <deque>
#include <random>

namespace {

using TTextLines = std::vector<QString>;

enum class TKind { Insert, Backspace, Delete, Other };

struct TStep {
    TKind Kind = TKind::Other;
    int X0 = 0, Y0 = 0, X = 0, Y = 0; // caret before and after
    TTextLines Before, After;
    bool Linked = false;
};

/// The text, the caret and the history, as plainly as they can be written down.
struct TModel {
    TTextLines Lines{QString()};
    int X = 0, Y = 0;
    std::deque<TStep> History; // newest first
    size_t Undone = 0;

    [[nodiscard]] const TStep* Merging(TKind kind) const {
        const bool meets = kind != TKind::Other && !History.empty() && History[0].Kind == kind &&
                           History[0].X == X && History[0].Y == Y;
        return meets ? &History[0] : nullptr;
    }
    /// Replaces the text from one place to another and puts the caret behind it.
    void Replace(int x1, int y1, int x2, int y2, const QString& text) {
        const QString whole = Lines[size_t(y1)].left(x1) + text + Lines[size_t(y2)].mid(x2);
        const QStringList pieces = whole.split('\n');
        Lines.erase(Lines.begin() + y1, Lines.begin() + y2 + 1);
        Lines.insert(Lines.begin() + y1, pieces.begin(), pieces.end());
        Y = y1 + int(text.count('\n'));
        X = text.contains('\n') ? int(text.size() - text.lastIndexOf('\n') - 1) : x1 + int(text.size());
    }
    template <class F> void Edit(TKind kind, F edit, bool linked = false) {
        TStep step{kind, X, Y, 0, 0, Lines, {}, linked};
        const bool merges = Merging(kind);
        edit();
        if (merges) {
            History[0].After = Lines;
            History[0].X = X;
            History[0].Y = Y;
            return;
        }
        step.After = Lines;
        step.X = X;
        step.Y = Y;
        History.erase(History.begin(), History.begin() + std::ptrdiff_t(Undone));
        Undone = 0;
        History.push_front(step);
        if (History.size() > 100)
            History.pop_back();
    }
    void Undo() {
        do {
            Lines = History[Undone].Before;
            X = History[Undone].X0;
            Y = History[Undone].Y0;
        } while (History[Undone++].Linked);
    }
    void Redo() {
        do {
            --Undone;
            Lines = History[Undone].After;
            X = History[Undone].X;
            Y = History[Undone].Y;
        } while (Undone > 0 && History[Undone - 1].Linked);
    }
    void Forget() {
        History.clear();
        Undone = 0;
    }
};

class TPlainRun {
public:
    explicit TPlainRun(unsigned seed) : FRandom(seed) {
        FEditor.Given("");
        FEditor.Styled(FStyler);
        FEditor.Memo.Settings.FAutoIndent = seed % 2;
        FEditor.Memo.Settings.FUndoLineByLine = false;
    }

    void Step() {
        switch (FRandom() % 16) {
        case 0:
        case 1:
        case 2:
        case 3:
            return Type();
        case 4:
            return Break();
        case 5:
        case 6:
            return Backspace();
        case 7:
        case 8:
            return Delete();
        case 9:
            return Move();
        case 10:
            return Paste();
        case 11:
            return Indent();
        case 12:
            return Below(8) ? Files() : DeleteLine();
        case 13:
            return Wrap();
        default:
            return Below(2) ? Undo() : Redo();
        }
    }

    void Check() {
        ASSERT_EQ(FEditor.Lines(),
                  QStringList(FModel.Lines.begin(), FModel.Lines.end()).join('\n').toStdString());
        ASSERT_EQ(FEditor.Memo.Caret().Y(), FModel.Y);
        ASSERT_EQ(FEditor.Memo.Caret().X(), FModel.X);
        ASSERT_EQ(FEditor.Memo.UndoList().Count(), int(FModel.History.size()));
        ASSERT_EQ(FEditor.Memo.UndoList().Position(), int(FModel.Undone));
    }

    /// Undoes everything, then redoes everything.
    void ThereAndBack() {
        while (FModel.Undone < FModel.History.size())
            Undo(), Check();
        while (FModel.Undone > 0)
            Redo(), Check();
    }

private:
    int Below(int limit) { return int(FRandom() % unsigned(limit)); }
    [[nodiscard]] const QString& Line() const { return FModel.Lines[size_t(FModel.Y)]; }
    [[nodiscard]] int LastLine() const { return int(FModel.Lines.size()) - 1; }
    /// Typing goes on in an entry that is undone: told elsewhere.
    [[nodiscard]] bool MergesIntoUndone(TKind kind) const {
        return FModel.Undone > 0 && FModel.Merging(kind);
    }

    void Type() {
        const QChar c = QString("ab {}/*'\"1")[Below(10)];
        if (MergesIntoUndone(TKind::Insert))
            return;
        FEditor.Type(QString(c).toLatin1());
        FModel.Edit(TKind::Insert, [&] { FModel.Replace(FModel.X, FModel.Y, FModel.X, FModel.Y, c); });
    }
    void Break() {
        const QString rest = Line().mid(FModel.X);
        const bool indents = FEditor.Memo.Settings.FAutoIndent;
        if (rest.endsWith(' ') || (indents && rest.startsWith(' ')) || MergesIntoUndone(TKind::Insert) ||
            LastLine() > 40)
            return; // blanks would be lost
        int indent = 0;
        while (indents && indent < FModel.X && Line()[indent] == ' ')
            ++indent;
        FEditor.Type("\n");
        FModel.Edit(TKind::Insert, [&] {
            FModel.Replace(FModel.X, FModel.Y, FModel.X, FModel.Y, '\n' + QString(indent, ' '));
        });
    }
    void Backspace() {
        const int x = FModel.X, y = FModel.Y;
        if ((x == 0 && (y == 0 || Line().endsWith(' '))) || MergesIntoUndone(TKind::Backspace))
            return;
        FEditor.Key(keyBackspace);
        FModel.Edit(TKind::Backspace, [&] {
            if (x > 0)
                FModel.Replace(x - 1, y, x, y, {});
            else
                FModel.Replace(int(FModel.Lines[size_t(y - 1)].size()), y - 1, 0, y, {});
        });
    }
    void Delete() {
        const int x = FModel.X, y = FModel.Y;
        const bool join = x == Line().size();
        if ((join && (y == LastLine() || FModel.Lines[size_t(y + 1)].endsWith(' '))) ||
            MergesIntoUndone(TKind::Delete))
            return;
        FEditor.Key(keyDelete);
        FModel.Edit(TKind::Delete, [&] {
            if (join)
                FModel.Replace(x, y, 0, y + 1, {});
            else
                FModel.Replace(x, y, x + 1, y, {});
        });
    }
    void Move() {
        FModel.Y = Below(LastLine() + 1);
        FModel.X = Below(int(Line().size()) + 1);
        FEditor.At(FModel.X, FModel.Y);
    }
    void Paste() {
        static const QStringList Texts{"x", "\n", "a\nb", "if (a) {\n  b\n}\n", " ", "q\n\nr"};
        const QString text = LastLine() > 40 ? QString("x") : Texts[Below(int(Texts.size()))];
        const int x0 = FModel.X, y0 = FModel.Y;
        Move(); // the other end of what is replaced
        const int x = FModel.X, y = FModel.Y;
        const bool replaces = Below(2) && (x != x0 || y != y0);
        if (replaces) {
            FEditor.Memo.Selection().Take({x0, y0, x, y}, /*block=*/false);
            FModel.Edit(TKind::Other, [&] {
                const bool forward = std::pair(y0, x0) < std::pair(y, x);
                FModel.Replace(forward ? x0 : x, forward ? y0 : y, forward ? x : x0, forward ? y : y0, {});
            });
        }
        FEditor.Clipboard.Held = text;
        FEditor.Memo.KeyPress(QChar(22));
        FModel.Edit(
            TKind::Other, [&] { FModel.Replace(FModel.X, FModel.Y, FModel.X, FModel.Y, text); }, replaces);
    }
    void Indent() {
        const int from = Below(LastLine() + 1), to = from + Below(std::min(3, LastLine() - from + 1));
        int indent = Below(2) ? 2 : -2;
        for (int row = from; row <= to; ++row) { // rows with fewer blanks don't come back
            if (!FModel.Lines[size_t(row)].startsWith("  "))
                indent = 2;
        }
        const int x = FModel.X, y = FModel.Y;
        FEditor.Memo.Blocks().BlockIndent(from, to, indent, RecordUndo::Yes);
        FModel.X = FModel.Y = 0; // the entry has no places of its own
        FModel.Edit(TKind::Other, [&] {
            for (int row = from; row <= to; ++row)
                FModel.Lines[size_t(row)] =
                    indent > 0 ? "  " + FModel.Lines[size_t(row)] : FModel.Lines[size_t(row)].mid(2);
        });
        FModel.Y = y;
        FModel.X = std::min(x, int(Line().size()));
    }
    void DeleteLine() {
        FEditor.Memo.Editing().DeleteLine();
        FModel.Edit(TKind::Other, [&] {
            FModel.Lines.erase(FModel.Lines.begin() + FModel.Y);
            if (FModel.Lines.empty())
                FModel.Lines.push_back({}); // the caret puts one there
            FModel.X = 0;
        });
        // The entry keeps the row that went; the caret is in range.
        FModel.Y = std::min(FModel.Y, LastLine());
        if (FEditor.Memo.Lines().Count() == 0)
            FEditor.At(0, 0);
    }
    void Undo() {
        if (FModel.Undone == FModel.History.size())
            return;
        // A linked paste whose deletion fell off the end is told elsewhere.
        if (FModel.History[FModel.Undone].Linked && FModel.Undone + 1 == FModel.History.size())
            return FEditor.Memo.ClearUndoRedo(), FModel.Forget();
        FEditor.Key(keyZ, ssCtrl);
        FModel.Undo();
        Clamp();
    }
    void Redo() {
        if (FModel.Undone == 0)
            return;
        FEditor.Key(keyY, ssCtrl);
        FModel.Redo();
        Clamp();
    }
    void Clamp() {
        FEditor.Memo.ClearSelection(); // which an undo brings back
        FModel.Y = std::min(FModel.Y, LastLine());
        FModel.X = std::min(FModel.X, int(Line().size()));
    }
    /// Cuts rows, shows that a save joins them, and joins them again.
    void Wrap() {
        FEditor.Memo.Settings.FRightMargin = 3 + Below(8);
        FEditor.Memo.SetWordWrap(wwRightMargin);
        std::vector<QString> rows;
        for (const QString& line : FModel.Lines) {
            QStringView rest = line;
            while (rest.size() > FEditor.Memo.Settings.FRightMargin) {
                qsizetype cut = 0;
                for (qsizetype i = 0; i + 1 < FEditor.Memo.Settings.FRightMargin; ++i)
                    cut = rest[i] == ' ' ? i + 1 : cut;
                cut = cut ? cut : FEditor.Memo.Settings.FRightMargin;
                rows.push_back(rest.left(cut).toString());
                rest = rest.mid(cut);
            }
            rows.push_back(rest.toString());
        }
        const auto& lines = FEditor.Memo.Lines();
        ASSERT_EQ(lines.Count(), int(rows.size()));
        for (int i = 0; i < lines.Count(); ++i)
            ASSERT_EQ(lines[i], rows[size_t(i)]);
        FEditor.Memo.SetWordWrap(wwNone);
    }
    void Files() {
        QBuffer buffer;
        buffer.open(QIODevice::ReadWrite);
        FEditor.Memo.Lines().SaveToStream(buffer);
        ASSERT_EQ(QString(buffer.data()).count('\n'), LastLine() + 1);
        if (Below(2))
            return;
        buffer.seek(0);
        FEditor.Memo.Lines().LoadFromStream(buffer);
        FModel.X = FModel.Y = 0;
        FModel.Forget();
    }

    std::mt19937 FRandom;
    TAdvJSMemoStyler FStyler;
    TEditor FEditor;
    TModel FModel;
};

TEST(Model, PlainEditsAndTheirHistory) {
    const int steps = Setting("MORVANE_EDITOR_STEPS", 20000);
    unsigned seed = unsigned(Setting("MORVANE_EDITOR_SEED", 1));
    for (int done = 0; done < steps; ++seed) {
        TPlainRun run(seed);
        for (int i = 0; i < 500 && done < steps; ++i, ++done) {
            run.Step();
            run.Check();
            if (i % 100 == 99)
                run.ThereAndBack();
            if (testing::Test::HasFatalFailure())
                FAIL() << "seed " << seed << ", step " << i;
        }
    }
}

} // namespace
