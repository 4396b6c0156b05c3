#pragma once
// TAdvUndoList: the history of edits, newest first.
#include "editor/history/UndoEntries.h"

#include <memory>
#include <vector>

class TAdvUndoList {
public:
    explicit TAdvUndoList(TUndoTarget* memo = nullptr) : FMemo(memo) {}
    TAdvUndoList(const TAdvUndoList&) = delete;
    TAdvUndoList& operator=(const TAdvUndoList&) = delete;

    std::function<void(bool canUndo, bool canRedo)> OnChange; ///< may be empty

    /// 0: stored as a new entry, and the redo history is gone. -1: swallowed by the newest entry, or
    /// discarded because an undo or redo is running; the entry is destroyed.
    int Add(std::unique_ptr<TUndo> entry);
    /// Does for the first time what `entry` redoes, with recording suspended; adds nothing.
    void Perform(TUndo& entry);
    /// Both do nothing at their end of the history, and without a control.
    void Undo();
    void Redo();
    void Clear();
    void Delete(int index);
    /// Out of range raises Exception.
    [[nodiscard]] TUndo& Get(int index) const;
    [[nodiscard]] int Count() const { return int(FEntries.size()); }

    /// Entries at the front that are undone at present.
    [[nodiscard]] int Position() const { return FPos; }
    [[nodiscard]] bool CanUndo() const { return FPos < Count(); }
    [[nodiscard]] bool CanRedo() const { return FPos > 0; }
    [[nodiscard]] bool IsPerforming() const { return FIsPerforming; }
    [[nodiscard]] int Limit() const { return FLimit; }
    /// Any value but the present one empties the list and leaves the limit at 100, on purpose.
    void SetLimit(int limit);

    /// The control that is undone on; entries of another go along.
    void SetMemo(TUndoTarget* memo);
    [[nodiscard]] TUndoTarget* Memo() const { return FMemo; }

private:
    /// Returns whether indentation was on.
    [[nodiscard]] bool BeginPerforming();
    void EndPerforming(bool autoIndent);
    void TellChange();

    std::vector<std::unique_ptr<TUndo>> FEntries; // at most FLimit
    int FPos = 0;
    TUndoTarget* FMemo;
    bool FIsPerforming = false;
    int FLimit = 100;
};
