#include "editor/UndoEntries.h"

namespace {

constexpr QChar LineBreak = u'\r';

/// Backspaces over `text`, which ends at the caret, as far as it is still there.
void TakeBackTyped(TUndoTarget& memo, const string& text) {
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        const string line = memo.LineText(memo.CaretY());
        const int x = memo.CaretX();
        if (text[i] == LineBreak && x == 0)
            memo.BackSpace();
        else if (x > 0 && x <= line.size() && line[x - 1] == text[i])
            memo.BackSpace();
    }
}

} // namespace

bool TUndo::Append(const TUndo&) {
    return false;
}

void TUndo::TakeEndOf(const TUndo& next) {
    FUndoCurX = next.FUndoCurX;
    FUndoCurY = next.FUndoCurY;
}

void TUndo::Undo() {
    if (!Memo)
        return;
    Memo->MoveToLine(FUndoCurY);
    Memo->MoveToColumn(FUndoCurX);
    PerformUndo();
    Memo->MoveToLine(FUndoCurY0);
    Memo->MoveToColumn(FUndoCurX0);
}

void TUndo::Redo() {
    if (!Memo)
        return;
    Memo->MoveToLine(FUndoCurY0);
    Memo->MoveToColumn(FUndoCurX0);
    PerformRedo();
    Memo->MoveToLine(FUndoCurY);
    Memo->MoveToColumn(FUndoCurX);
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
    Memo->InsertBuffer(FUndoText + "\r\n");
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
    Memo->InsertBuffer(FUndoText);
    Memo->BeginSelectionUpdate();
    Memo->TakeSelection(Selection());
    Memo->EndSelectionUpdate();
}

void TDeleteBufUndo::PerformRedo() {
    Memo->TakeSelection(Selection());
    Memo->DeleteSelection();
}

void TPasteUndo::PerformUndo() {
    Memo->TakeSelection({FUndoCurX0, FUndoCurY0, FUndoCurX, FUndoCurY});
    Memo->DeleteSelection();
}

void TPasteUndo::PerformRedo() {
    Memo->ClearSelection();
    Memo->InsertBuffer(FUndoText);
}

void TCorrectUndo::PerformUndo() {
    const int row = Memo->CaretY();
    const string line = Memo->LineText(row);
    Memo->StoreLine(row, FUndoText);
    FUndoText = line;
}
