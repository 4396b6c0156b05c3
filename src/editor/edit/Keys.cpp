#include "editor/edit/Keys.h"

#include "editor/edit/MemoEditor.h"

#include <algorithm>

namespace {

bool IsModifier(int key) {
    return key >= keyShift && key <= keyAlt;
}

bool KeepsCaret(int key) {
    return IsModifier(key) || (key >= keyLeft && key <= keyPageDown);
}

} // namespace

void TMemoKeys::KeyDown(int key, TShiftState shift) {
    if (FMemo.Events.OnKeyDown)
        FMemo.Events.OnKeyDown(key, shift);
    if (key == 0)
        return;
    if (FMemo.View && key != keyControl)
        FMemo.View->RestartCaretBlink();
    FMemo.Assist().AllowAutoHint(!Held(shift, ssCtrl));
    if (!KeepsCaret(key) && FMemo.Lines().Count() > 0)
        FMemo.Caret().MoveTo(FMemo.Caret().X(), FMemo.Caret().Y());
    if (!FMemo.Assist().TakesKey(key, shift) && !Shortcut(key, shift))
        Dispatch(key, shift);
}

bool TMemoKeys::Shortcut(int key, TShiftState shift) {
    const bool ctrl = Held(shift, ssCtrl);
    const bool alt = Held(shift, ssAlt);
    const bool shiftZ = FMemo.Settings.FMoreKeys && !alt && Held(shift, ssShift) && key == keyZ;
    if (ctrl && (shiftZ || key == keyY)) {
        if (!FMemo.Settings.FReadOnly)
            FMemo.Redo();
    } else if (ctrl && !alt && key == keyZ) {
        FMemo.Undo(); // also when read-only, on purpose; redo isn't
    } else if (alt && key == keyBackspace) {
        if (Held(shift, ssShift))
            FMemo.Redo();
        else
            FMemo.Undo();
    } else if (ctrl && key == keyF) {
        if (FMemo.Events.FOnFind)
            FMemo.Events.FOnFind();
    } else if (ctrl && key == keyH) {
        if (FMemo.Events.FOnReplace)
            FMemo.Events.FOnReplace();
    } else if (key == keySpace && ctrl && !alt) {
        FMemo.Assist().Ask(Held(shift, ssShift));
    } else {
        return false;
    }
    return true;
}

void TMemoKeys::Dispatch(int key, TShiftState shift) {
    TCaretMoves& moves = FMemo.Moves();
    const bool ctrl = Held(shift, ssCtrl);
    switch (key) {
    case keyLeft:
        return moves.MoveCaret(-1, 0, shift);
    case keyRight:
        return moves.MoveCaret(1, 0, shift);
    case keyUp:
        return ctrl ? moves.ScrollLine(-1) : moves.MoveCaret(0, -1, shift);
    case keyDown:
        return ctrl ? moves.ScrollLine(1) : moves.MoveCaret(0, 1, shift);
    case keyBacktab:
        return Tab(shift | ssShift);
    case keyTab:
        return Tab(shift);
    default:
        return ExecuteKey(key, shift);
    }
}

void TMemoKeys::Tab(TShiftState shift) {
    const TMemoSelection& selection = FMemo.Selection();
    const bool inLine = FMemo.Settings.FIndentSelection && !selection.IsEmpty();
    if (!selection.IsMultiLine() && !inLine) {
        ExecuteKey(keyTab, shift);
        return;
    }
    if (FMemo.Settings.FReadOnly)
        return;
    const TSelectionRange range = selection.Ordered();
    const TSelectionRange before = selection.Range();
    const int lengths[] = {FMemo.LineLength(before.StartY), FMemo.LineLength(before.EndY)};
    const int size = FMemo.Settings.FTabSize;
    const int x = FMemo.Caret().X(), y = FMemo.Caret().Y();
    FMemo.UndoList().Hold();
    FMemo.Blocks().BlockIndent(range.StartY,
                               range.EndY - (range.EndX == 0 && range.EndY > range.StartY ? 1 : 0),
                               Held(shift, ssShift) ? -size : size, RecordUndo::Yes);
    if (FMemo.Settings.FIndentSelection && !selection.IsBlock()) {
        // What is selected stays so; from a line's start on all of the line.
        const auto moved = [this](int column, int row, int length) {
            return column == 0 ? 0 : std::max(0, column + FMemo.LineLength(row) - length);
        };
        const TSelectionRange after{moved(before.StartX, before.StartY, lengths[0]), before.StartY,
                                    moved(before.EndX, before.EndY, lengths[1]), before.EndY};
        FMemo.Caret().MoveTo(after.EndX, after.EndY); // may trim the line that it leaves
        FMemo.Selection().Take(after, /*block=*/false);
    }
    FMemo.UndoList().Release(x, y);
}

void TMemoKeys::ExecuteKey(int key, TShiftState shift) {
    if (!ReadOnlyKey(key, shift) && !FMemo.Settings.FReadOnly)
        EditKey(key, shift);
}

