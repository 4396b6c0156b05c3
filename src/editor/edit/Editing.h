#pragma once
// The basic edits at the caret, each with its undo entry. Undo entries replay these operations too.
#include "base/Text.h"

class TAdvCustomMemo;

class TMemoEditing {
public:
    explicit TMemoEditing(TAdvCustomMemo& memo) : FMemo(memo) {}

    void InsertChar(QChar c);
    void NewLine();
    void BackSpace();
    /// A negative `x` is the forward delete at the caret; otherwise the character that stood left of
    /// (x, y), where the caret was before it went to that character.
    void DeleteChar(int x, int y);
    /// Deletes the caret's line; of the only line nothing is left, not even an empty one.
    void DeleteLine();
    /// Deletes back to the start of a word, within the line.
    void DeleteWordLeft();
    /// Tab without a selection of several lines.
    void TabKey(bool shift, bool ctrl);

private:
    [[nodiscard]] string TabText(int& x);
    void PlaceBehind(int x, int y, int count);
    void StepBack();
    [[nodiscard]] bool SmartBackSpace();
    [[nodiscard]] string JoinNext(int row);
    void SmartTab();

    TAdvCustomMemo& FMemo;
};
