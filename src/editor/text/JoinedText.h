#pragma once
// The whole text in one piece, with wrapped lines joined and a line feed between lines, and the way between
// its offsets and the rows of the store. The offsets are those of TMemoWords, found faster.
#include "base/Text.h"

class TAdvMemoStrings;

class TJoinedText {
public:
    /// Takes the text if it isn't the one that was taken last. True: it was another.
    bool Update(const TAdvMemoStrings& lines);
    [[nodiscard]] const string& Text() const { return FText; }

    [[nodiscard]] int OffsetOf(int x, int y) const;
    /// A place between two pieces of a wrapped line is the start of the second.
    void PlaceOf(int offset, int& x, int& y) const;
    /// Where a row begins; the end of the text for rows behind the last.
    [[nodiscard]] int RowStart(int row) const;

private:
    const TAdvMemoStrings* FTaken = nullptr;
    unsigned FRevision = 0;
    string FText;
    std::vector<int> FStarts; // of the rows; never empty after an update
};
