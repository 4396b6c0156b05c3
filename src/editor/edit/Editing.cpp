#include "editor/edit/Editing.h"

#include "editor/edit/SmartTabs.h"
#include "editor/place/MemoState.h"

#include <algorithm>

/// What a tab puts in. In overwrite mode nothing is inserted: the caret goes over existing characters, and
/// only what the line lacks is put at its end; `x` becomes that place.
string TMemoEditing::TabText(int& x) {
    const int size = FMemo.Settings.FTabSize;
    if (!FMemo.Settings.FOverwrite)
        return {size, u' '};
    const int left = std::max(0, FMemo.LineLength(FMemo.Caret().Y()) - x);
    x += std::min(size, left);
    return {size - std::min(size, left), u' '};
}

/// Moves the caret `count` characters behind (x, y), through a new wrapping if that is on.
void TMemoEditing::PlaceBehind(int x, int y, int count) {
    if (FMemo.Settings.FWordWrap == wwNone) {
        FMemo.Caret().SetColumn(x + count);
        return;
    }
    const int offset = FMemo.Words().TextFromPos(x, y) + count;
    FMemo.UpdateWrap();
    FMemo.Words().PosFromText(offset, x, y);
    FMemo.Caret().MoveTo(x, y);
}

void TMemoEditing::InsertChar(QChar c) {
    TMemoCaret& caret = FMemo.Caret();
    caret.SetLine(caret.Y());
    const int x0 = caret.X();
    const int y0 = caret.Y();
    string line = FMemo.LineText(y0);
    int x = x0;
    const string text = c == u'\t' ? TabText(x) : string(c);
    // The caret's whole column count, not the gap, on purpose; padding has mostly filled the line before.
    if (c != u'\t' && x0 > line.size())
        line += string(x0, u' ');
    const bool overwrite = FMemo.Settings.FOverwrite && c != u'\t' && x < line.size() && !c.isNull();
    QChar replaced;
    if (overwrite) {
        replaced = line[x];
        line[x] = c;
    } else {
        line.insert(x, text);
    }
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(y0, line);
        PlaceBehind(x, y0, int(text.size()));
    });
    FMemo.ClearSelection();
    if (overwrite) {
        const int end = FMemo.UndoList().IsExact() ? caret.X() : x0; // the rule's entry ends where it begins
        FMemo.AddUndoStep(std::make_unique<TOverwriteCharUndo>(x0, y0, end, y0, string(replaced)));
    } else if (!text.isEmpty()) {
        FMemo.AddUndoStep(std::make_unique<TInsertCharUndo>(x0, y0, caret.X(), caret.Y(), text));
    }
}

void TMemoEditing::NewLine() {
    TMemoCaret& caret = FMemo.Caret();
    caret.SetLine(caret.Y());
    const int x0 = caret.X();
    const int y0 = caret.Y();
    const string line = FMemo.LineText(y0);
    int indent = 0;
    while (FMemo.Settings.FAutoIndent && indent < std::min<qsizetype>(x0, line.size()) &&
           line[indent] == u' ')
        ++indent;
    // Blanks at the end of what goes down vanish on purpose, and with indentation those before it: an undo
    // doesn't bring them back.
    qsizetype from = x0;
    qsizetype to = std::max(x0, FMemo.TrimmedLength(y0));
    while (FMemo.Settings.FAutoIndent && from < to && line[from] == u' ')
        ++from;
    FMemo.CompoundEdit([&] {
        FMemo.Folding().ExpandNode(y0);
        FMemo.Lines().Put(y0, line.left(x0));
        FMemo.Lines().DoInsert(y0 + 1, string(indent, u' ') + line.mid(from, to - from));
        caret.SetLine(y0 + 1);
        caret.SetColumn(indent);
        if (FMemo.Settings.FWordWrap != wwNone)
            PlaceBehind(caret.X(), caret.Y(), 0);
    });
    FMemo.ClearSelection();
    const string text = u'\r' + string(indent, u' ');
    if (FMemo.Settings.FUndoLineByLine)
        FMemo.AddUndoStep(std::make_unique<TNewLineUndo>(x0, y0, caret.X(), caret.Y(), text));
    else
        FMemo.AddUndoStep(std::make_unique<TInsertCharUndo>(x0, y0, caret.X(), caret.Y(), text));
}

