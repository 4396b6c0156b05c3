// The side of TAdvUndoList that keeps an exact history.
#include "editor/history/UndoList.h"

void TAdvUndoList::KeepExactly(TAdvMemoStrings& lines, int limit) {
    FJournal.Watch(&lines);
    FLimit = limit;
    Clear();
}

TChangeUndo& TAdvUndoList::Change(int index) const {
    return static_cast<TChangeUndo&>(Get(index)); // an exact history holds no others
}

int TAdvUndoList::AddExactly(const TUndo& entry) {
    TLineChanges changes = FJournal.Take();
    if (changes.empty())
        return -1;
    const bool merges = FPos == 0 && Count() > 0 && !FSealed && Change(0).Append(changes, entry);
    FSealed = false;
    return merges ? -1 : Push(std::make_unique<TChangeUndo>(std::move(changes), entry));
}

void TAdvUndoList::Flush() {
    if (!IsExact() || FIsPerforming || !FMemo)
        return;
    const int x = FMemo->Caret.X();
    const int y = FMemo->Caret.Y();
    (void)AddExactly(TPasteUndo(x, y, x, y, {}, /*linked=*/false));
}

void TAdvUndoList::Release(int x0, int y0) {
    if (--FHeld > 0 || !IsExact() || FIsPerforming || !FMemo)
        return;
    (void)AddExactly(TPasteUndo(x0, y0, FMemo->Caret.X(), FMemo->Caret.Y(), {}, /*linked=*/false));
}

void TAdvUndoList::GoOn(int x0, int y0, int x, int y) {
    if (IsExact() && FPos == 0 && Count() > 0)
        Change(0).GoOn(x0, y0, x, y);
}

void TAdvUndoList::StepExactly(TStep step) {
    Flush();
    if (!FMemo || !(step == TStep::Back ? CanUndo() : CanRedo()))
        return;
    FIsPerforming = FJournal.Paused = true;
    if (step == TStep::Back)
        Get(FPos++).PerformUndo();
    else
        Get(--FPos).PerformRedo();
    if (IsAtSaved())
        RestoreSavedStates();
    FIsPerforming = FJournal.Paused = false;
    FJournal.Restart();
    TellChange();
    if (FMemo->Lines->OnChange)
        FMemo->Lines->OnChange();
}

unsigned TAdvUndoList::Here() const {
    return CanUndo() ? FEntries[size_t(FPos)]->Number : FForgotten;
}

void TAdvUndoList::MarkSaved() {
    if (!IsExact())
        return;
    Flush();
    FSaved = Here();
    FSealed = true;
    FSavedStates.clear();
    if (!FMemo)
        return;
    for (int row = 0; row < FMemo->Lines->Count(); ++row)
        FSavedStates.push_back(FMemo->Lines->ModifiedState(row));
    for (int i = 0; i < Count(); ++i)
        Change(i).Saved();
}

/// At the saved text no line differs from the file.
void TAdvUndoList::RestoreSavedStates() {
    TAdvMemoStrings& lines = *FMemo->Lines;
    for (int row = 0; row < lines.Count(); ++row) {
        const TLineModifiedState state =
            size_t(row) < FSavedStates.size() ? FSavedStates[size_t(row)] : lmUnmodified;
        if (lines.ModifiedState(row) != state)
            (void)lines.SetModifiedState(row, state);
    }
}
