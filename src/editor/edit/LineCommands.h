#pragma once
// Commands for whole lines: those that the selection touches, or the caret's. A selection that ends at the
// start of a line doesn't count that one. Each is one undo step, keeps the selection on its text, and does
// nothing where the text can't be edited.
#include "base/Text.h"

class TMemoEditor;

class TLineCommands {
public:
    explicit TLineCommands(TMemoEditor& memo) : FMemo(memo) {}

    /// Puts the styler's mark of line comments before each line, below one another, or takes it away where
    /// all lines have it. Blank lines are left alone.
    void ToggleComment();
    void MoveUp();
    void MoveDown();
    /// Puts a copy above; caret and selection go down with the lines.
    void Duplicate();

private:
    /// Rows from the start of a line to the end of a line, whatever word wrap cuts.
    struct TRows {
        int First = 0;
        int Last = 0;
    };
    [[nodiscard]] bool Allowed() const;
    [[nodiscard]] TRows SelectedRows() const;
    [[nodiscard]] TRows LineAround(int row) const;
    [[nodiscard]] std::vector<string> LinesOf(const TRows& rows) const;
    void PutInPlace(const TRows& rows, const std::vector<string>& lines, int anchor, int caret);
    /// Offsets of both ends of the selection.
    [[nodiscard]] int Anchor() const;
    [[nodiscard]] int CaretOffset() const;

    TMemoEditor& FMemo;
};
