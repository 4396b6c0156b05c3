#include "editor/edit/MemoEditor.h"

void TMemoEditor::KeyDown(int key, TShiftState shift) {
    Activate();
    FKeys.KeyDown(key, shift);
}

void TMemoEditor::KeyPress(QChar c) {
    Activate();
    FTyping.KeyPress(c);
}

void TMemoEditor::Undo() {
    Activate();
    UndoList().Undo();
    ShowCaretRow();
}

void TMemoEditor::Redo() {
    Activate();
    UndoList().Redo();
    ShowCaretRow();
}

/// What an exact history changes may lie in a closed fold.
void TMemoEditor::ShowCaretRow() {
    if (UndoList().IsExact())
        Folding().Reveal(Caret().Y());
}

void TMemoEditor::MarkSaved() {
    Lines().MarkSaved();
    UndoList().MarkSaved();
}

TUndoTarget& TMemoEditor::UndoTarget() {
    FUndoTarget.Lines = &Lines();
    return FUndoTarget;
}

void TMemoEditor::DeleteRow(int index) {
    const TLineProp* prop = Settings.FCodeFolding ? Lines().GetLineProp(index) : nullptr;
    if (prop && prop->FHasChildren)
        Folding().RemoveCodeFolding(index);
    if (prop && prop->FHasParent && prop->FLastChildOfParents > 0)
        Folding().MoveFoldEnd(index);
    const int x = Lines().Count() == 1 ? 0 : Caret().X();
    const int y = Caret().Y() - (index < Caret().Y() ? 1 : 0);
    Caret().MoveTo(Caret().X(), index);
    FEditing.DeleteLine();
    Caret().Write(x, y);
}
