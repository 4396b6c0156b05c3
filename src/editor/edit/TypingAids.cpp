#include "editor/edit/TypingAids.h"

#include "editor/edit/MemoEditor.h"
#include "editor/place/BracketMatch.h"

namespace {

int IndentOf(QStringView line) {
    int indent = 0;
    while (indent < line.size() && line[indent] == u' ')
        ++indent;
    return indent;
}

bool IsBlank(QStringView text) {
    return IndentOf(text) == text.size();
}

QChar LastOf(QStringView text) {
    const QStringView trimmed = text.trimmed();
    return trimmed.isEmpty() ? QChar() : trimmed.back();
}

} // namespace

/// Whether a character typed at a column of the caret's row is code.
bool TTypingAids::InCode(int x) const {
    int column = 0;
    const std::vector<TStyleRun> runs = FMemo.RunsOf(FMemo.Caret().Y());
    for (const TStyleRun& run : runs) {
        column += int(run.Text.size());
        if (column >= x && x > 0)
            return !run.State.isComment && !run.State.isBracket;
    }
    if (x > 0 || FMemo.Caret().Y() >= FMemo.Lines().Count())
        return true;
    const TLineProp* prop = FMemo.Lines().GetLineProp(FMemo.Caret().Y());
    return prop == nullptr || !prop->CachedStyle || (!prop->Style.isComment && !prop->Style.isBracket);
}

void TTypingAids::Remember() {
    FX = FMemo.Caret().X();
    FY = FMemo.Caret().Y();
}

void TTypingAids::ForgetIfElsewhere() {
    if (!FMemo.Caret().IsAt(FX, FY))
        FClosers.clear();
}

bool TTypingAids::OpensPair(QChar c, QChar& close) const {
    constexpr QStringView Open = u"([{\"'`";
    constexpr QStringView Close = u")]}\"'`";
    const qsizetype at = Open.indexOf(c);
    if (at < 0)
        return false;
    close = Close[at];
    const string line = FMemo.LineText(FMemo.Caret().Y());
    const int x = FMemo.Caret().X();
    const QChar before = x > 0 && x <= line.size() ? line[x - 1] : QChar();
    const QChar behind = x < line.size() ? line[x] : QChar();
    constexpr QStringView Room = u" )]};,";
    const bool room = behind.isNull() || Room.contains(behind);
    const bool apostrophe = c == close && (before.isLetterOrNumber() || before == c || before == u'\\');
    return room && !apostrophe && InCode(x);
}

bool TTypingAids::Type(QChar c) {
    if (!FMemo.Settings.FCloseBrackets || !FMemo.UndoList().IsExact() || FMemo.Settings.FOverwrite ||
        FMemo.Settings.FWordWrap != wwNone)
        return false;
    ForgetIfElsewhere();
    QChar close;
    if (GoOver(c))
        return true;
    if (!OpensPair(c, close))
        return false;
    PutPair(c, close);
    return true;
}

void TTypingAids::PutPair(QChar open, QChar close) {
    TMemoCaret& caret = FMemo.Caret();
    caret.SetLine(caret.Y());
    const int x = caret.X();
    const int y = caret.Y();
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(y, FMemo.LineText(y).insert(x, string(open) + close));
        caret.SetColumn(x + 1);
    });
    FMemo.ClearSelection();
    FMemo.AddUndoStep(std::make_unique<TInsertCharUndo>(x, y, x + 1, y, string(open)));
    FMemo.SetModifiedState(y);
    PairPut();
}

void TTypingAids::PairPut() {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(y);
    if (!FMemo.Settings.FCloseBrackets || !FMemo.UndoList().IsExact() || x >= line.size())
        return;
    FClosers.push_back({FMemo.Lines().Count() - y, int(line.size()) - x, line[x]});
    Remember();
}

/// A closing character that is there already, behind nothing but blanks and line breaks.
bool TTypingAids::GoOver(QChar c) {
    if (FClosers.empty() || FClosers.back().Character != c)
        return false;
    const TCloser closer = FClosers.back();
    const int y = FMemo.Caret().Y();
    const int x = FMemo.Caret().X();
    const int row = FMemo.Lines().Count() - closer.RowsBehind;
    const int column = FMemo.LineLength(row) - closer.CharactersBehind;
    const string line = FMemo.LineText(row);
    if (row < y || column < 0 || column >= line.size() || line[column] != c || (row == y && column != x)) {
        if (row < y || column < 0 || column >= line.size() || line[column] != c)
            FClosers.clear();
        return false;
    }
    for (int between = y; row > y && between <= row; ++between) {
        const string text = FMemo.LineText(between);
        if (!IsBlank(between == y ? text.mid(x) : between == row ? text.left(column) : text))
            return false;
    }
    FClosers.pop_back();
    if (row > y) {
        BringUp(closer, row);
    } else {
        FMemo.Caret().SetColumn(x + 1);
        FMemo.ClearSelection();
        FMemo.UndoList().GoOn(x, y, x + 1, y);
    }
    Remember();
    return true;
}

