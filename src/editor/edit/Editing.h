#pragma once
// The basic edits at the caret, each with its undo entry. Undo entries replay these operations too.
#include "editor/history/UndoTarget.h"

class TMemoState;

class TMemoEditing final : public TUndoEdits {
public:
    explicit TMemoEditing(TMemoState& memo) : FMemo(memo) {}

    void InsertChar(QChar c) override;
    void NewLine() override;
    void BackSpace() override;
    /// A negative `x` is the forward delete at the caret; otherwise the character that stood left of
    /// (x, y), where the caret was before it went to that character.
    void DeleteChar(int x, int y) override;
    /// Deletes the caret's line; of the only line nothing is left, not even an empty one.
    void DeleteLine() override;
    /// Deletes back to the start of a word, within the line.
    void DeleteWordLeft();
    /// Deletes up to the next word, within the line; at its end the line break.
    void DeleteWordRight();
    /// Tab without a selection of several lines.
    void TabKey(bool shift, bool ctrl);

private:
    [[nodiscard]] string TabText(int& x);
    void PlaceBehind(int x, int y, int count);
    void StepBack();
    [[nodiscard]] bool SmartBackSpace();
    [[nodiscard]] string JoinNext(int row);
    void SmartTab();

    TMemoState& FMemo;
};
