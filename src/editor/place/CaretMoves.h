#pragma once
// What the moving keys do with caret and selection.
#include "editor/place/MemoView.h"

class TMemoState;

class TCaretMoves {
public:
    explicit TCaretMoves(TMemoState& memo) : FMemo(memo) {}

    /// Ctrl moves by words, Shift extends a selection that ends at the caret.
    void MoveCaret(int dx, int dy, TShiftState shift);
    void Home(TShiftState shift);
    void End(TShiftState shift);
    void Page(int direction, TShiftState shift); ///< -1 up, 1 down
    void WordLeft();
    void WordRight();
    /// Scrolls the view by one line; the caret stays in it.
    void ScrollLine(int direction);

private:
    [[nodiscard]] bool Extends(TShiftState shift) const;
    void EndMove(bool extends);
    void EndJump(TShiftState shift, int startX, int startY);
    void MoveColumn(int dx, int dy, TShiftState shift);
    [[nodiscard]] int EnhancedHome() const;
    [[nodiscard]] int SmartHome() const;
    [[nodiscard]] int LineEnd(int row) const;
    void MovePage(int rows);

    TMemoState& FMemo;
};
