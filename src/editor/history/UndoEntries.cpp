#include "editor/history/UndoEntries.h"

namespace {

constexpr QChar LineBreak = u'\r';

/// Backspaces over `text`, which ends at the caret, as far as it is still there.
void TakeBackTyped(const TUndoTarget& memo, const string& text) {
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        const string line = memo.LineText(memo.Caret.Y());
        const int x = memo.Caret.X();
        const bool broken = text[i] == LineBreak && x == 0;
        if (broken || (x > 0 && x <= line.size() && line[x - 1] == text[i]))
            memo.Edits.BackSpace();
    }
}

} // namespace

bool TUndo::Append(const TUndo& /*next*/) {
    return false;
}

void TUndo::TakeEndOf(const TUndo& next) {
    FUndoCurX = next.FUndoCurX;
    FUndoCurY = next.FUndoCurY;
}

void TUndo::Undo() {
    if (!Memo)
        return;
    MoveCaret(FUndoCurX, FUndoCurY);
    PerformUndo();
    MoveCaret(FUndoCurX0, FUndoCurY0);
}

void TUndo::Redo() {
    if (!Memo)
        return;
    MoveCaret(FUndoCurX0, FUndoCurY0 < 0 ? FUndoCurY : FUndoCurY0);
    PerformRedo();
    MoveCaret(FUndoCurX, FUndoCurY);
}

void TUndo::MoveCaret(int x, int y) {
    if (y >= 0)
        Memo->Caret.SetLine(y);
    if (x >= 0)
        Memo->Caret.SetColumn(x);
}

bool TInsertCharUndo::Append(const TUndo& next) {
    if (!dynamic_cast<const TInsertCharUndo*>(&next) || !IsMetBy(next))
        return false;
    FUndoText += next.FUndoText;
    TakeEndOf(next);
    return true;
}

void TInsertCharUndo::PerformUndo() {
    TakeBackTyped(*Memo, FUndoText);
}

void TInsertCharUndo::PerformRedo() {
    for (const QChar c : FUndoText) {
        if (c != LineBreak) {
            Memo->Edits.InsertChar(c);
            continue;
        }
        Memo->Edits.NewLine();
        Memo->Lines->SetModifiedState(Memo->Caret.Y(), lmModified);
    }
}

bool TNewLineUndo::Append(const TUndo& next) {
    if (!dynamic_cast<const TNewLineUndo*>(&next) || !IsMetBy(next))
        return false;
    FUndoText += next.FUndoText;
    TakeEndOf(next);
    return true;
}

void TNewLineUndo::PerformUndo() {
    TakeBackTyped(*Memo, FUndoText);
}

void TNewLineUndo::PerformRedo() {
    for (const QChar c : FUndoText) {
        if (c == LineBreak)
            Memo->Edits.NewLine();
        else
            Memo->Edits.InsertChar(c);
    }
}

void TOverwriteCharUndo::Replace(int x, int y) {
    string line = Memo->LineText(y);
    if (x < 0 || x >= line.size() || FUndoText.isEmpty())
        return;
    line[x] = FUndoText[0];
    Memo->StoreLine(y, line);
}

void TOverwriteCharUndo::PerformUndo() {
    Replace(FUndoCurX, FUndoCurY);
}

void TOverwriteCharUndo::PerformRedo() {
    Replace(Memo->Caret.X(), Memo->Caret.Y());
}

bool TDeleteCharUndo::Append(const TUndo& next) {
    const auto* deletion = dynamic_cast<const TDeleteCharUndo*>(&next);
    if (!deletion || !IsMetBy(next) || deletion->FIsBackspace != FIsBackspace)
        return false;
    FUndoText = next.FUndoText + FUndoText;
    TakeEndOf(next);
    return true;
}

void TDeleteCharUndo::PerformUndo() {
    for (const QChar c : FUndoText) {
        if (!FIsBackspace) {
            Memo->Caret.SetLine(FUndoCurY0);
            Memo->Caret.SetColumn(FUndoCurX0);
        }
        if (c == LineBreak)
            Memo->Edits.NewLine();
        else
            Memo->Edits.InsertChar(c);
    }
}

void TDeleteCharUndo::PerformRedo() {
    for (qsizetype i = 0; i < FUndoText.size(); ++i) {
        if (FIsBackspace)
            Memo->Edits.BackSpace();
        else
            Memo->Edits.DeleteChar(-1, -1);
    }
}

void TDeleteLineUndo::PerformUndo() {
    Memo->Selection.Clear();
    if (!FWasLast) {
        Memo->Blocks.InsertBuffer(FUndoText + "\r\n", Linked::No);
        return;
    }
    if (FUndoCurY == 0) { // it was the only line; the caret has put an empty one in its place
        Memo->Blocks.InsertBuffer(FUndoText, Linked::No);
        return;
    }
    Memo->Caret.SetLine(FUndoCurY - 1);
    Memo->Caret.SetColumn(int(Memo->LineText(FUndoCurY - 1).size()));
    Memo->Blocks.InsertBuffer("\r\n" + FUndoText, Linked::No);
}

void TDeleteLineUndo::PerformRedo() {
    Memo->Edits.DeleteLine();
}

void TSelUndo::SetSelection(const TSelectionRange& range) {
    FUndoSelStartX = range.StartX;
    FUndoSelStartY = range.StartY;
    FUndoSelEndX = range.EndX;
    FUndoSelEndY = range.EndY;
}

void TDeleteBufUndo::PerformUndo() {
    Memo->Selection.Clear();
    if (FBlock)
        Memo->Blocks.InsertColumns(FUndoText);
    else
        Memo->Blocks.InsertBuffer(FUndoText, Linked::No);
    Memo->Selection.BeginUpdate();
    Memo->Selection.Take(Selection(), FBlock);
    Memo->Selection.EndUpdate();
}

void TDeleteBufUndo::PerformRedo() {
    Memo->Selection.Take(Selection(), FBlock);
    Memo->Blocks.DeleteSelection();
}

void TPasteUndo::PerformUndo() {
    Memo->Selection.Take({FUndoCurX0, FUndoCurY0, FUndoCurX, FUndoCurY}, /*block=*/false);
    Memo->Blocks.DeleteSelection();
}

void TPasteUndo::PerformRedo() {
    Memo->Selection.Clear();
    Memo->Blocks.InsertBuffer(FUndoText, Linked::No);
}

void TReplaceUndo::Exchange(const string& by) {
    Memo->Selection.Take(FRange, /*block=*/false);
    Memo->Blocks.DeleteSelection();
    // What is empty isn't deleted, and leaves the caret where it was.
    Memo->Caret.SetLine(FRange.StartY);
    Memo->Caret.SetColumn(FRange.StartX);
    Memo->Blocks.InsertBuffer(by, Linked::No);
    FRange.EndX = Memo->Caret.X();
    FRange.EndY = Memo->Caret.Y();
}

void TReplaceUndo::PerformUndo() {
    Exchange(FOldText);
    Memo->Selection.Take(FBefore, FBlock);
}

void TReplaceUndo::PerformRedo() {
    Exchange(FUndoText);
    Memo->Selection.Take(FAfter, /*block=*/false);
}

void TCorrectUndo::PerformUndo() {
    const int row = Memo->Caret.Y();
    const string line = Memo->LineText(row);
    Memo->StoreLine(row, FUndoText);
    FUndoText = line;
}