bool TMemoEditing::SmartBackSpace() {
    TMemoCaret& caret = FMemo.Caret();
    const int x0 = caret.X();
    const int y0 = caret.Y();
    const string line = FMemo.LineText(y0);
    const bool blank = x0 > 0 && x0 <= line.size() && QStringView(line).left(x0).trimmed().isEmpty();
    if (!FMemo.Settings.FSmartTabs || !blank)
        return false;
    const int x = SmartBackTarget(FMemo);
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(y0, line.left(x) + line.mid(x0));
        caret.SetColumn(x);
    });
    auto entry = std::make_unique<TDeleteBufUndo>(x0, y0, x, y0, string(x0 - x, u' '));
    entry->SetSelection({x, y0, x0, y0});
    FMemo.AddUndoStep(std::move(entry));
    return true;
}

/// One character left. Between two pieces of a wrapped line there is none.
void TMemoEditing::StepBack() {
    const bool cut = FMemo.Caret().X() == 0 && FMemo.IsContinuation(FMemo.Caret().Y());
    FMemo.Moves().MoveCaret(-1, 0, 0);
    if (cut)
        FMemo.Moves().MoveCaret(-1, 0, 0);
}

void TMemoEditing::BackSpace() {
    if (SmartBackSpace())
        return;
    TMemoCaret& caret = FMemo.Caret();
    const int x = caret.X();
    const int y = caret.Y();
    if (x == 0 && y > 0)
        FMemo.Folding().ExpandNode(y - 1);
    StepBack();
    if (!caret.IsAt(x, y))
        DeleteChar(x, y);
    const int last = FMemo.Lines().Count() - 1;
    if (last >= 0 && caret.Y() > last)
        caret.MoveTo(FMemo.LineLength(last), last);
    FMemo.Selection().Collapse();
}

void TMemoEditing::DeleteChar(int x, int y) {
    TMemoCaret& caret = FMemo.Caret();
    FMemo.ClearSelection();
    const int row = caret.Y();
    auto entry = std::make_unique<TDeleteCharUndo>(x < 0 ? caret.X() : x, x < 0 ? row : y, 0, 0, string());
    entry->FIsBackspace = x >= 0;
    const string line = FMemo.LineText(row);
    FMemo.CompoundEdit([&] {
        if (caret.X() < line.size()) {
            entry->FUndoText = line[caret.X()];
            FMemo.Lines().Put(row, string(line).remove(caret.X(), 1));
        } else if (row + 1 < FMemo.Lines().Count()) {
            entry->FUndoText = JoinNext(row);
        }
        if (FMemo.Settings.FWordWrap != wwNone)
            PlaceBehind(caret.X(), caret.Y(), 0);
    });
    entry->FUndoCurX = caret.X();
    entry->FUndoCurY = caret.Y();
    if (!entry->FUndoText.isEmpty())
        FMemo.AddUndoStep(std::move(entry));
    FMemo.Selection().Collapse();
}

/// Takes away what stands between `row` and the next one; returns it. That is the line break, or the first
/// character of a wrapped continuation.
string TMemoEditing::JoinNext(int row) {
    TAdvMemoStrings& lines = FMemo.Lines();
    const string next = FMemo.LineText(row + 1);
    if (FMemo.IsContinuation(row + 1) && !next.isEmpty()) {
        lines.Put(row + 1, next.mid(1));
        return next.left(1);
    }
    lines.Put(row, FMemo.LineText(row) + next);
    lines.RemoveRows(row + 1, 1);
    FMemo.Folding().AutoCodeFold();
    return "\r";
}

