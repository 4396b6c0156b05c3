#pragma once
// The window's way into the control for keys and typed text. The control counts in UTF-16 units; here they
// are kept together: a surrogate pair is never cut and the caret never stands inside one. Left and Right also
// step over what combines with a character, and Delete takes it along; Backspace takes code point by code
// point.
#include "editor/edit/MemoEditor.h"

class TSurrogatePairs {
public:
    explicit TSurrogatePairs(TMemoEditor& memo) : FMemo(memo) {}

    /// A key, and the control character that comes with it, 0 for none.
    void Key(int key, TShiftState shift, char16_t character = 0);
    /// Typed characters; line breaks of any kind are Enter.
    void Type(QStringView text);
    /// Puts `text` in the place of a piece of the text, in one undo step. Typed, so the control may refuse
    /// it.
    void Replace(const TSelectionRange& range, QStringView text);
    /// A key of its own, such as a menu sends.
    void Execute(int key);
    void DeleteSelection();
    void Undo();
    void Redo();

    /// Brings caret and selection out of pairs.
    void Snap();
    /// Makes the selection take in the pairs that it cuts; a block becomes wider.
    void WidenSelection();

private:
    void Send(int key, TShiftState shift, char16_t character);
    void Step(int key, TShiftState shift);
    void Erase(int key, TShiftState shift, char16_t character);
    void TypeCharacter(QStringView character);
    [[nodiscard]] bool CutsInOverwriting(QStringView character, TSelectionRange& replaced) const;
    [[nodiscard]] bool Press(QStringView character);
    void DeleteRestOfPairs();
    [[nodiscard]] bool IsWholeAround(int row) const;
    [[nodiscard]] QChar UnitBeforeCaret() const;
    [[nodiscard]] QChar UnitAfterCaret() const;

    TMemoEditor& FMemo;
};
