#pragma once
// The word at the caret, wherever else it stands: what a window marks.
#include "editor/text/ColumnRange.h"

#include "base/Text.h"

class TMemoState;

class TEqualWords {
public:
    explicit TEqualWords(TMemoState& memo) : FMemo(memo) {}

    /// The columns of `row` that hold the word at the caret as a whole word, in code. Nothing while a
    /// selection is another text than that word, and for words of one letter and those of the language.
    [[nodiscard]] std::vector<TColumnRange> ColumnsOf(int row) const;

private:
    [[nodiscard]] string Word() const;

    TMemoState& FMemo;
};
