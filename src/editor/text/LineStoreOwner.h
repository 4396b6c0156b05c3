#pragma once
// What the line store asks of the control that shows it, and tells it.

class TLineStoreOwner {
public:
    virtual ~TLineStoreOwner() = default;

    /// Blanks that stand for a tab.
    [[nodiscard]] virtual int TabSize() const = 0;

    /// The caret's fields as they are; columns and lines count from 0.
    [[nodiscard]] virtual int CaretX() const = 0;
    [[nodiscard]] virtual int CaretY() const = 0;
    /// Writes the fields and does nothing else.
    virtual void WriteCaret(int x, int y) = 0;
    /// Moves the caret with everything that follows from it.
    virtual void MoveCaret(int x, int y) = 0;
    virtual void ClearSelection() = 0;
    virtual void ClearUndo() = 0;

    /// The text of row `index` or what precedes it changed: states that were computed for rows from there on
    /// are void, and so is what was remembered of the top row if it lies below.
    virtual void RowsTouched(int index) = 0;
    /// Rows came before row `index`, or from it on went: what is kept by row number moves along.
    virtual void RowsInserted(int index, int count) = 0;
    virtual void RowsRemoved(int index, int count) = 0;
    /// Deletes the caret's line as the user would, with undo; comes back to the store's RemoveRows.
    virtual void DeleteCaretLine() = 0;

    [[nodiscard]] virtual bool CodeFolding() const = 0;
    virtual void RemoveCodeFolding(int line) = 0;
    /// The line that ends folds is about to go: the ends move to the line before.
    virtual void MoveFoldEnd(int line) = 0;
    virtual void AutoCodeFold() = 0;

    /// Loading starts: no repaint per line. It ends with the longest length and one change event.
    virtual void LoadBegins() = 0;
    virtual void LoadEnds(int maxLength) = 0;

    [[nodiscard]] virtual bool WordWrapOn() const = 0;
    virtual void Wrap() = 0;
    virtual void Unwrap() = 0;
    virtual void UpdateWrap() = 0;

    /// Repaints rows only / brings ranges and painting up to date.
    virtual void Repaint() = 0;
    virtual void RefreshControl() = 0;
};
