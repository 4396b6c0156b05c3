#pragma once
// The selection: from where it was begun to its moving end, as running text or as a rectangle.
#include "editor/history/UndoTarget.h"

class TMemoState;

class TMemoSelection final : public TUndoSelection {
public:
    explicit TMemoSelection(TMemoState& memo) : FMemo(memo) {}

    [[nodiscard]] bool IsEmpty() const { return FStartX == FEndX && FStartY == FEndY; }
    [[nodiscard]] TSelectionRange Range() const { return {FStartX, FStartY, FEndX, FEndY}; }
    /// In text order within the text; for a block its top left and bottom right corner.
    [[nodiscard]] TSelectionRange Ordered() const;
    [[nodiscard]] bool IsBlock() const;
    /// More than one line; a last line counts only from column 1.
    [[nodiscard]] bool IsMultiLine() const;
    /// The columns of `row` that are selected, `to` excluded. False if none are.
    [[nodiscard]] bool ColumnsOf(int row, int& from, int& to) const;
    /// Line breaks are carriage returns; a wrapped line's cuts are none.
    [[nodiscard]] string Text() const;

    /// Nothing is selected, and the next Shift move begins at the caret.
    void Clear() override;
    void Extend();
    void SelectAll();
    void Take(const TSelectionRange& range, bool block) override;
    /// Start and end take the caret without a notice.
    void Collapse();
    void SetStart(int x, int y);

    void BeginUpdate() override { ++FUpdates; }
    void EndUpdate() override;

    /// The caret stands where the selection last ended.
    [[nodiscard]] bool EndsAtCaret() const;

private:
    void Tell();

    TMemoState& FMemo;
    int FStartX = 0, FStartY = 0, FEndX = 0, FEndY = 0;
    int FPrevSelX = 0, FPrevSelY = 0;
    bool FBlock = false;
    int FUpdates = 0;
    bool FWaiting = false;
};
