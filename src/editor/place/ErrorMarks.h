#pragma once
// Error marks: places in the text that something is wrong with. They are kept in the lines' TLineProp, and a
// line loses its marks when its text changes.
#include <vector>

class TMemoState;

struct TErrorMark {
    int Column = 0;
    int Length = 1;
    bool operator==(const TErrorMark&) const = default;
};

class TErrorMarks {
public:
    explicit TErrorMarks(TMemoState& memo) : FMemo(memo) {}

    /// Marks `length` characters. A row out of range is the nearest one, and the mark ends with the line; at
    /// or behind the line's end, as in an empty line, it takes the one cell there. No text, no mark.
    void Set(int row, int column, int length);
    void Clear();
    [[nodiscard]] std::vector<TErrorMark> Of(int row) const;

private:
    TMemoState& FMemo;
};