void TMemoEditing::DeleteLine() {
    TMemoCaret& caret = FMemo.Caret();
    TAdvMemoStrings& lines = FMemo.Lines();
    if (lines.Count() == 0)
        return;
    caret.SetLine(caret.Y());
    const int row = caret.Y();
    auto entry = std::make_unique<TDeleteLineUndo>(caret.X(), row, 0, row, FMemo.LineText(row));
    entry->FWasLast = row == lines.Count() - 1;
    FMemo.CompoundEdit([&] {
        const bool head = !FMemo.IsContinuation(row);
        lines.RemoveRows(row, 1);
        if (head && FMemo.IsContinuation(row))
            lines.NeedLineProp(row).Wrapped = false; // it has no line before it now
        if (lines.Count() > 0)
            caret.MoveTo(0, row);
        else
            caret.Write(0, 0);
        FMemo.UpdateWrap();
        FMemo.Folding().AutoCodeFold();
    });
    FMemo.ClearSelection();
    FMemo.AddUndoStep(std::move(entry));
}

void TMemoEditing::DeleteWordLeft() {
    TMemoCaret& caret = FMemo.Caret();
    const int row = caret.Y();
    const int x0 = caret.X();
    bool moved = true;
    bool blankLeft = false;
    FMemo.UndoList().Hold();
    for (int steps = caret.X() + 1; steps > 0 && moved && caret.Y() == row && !blankLeft; --steps) {
        const int x = caret.X();
        const int y = caret.Y();
        StepBack();
        moved = !caret.IsAt(x, y);
        if (moved)
            DeleteChar(x, y);
        const string line = FMemo.LineText(caret.Y());
        blankLeft = caret.X() > 0 && caret.X() <= line.size() && line[caret.X() - 1] == u' ';
    }
    FMemo.UndoList().Release(x0, row);
}

void TMemoEditing::DeleteWordRight() {
    const string line = FMemo.LineText(FMemo.Caret().Y());
    const string delimiters = FMemo.Words().Delimiters();
    const int x = FMemo.Caret().X();
    int end = x + 1;
    while (end < line.size() && !(delimiters.contains(line[end - 1]) && line[end] != u' '))
        ++end;
    const int y = FMemo.Caret().Y();
    FMemo.UndoList().Hold();
    for (int count = end - x; count > 0; --count)
        DeleteChar(-1, -1);
    FMemo.UndoList().Release(x, y);
}

void TMemoEditing::TabKey(bool shift, bool ctrl) {
    TMemoCaret& caret = FMemo.Caret();
    if (FMemo.Settings.FSmartTabs && caret.Y() < FMemo.Lines().Count()) {
        SmartTab();
        return;
    }
    if (ctrl)
        return;
    if (shift)
        caret.SetColumn(std::max(0, caret.X() - FMemo.Settings.FTabSize));
    else
        InsertChar(u'\t');
}

void TMemoEditing::SmartTab() {
    TMemoCaret& caret = FMemo.Caret();
    const int x0 = caret.X();
    const int y0 = caret.Y();
    const string indent(SmartTabIndent(FMemo), u' ');
    if (indent.isEmpty()) {
        InsertChar(u'\t');
    } else {
        const string line = FMemo.LineText(y0);
        qsizetype end = line.size();
        while (end > x0 && line[end - 1] == u' ')
            --end;
        FMemo.CompoundEdit([&] {
            FMemo.Lines().Put(y0, line.left(x0) + indent + line.mid(x0, end - x0));
            caret.SetColumn(x0 + int(indent.size()));
        });
    }
    // The line break in the text of a tab's entry is there on purpose, and recorded even when the tab itself
    // was: a redo breaks the line where the undo took back blanks only.
    FMemo.AddUndoStep(std::make_unique<TInsertCharUndo>(x0, y0, caret.X(), caret.Y(), u'\r' + indent));
}
