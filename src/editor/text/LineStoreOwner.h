#pragma once
// What the line store tells the controls that show it, and asks of the one that the user works with.
#include "base/Text.h"

#include <vector>

struct TMemoSettings;

/// Notes changes of lines before they are made.
class TLineJournal {
public:
    virtual ~TLineJournal() = default;
    /// `count` rows from `row` on give way to the lines of `by`.
    virtual void Replaces(int row, int count, const std::vector<string>& by) = 0;
};

class TLineStoreOwner {
public:
    virtual ~TLineStoreOwner() = default;

    // Told to every control.
    /// The text of row `index` or what precedes it changed: states that were computed for rows from there on
    /// are void, and so is what was remembered of the top row if it lies below.
    virtual void RowsTouched(int index) = 0;
    /// Rows came before row `index`, or from it on went: what is kept by row number moves along.
    virtual void RowsInserted(int index, int count) = 0;
    virtual void RowsRemoved(int index, int count) = 0;
    /// Folds were opened or closed.
    virtual void FoldsChanged() = 0;
    /// Other lines are there now, of which the longest has that length.
    virtual void Loaded(int longest) = 0;
    /// Brings ranges and painting up to date.
    virtual void RefreshControl() = 0;

    // Asked of the active one.
    [[nodiscard]] virtual const TMemoSettings& StoreSettings() const = 0;
    /// The columns that word wrap leaves a line.
    [[nodiscard]] virtual int WrapLimit() const = 0;
    virtual void ClearSelection() = 0;
    /// Brings the caret in range.
    virtual void ClampCaret() = 0;
    /// Nothing is selected, and the caret stands before the text.
    virtual void GoToStart() = 0;
    /// Deletes a row as the user would, with undo, and keeps the caret's place; comes back to the store's
    /// RemoveRows.
    virtual void DeleteRow(int index) = 0;
    /// Loading starts: the history goes, and nothing repaints per line until it ends.
    virtual void LoadBegins() = 0;
    virtual void LoadEnds() = 0;
    /// Cuts the lines for word wrap and finds the folds.
    virtual void ArrangeLines() = 0;
};
