#include "editor/history/UndoEntries.h"

namespace {

constexpr QChar LineBreak = u'\r';

/// Backspaces over `text`, which ends at the caret, as far as it is still there.
void TakeBackTyped(TUndoTarget& memo, const string& text) {
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        const string line = memo.LineText(memo.CaretY());
        const int x = memo.CaretX();
        const bool broken = text[i] == LineBreak && x == 0;
        if (broken || (x > 0 && x <= line.size() && line[x - 1] == text[i]))
            memo.BackSpace();
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
        Memo->MoveToLine(y);
    if (x >= 0)
        Memo->MoveToColumn(x);
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
            Memo->InsertChar(c);
            continue;
        }
        Memo->NewLine();
        Memo->SetModifiedState(Memo->CaretY());
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
            Memo->NewLine();
        else
            Memo->InsertChar(c);
    }
}

void TOverwriteCharUndo::Replace(int x, int y) {
    string line = Memo->LineText(y);
    if (x < 0 || x >= line.size() || FUndoText.isEmpty())
        return;
    line[x] = FUndoText[0];
    Memo->StoreLine(y, line);
    Memo->Repaint();
}

void TOverwriteCharUndo::PerformUndo() {
    Replace(FUndoCurX, FUndoCurY);
}

void TOverwriteCharUndo::PerformRedo() {
    Replace(Memo->CaretX(), Memo->CaretY());
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
            Memo->MoveToLine(FUndoCurY0);
            Memo->MoveToColumn(FUndoCurX0);
        }
        if (c == LineBreak)
            Memo->NewLine();
        else
            Memo->InsertChar(c);
    }
}

void TDeleteCharUndo::PerformRedo() {
    for (qsizetype i = 0; i < FUndoText.size(); ++i) {
        if (FIsBackspace)
            Memo->BackSpace();
        else
            Memo->DeleteChar();
    }
}

void TDeleteLineUndo::PerformUndo() {
    Memo->ClearSelection();
    if (!FWasLast) {
        Memo->InsertBuffer(FUndoText + "\r\n");
        return;
    }
    if (FUndoCurY == 0) { // it was the only line; the caret has put an empty one in its place
        Memo->InsertBuffer(FUndoText);
        return;
    }
    Memo->MoveToLine(FUndoCurY - 1);
    Memo->MoveToColumn(int(Memo->LineText(FUndoCurY - 1).size()));
    Memo->InsertBuffer("\r\n" + FUndoText);
}

void TDeleteLineUndo::PerformRedo() {
    Memo->DeleteLine();
}

void TSelUndo::SetSelection(const TSelectionRange& range) {
    FUndoSelStartX = range.StartX;
    FUndoSelStartY = range.StartY;
    FUndoSelEndX = range.EndX;
    FUndoSelEndY = range.EndY;
}

void TDeleteBufUndo::PerformUndo() {
    Memo->ClearSelection();
    if (FBlock)
        Memo->InsertColumns(FUndoText);
    else
        Memo->InsertBuffer(FUndoText);
    Memo->BeginSelectionUpdate();
    Memo->TakeSelection(Selection(), FBlock);
    Memo->EndSelectionUpdate();
}

void TDeleteBufUndo::PerformRedo() {
    Memo->TakeSelection(Selection(), FBlock);
    Memo->DeleteSelection();
}

void TPasteUndo::PerformUndo() {
    Memo->TakeSelection({FUndoCurX0, FUndoCurY0, FUndoCurX, FUndoCurY}, /*block=*/false);
    Memo->DeleteSelection();
}

void TPasteUndo::PerformRedo() {
    Memo->ClearSelection();
    Memo->InsertBuffer(FUndoText);
}

void TReplaceUndo::Exchange(const string& by) {
    Memo->TakeSelection(FRange, /*block=*/false);
    Memo->DeleteSelection();
    // What is empty isn't deleted, and leaves the caret where it was.
    Memo->MoveToLine(FRange.StartY);
    Memo->MoveToColumn(FRange.StartX);
    Memo->InsertBuffer(by);
    FRange.EndX = Memo->CaretX();
    FRange.EndY = Memo->CaretY();
}

void TReplaceUndo::PerformUndo() {
    Exchange(FOldText);
    Memo->TakeSelection(FBefore, FBlock);
}

void TReplaceUndo::PerformRedo() {
    Exchange(FUndoText);
    Memo->TakeSelection(FAfter, /*block=*/false);
}

void TCorrectUndo::PerformUndo() {
    const int row = Memo->CaretY();
    const string line = Memo->LineText(row);
    Memo->StoreLine(row, FUndoText);
    FUndoText = line;
}
