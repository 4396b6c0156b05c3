#pragma once
// TAdvUndoList: the history of edits, newest first.
//
// As it stands, entries replay editing operations, with all that those do not bring back. An exact history is
// made of the lines that gave way to others instead: what is undone and redone is the text as it was, steps
// are forgotten whole, and one step is a line of typing at most.
#include "editor/history/ChangeUndo.h"

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

    /// Keeps an exact history of `lines` from here on, of up to `limit` steps. Empties the list.
    void KeepExactly(TAdvMemoStrings& lines, int limit);
    [[nodiscard]] bool IsExact() const { return FJournal.Watches(); }
    /// What was changed without an entry becomes a step; called before what begins anew.
    void Flush();
    /// The lines as they are now are where the next step of an exact history begins.
    void Restart() { FJournal.Restart(); }
    /// What is changed between the two is one step of an exact history; the caret stood at (x0, y0) before.
    void Hold() { ++FHeld; }
    void Release(int x0, int y0);
    /// See TChangeUndo::GoOn.
    void GoOn(int x0, int y0, int x, int y);
    /// The text was saved as it is now, or is that again. In an exact history only.
    void MarkSaved();
    /// Tells states of the text apart: the number of the newest entry that isn't undone; of the last one
    /// forgotten where there is none.
    [[nodiscard]] unsigned Here() const;
    [[nodiscard]] bool IsAtSaved() const { return FSaved == Here(); }

    /// The control that is undone on; entries of another go along.
    void SetMemo(TUndoTarget* memo);
    [[nodiscard]] TUndoTarget* Memo() const { return FMemo; }

private:
    /// Returns whether indentation was on.
    [[nodiscard]] bool BeginPerforming();
    void EndPerforming(bool autoIndent);
    void TellChange();
    int Push(std::unique_ptr<TUndo> entry);
    int AddExactly(const TUndo& entry);
    enum class TStep { Back, Forth };
    void StepExactly(TStep step);
    [[nodiscard]] TChangeUndo& Change(int index) const;
    void ForgetLast();
    void RestoreSavedStates();

    std::vector<std::unique_ptr<TUndo>> FEntries; // at most FLimit
    int FPos = 0;
    TUndoTarget* FMemo;
    bool FIsPerforming = false;
    int FLimit = 100;
    TChangeJournal FJournal;
    unsigned FLastNumber = 0;
    unsigned FForgotten = 0;                      // the newest one that the limit pushed out
    unsigned FSaved = 0;                          // where the text was saved
    std::vector<TLineModifiedState> FSavedStates; // of the lines then; those behind are unmodified
    int FHeld = 0;
    bool FSealed = false; // nothing merges into what was saved
};