bool TMemoKeys::ReadOnlyKey(int key, TShiftState shift) {
    switch (key) {
    case keyHome:
        FMemo.Moves().Home(shift);
        return true;
    case keyEnd:
        FMemo.Moves().End(shift);
        return true;
    case keyPageUp:
        FMemo.Moves().Page(-1, shift);
        return true;
    case keyPageDown:
        FMemo.Moves().Page(1, shift);
        return true;
    case keyCtrlC:
        FMemo.Blocks().CopyToClipBoard();
        return true;
    case keyInsert:
        if (Held(shift, ssCtrl))
            FMemo.Blocks().CopyToClipBoard();
        return Held(shift, ssCtrl);
    case keyEscapeChar:
    case keyEscape:
        return true;
    default:
        return false;
    }
}

void TMemoKeys::EditKey(int key, TShiftState shift) {
    switch (key) {
    case keyCtrlA:
        return FMemo.Selection().SelectAll();
    case keyBackspaceChar:
    case keyBackspace:
        return Erase(shift);
    case keyTabChar:
    case keyTab:
        FMemo.Editing().TabKey(Held(shift, ssShift), Held(shift, ssCtrl));
        return MarkModified();
    case keyEnterChar:
        return Enter();
    case keyCtrlV:
        return FMemo.Blocks().PasteFromClipBoard();
    case keyCtrlX:
        return FMemo.Blocks().CutToClipBoard();
    case keyInsert:
        return Held(shift, ssShift) ? FMemo.Blocks().PasteFromClipBoard() : ToggleOverwrite();
    case keyDelete:
        return Held(shift, ssShift) ? FMemo.Blocks().CutToClipBoard() : Remove(shift);
    default:
        return;
    }
}

void TMemoKeys::MarkModified() {
    FMemo.SetModifiedState(FMemo.Caret().Y());
}

void TMemoKeys::Erase(TShiftState shift) {
    if (!FMemo.EditingAllowed() || FMemo.Lines().Count() == 0 || OpensFold(-1))
        return;
    if (Held(shift, ssCtrl))
        FMemo.Editing().DeleteWordLeft();
    else if (FMemo.Settings.FDelErase && !FMemo.Selection().IsEmpty())
        FMemo.Blocks().DeleteSelection();
    else if (!FMemo.Aids().Erase()) {
        FMemo.Editing().BackSpace();
        FMemo.Aids().Typed({});
    }
    MarkModified();
}

void TMemoKeys::Enter() {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    FMemo.UndoList().Hold();
    FMemo.Blocks().DeleteSelection();
    if (!FMemo.Aids().BreakLine())
        FMemo.Editing().NewLine();
    FMemo.UndoList().Release(x, y);
    FMemo.Aids().Typed(u'\r');
    MarkModified();
}

/// Opens a closed fold at the caret, or in the selection, that the key would change otherwise.
bool TMemoKeys::OpensFold(int direction) {
    if (!FMemo.Settings.FGuardFolds)
        return false;
    TMemoFolding& folding = FMemo.Folding();
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    if (!FMemo.Selection().IsEmpty() && FMemo.Settings.FDelErase) {
        const TSelectionRange range = FMemo.Selection().Ordered();
        return folding.RevealAll(range.StartY, range.EndY);
    }
    if (direction < 0)
        return x == 0 && y > 0 && folding.RevealAll(y - 1, y - 1);
    return x >= FMemo.LineLength(y) && folding.RevealAll(y + 1, y + 1);
}

void TMemoKeys::Remove(TShiftState shift) {
    if (FMemo.Lines().Count() == 0 || OpensFold(1))
        return;
    if (FMemo.Settings.FDelErase && !FMemo.Selection().IsEmpty()) {
        const bool expands = std::exchange(FMemo.Settings.FAutoExpand, true);
        FMemo.Blocks().DeleteSelection();
        FMemo.Settings.FAutoExpand = expands;
    } else if (FMemo.Settings.FMoreKeys && Held(shift, ssCtrl)) {
        FMemo.Editing().DeleteWordRight();
    } else {
        FMemo.Editing().DeleteChar(-1, -1);
    }
    MarkModified();
    FMemo.Selection().Clear();
}

void TMemoKeys::ToggleOverwrite() {
    bool allow = true;
    if (FMemo.Events.FOnOverwriteToggle)
        FMemo.Events.FOnOverwriteToggle(allow);
    if (!allow)
        return;
    const bool before = FMemo.Settings.FOverwrite;
    FMemo.Settings.FOverwrite = !before;
    const TAdvUndoList& list = FMemo.UndoList();
    const auto isToggle = [&list](int index) {
        return index >= 0 && dynamic_cast<TInsertOverwriteUndo*>(&list.Get(index)) != nullptr;
    };
    // The oldest two are looked at, not the newest, on purpose.
    if (list.Count() > 0 && !(isToggle(list.Count() - 1) && isToggle(list.Count() - 2)))
        FMemo.AddUndoStep(std::make_unique<TInsertOverwriteUndo>(before));
}
