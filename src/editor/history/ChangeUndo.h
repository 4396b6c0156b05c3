#pragma once
// An entry of an exact history: it puts back the very lines that were there, whatever operation changed them.
#include "editor/history/LineChange.h"
#include "editor/history/UndoEntries.h"

class TChangeUndo final : public TUndo {
public:
    /// `entry` is what the operation would have recorded otherwise: it tells where the caret stood, what was
    /// selected, and what sort of edit it was.
    TChangeUndo(TLineChanges changes, const TUndo& entry);

    /// Takes over the changes of an operation that goes on where this entry ended: typing and deleting in a
    /// line, and whatever says that it belongs to the step before.
    [[nodiscard]] bool Append(TLineChanges& changes, const TUndo& entry);
    [[nodiscard]] bool Append(const TUndo& /*next*/) override { return false; }
    /// The caret went on without an edit, as over a bracket that was there already.
    void GoOn(int x0, int y0, int x, int y);
    void PerformUndo() override;
    void PerformRedo() override;
    /// The text as it is was saved: what is put back from here on differs from the file.
    void Saved();

private:
    enum class TSort { Other, Typing, Backspace, Delete, Erasing };
    [[nodiscard]] static TSort SortOf(const TUndo& entry);
    void TakeSelections(const TUndo& entry);
    void Perform(void (*change)(const TLineChanges&, TAdvMemoStrings&), int x, int y);
    void PlaceCaret(int x, int y);

    TLineChanges FChanges;
    TSort FSort;
    TSelectionRange FBefore, FAfter; // empty: nothing was selected
    bool FBlock = false;             // of what was selected before
};
