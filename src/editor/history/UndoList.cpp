#include "editor/history/UndoList.h"

#include "base/Exceptions.h"

int TAdvUndoList::Add(std::unique_ptr<TUndo> entry) {
    if (FIsPerforming || (FHeld > 0 && IsExact()))
        return -1;
    if (IsExact())
        return AddExactly(*entry);
    // The newest entry is asked even while it is undone, on purpose: typing may go on where it ended.
    if (!FEntries.empty() && FEntries.front()->Append(*entry))
        return -1;
    return Push(std::move(entry));
}

int TAdvUndoList::Push(std::unique_ptr<TUndo> entry) {
    entry->Memo = FMemo;
    entry->Number = ++FLastNumber;
    FEntries.erase(FEntries.begin(), FEntries.begin() + FPos);
    FPos = 0;
    FEntries.insert(FEntries.begin(), std::move(entry));
    if (Count() > FLimit)
        ForgetLast();
    TellChange();
    return 0;
}

void TAdvUndoList::ForgetLast() {
    FForgotten = FEntries.back()->Number;
    FEntries.pop_back();
}

void TAdvUndoList::SetMemo(TUndoTarget* memo) {
    FMemo = memo;
    for (const auto& entry : FEntries)
        entry->Memo = memo;
}

void TAdvUndoList::TellChange() {
    if (OnChange)
        OnChange(CanUndo(), CanRedo());
}

bool TAdvUndoList::BeginPerforming() {
    const bool autoIndent = FMemo->Settings.FAutoIndent;
    FMemo->Settings.FAutoIndent = false; // replayed line breaks must not indent by themselves
    FIsPerforming = true;
    return autoIndent;
}

void TAdvUndoList::EndPerforming(bool autoIndent) {
    FIsPerforming = false;
    FMemo->Settings.FAutoIndent = autoIndent;
    TellChange();
}

void TAdvUndoList::Perform(TUndo& entry) {
    if (!FMemo)
        return;
    entry.Memo = FMemo;
    const bool autoIndent = BeginPerforming();
    entry.PerformRedo();
    EndPerforming(autoIndent);
}

void TAdvUndoList::Undo() {
    if (IsExact())
        return StepExactly(TStep::Back);
    if (!CanUndo() || !FMemo)
        return;
    const bool autoIndent = BeginPerforming();
    TUndo& entry = Get(FPos);
    entry.Undo();
    // A linked entry whose partner fell off the end raises here and leaves the list performing and
    // indentation off, on purpose: the history is no longer whole, and nothing more is recorded.
    if (entry.FLinkedUndo)
        Get(++FPos).Undo();
    ++FPos;
    EndPerforming(autoIndent);
}

void TAdvUndoList::Redo() {
    if (IsExact())
        return StepExactly(TStep::Forth);
    if (!CanRedo() || !FMemo)
        return;
    const bool autoIndent = BeginPerforming();
    Get(--FPos).Redo();
    if (FPos > 0 && Get(FPos - 1).FLinkedUndo)
        Get(--FPos).Redo();
    EndPerforming(autoIndent);
    FMemo->Lines->OnChange(); // undo leaves that out, on purpose: its replayed edits have told already
}

void TAdvUndoList::Clear() {
    FEntries.clear();
    FPos = 0;
    FIsPerforming = false; // an empty history is whole, whatever broke off before
    FForgotten = FSaved = FLastNumber;
    FSavedStates.clear();
    FJournal.Restart();
    TellChange();
}

void TAdvUndoList::Delete(int index) {
    (void)Get(index);
    FEntries.erase(FEntries.begin() + index);
}

TUndo& TAdvUndoList::Get(int index) const {
    if (index < 0 || index >= Count())
        throw Exception(string("List index out of bounds (%1)").arg(index));
    return *FEntries[size_t(index)];
}

void TAdvUndoList::SetLimit(int limit) {
    if (limit == FLimit)
        return;
    FLimit = 100;
    Clear();
}
