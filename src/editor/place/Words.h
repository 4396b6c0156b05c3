#pragma once
// Words and places of the text.
#include "base/Text.h"

class TMemoState;

class TMemoWords {
public:
    explicit TMemoWords(const TMemoState& memo) : FMemo(memo) {}

    /// The word at the caret, up to word breaks on both sides; empty if there is none.
    [[nodiscard]] string WordAtCursor() const;
    /// Its part left of the caret.
    [[nodiscard]] string WordTillCursor() const;
    /// The chain of words and class delimiters that ends at the caret, such as "a.b.".
    [[nodiscard]] string FullWordAtCursor() const;
    /// The word around a place.
    [[nodiscard]] string TokenAtXY(int x, int y) const;
    /// Where the word around a place lies, `to` excluded.
    void WordBounds(int x, int y, int& from, int& to) const;

    /// What stops the caret when it moves by words.
    [[nodiscard]] string Delimiters() const;

    /// A place counted in characters from the start of the text, a line break as one; the cuts of wrapped
    /// lines count nothing.
    [[nodiscard]] int TextFromPos(int x, int y) const;
    void PosFromText(int offset, int& x, int& y) const;

private:
    const TMemoState& FMemo;
};
