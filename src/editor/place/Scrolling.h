#pragma once
// What part of the text the view shows.
#include "editor/place/MemoView.h"

class TMemoState;

class TMemoScroll {
public:
    explicit TMemoScroll(TMemoState& memo) : FMemo(memo) {}

    [[nodiscard]] int LeftCol() const { return FLeftCol; }
    [[nodiscard]] int TopLine() const { return FTopLine; } ///< a row of the store
    void SetLeftCol(int column);
    /// Brings `line` in range and repaints.
    void SetTopLine(int line);
    /// The window's geometry; a view calls it whenever that changes.
    void Resize(const TCellSize& cell, int clientWidth, int clientHeight);
    [[nodiscard]] TCellSize CellSize() const { return FCellSize; }
    [[nodiscard]] int ColumnsInView() const; ///< 0 without a window
    [[nodiscard]] int RowsInView() const;
    [[nodiscard]] int LastRowInView() const;

    void ScrollCaretIntoView();
    /// Tells the view its scroll range if it changed.
    void UpdateRange();
    [[nodiscard]] TScrollRange Range() const;

    /// Text before or at `row` changed: what is remembered of the top line may be stale.
    void RowsTouched(int row);
    [[nodiscard]] int MaxLength() const { return FMaxLength; }
    void SetMaxLength(int length) { FMaxLength = length; }

private:
    bool ScrollColumns();
    bool ScrollRows();

    TMemoState& FMemo;
    TCellSize FCellSize;
    int FClientWidth = 0;
    int FClientHeight = 0;
    int FLeftCol = 0;
    int FTopLine = 0;
    mutable int FbackupTopLine = -1; // visible rows above the top line; -1 when stale
    int FMaxLength = 0;
    TScrollRange FTold;
};
