#pragma once
// The caret: its column and line, and the two setters through which every move goes.
#include "editor/history/UndoTarget.h"

class TMemoState;

class TMemoCaret final : public TUndoCaret {
public:
    explicit TMemoCaret(TMemoState& memo) : FMemo(memo) {}

    [[nodiscard]] int X() const override { return FCurX; } ///< columns and lines count from 0
    [[nodiscard]] int Y() const override { return FCurY; }
    [[nodiscard]] bool IsAt(int x, int y) const { return FCurX == x && FCurY == y; }
    /// Writes the fields and does nothing else.
    void Write(int x, int y) {
        FCurX = x;
        FCurY = y;
    }

    /// Brings `y` in range, adding a line to an empty store; leaves the old line, which may trim it.
    void SetLine(int y) override;
    /// Column -1 is the end of the visible line above. A column past the end of the line pads the line with
    /// FAutoExpand and is brought back without.
    void SetColumn(int x) override;
    void MoveTo(int x, int y) {
        SetLine(y);
        SetColumn(x);
    }

    /// Folds are recomputed when the caret next leaves its line.
    bool FShouldCheckCodeFolding = false;

private:
    void LeaveLine(int y);
    int EnsureReachable(int x);
    void Placed();

    TMemoState& FMemo;
    int FCurX = 0;
    int FCurY = 0;
    int FActiveLine = 0;
};