/// What lies between the caret and the closing character goes.
void TTypingAids::BringUp(const TCloser& closer, int row) {
    const int y = FMemo.Caret().Y();
    const int x = FMemo.Caret().X();
    const string last = FMemo.LineText(row);
    string head = FMemo.LineText(y).left(x);
    const qsizetype column = last.size() - closer.CharactersBehind;
    if (IsBlank(head))
        head = string(IndentOf(last), u' ');
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(y, head + last.mid(column));
        FMemo.Lines().RemoveRows(y + 1, row - y);
        FMemo.Caret().MoveTo(int(head.size()) + 1, y);
        FMemo.Folding().AutoCodeFold();
    });
    FMemo.ClearSelection();
    FMemo.AddUndoStep(std::make_unique<TPasteUndo>(x, y, FMemo.Caret().X(), y, string(), /*linked=*/false));
    FMemo.SetModifiedState(y);
}

void TTypingAids::Typed(QChar c) {
    if (c == u'}' && FMemo.Settings.FIndentBlocks)
        Unindent();
    if (!FClosers.empty())
        Remember();
}

/// A brace that stands alone goes below the start of the line that opened its block.
void TTypingAids::Unindent() {
    TMemoCaret& caret = FMemo.Caret();
    const int y = caret.Y();
    const string line = FMemo.LineText(y);
    const int x = caret.X() - 1;
    if (x < 0 || !IsBlank(QStringView(line).left(x)))
        return;
    const TBracketMatch match = MatchBracket(FMemo);
    if (!match.Found() || match.X != x || match.OtherY >= y)
        return;
    const int indent = IndentOf(FMemo.LineText(match.OtherY));
    if (indent == x)
        return;
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(y, string(indent, u' ') + line.mid(x));
        caret.SetColumn(indent + 1);
    });
    FMemo.ClearSelection();
    if (FMemo.UndoList().IsExact())
        FMemo.AddUndoStep(std::make_unique<TInsertCharUndo>(x + 1, y, indent + 1, y, string()));
    else
        FMemo.AddUndoStep(std::make_unique<TCorrectUndo>(y, line));
}

bool TTypingAids::BreakLine() {
    ForgetIfElsewhere();
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(y);
    if (!FMemo.Settings.FIndentBlocks || !FMemo.Settings.FAutoIndent ||
        LastOf(QStringView(line).left(x)) != u'{' ||
        !InCode(int(QStringView(line).left(x).trimmed().size()) + IndentOf(line)))
        return false;
    const int indent = IndentOf(line) + FMemo.Settings.FTabSize;
    const bool between = QStringView(line).mid(x).trimmed().startsWith(u'}');
    FMemo.UndoList().Hold();
    FMemo.Editing().NewLine();
    if (between) {
        FMemo.Editing().NewLine();
        FMemo.SetModifiedState(y + 2);
        FMemo.Caret().SetLine(y + 1);
    }
    for (int blanks = indent - FMemo.Caret().X(); blanks > 0; --blanks) // word wrap may cut on the way
        FMemo.Editing().InsertChar(u' ');
    FMemo.UndoList().Release(x, y);
    return true;
}

bool TTypingAids::Erase() {
    ForgetIfElsewhere();
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(y);
    if (FClosers.empty() || x < 1 || x >= line.size() || line[x] != FClosers.back().Character ||
        FMemo.Lines().Count() - FClosers.back().RowsBehind != y ||
        int(line.size()) - FClosers.back().CharactersBehind != x)
        return false;
    constexpr QStringView Open = u"([{\"'`";
    constexpr QStringView Close = u")]}\"'`";
    if (const qsizetype at = Close.indexOf(line[x]); at < 0 || line[x - 1] != Open[at])
        return false;
    FClosers.pop_back();
    FMemo.UndoList().Hold();
    FMemo.Editing().DeleteChar(-1, -1);
    FMemo.Editing().BackSpace();
    FMemo.UndoList().Release(x, y);
    Remember();
    return true;
}
