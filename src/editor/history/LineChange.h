#pragma once
// What an edit did to the lines: exactly which gave way to which. Rows are those of whole lines, whatever
// word wrap cuts, and a text without lines counts as one with an empty line, which the caret would add
// anyway.
#include "editor/text/LineStore.h"

struct TLineChange {
    int Row = 0;
    std::vector<string> Old, New;
    std::vector<TLineModifiedState> States; ///< of the old lines

    /// Takes over `next`, made later, where that goes on at the same single line.
    [[nodiscard]] bool Append(const TLineChange& next);
};

using TLineChanges = std::vector<TLineChange>; ///< in the order in which they were made

/// Puts the lines in as they were before the changes, or as they were after them. Nothing else may have
/// changed them meanwhile.
void TakeBack(const TLineChanges& changes, TAdvMemoStrings& lines);
void MakeAgain(const TLineChanges& changes, TAdvMemoStrings& lines);

/// Notes what happens to a store. Cuts of word wrap aren't changes: while it is on, the text is compared with
/// the one that was taken last.
class TChangeJournal : public TLineJournal {
public:
    /// Borrowed; null ends it.
    void Watch(TAdvMemoStrings* lines);
    [[nodiscard]] bool Watches() const { return FLines != nullptr; }
    /// What has been noted since the last time.
    [[nodiscard]] TLineChanges Take();
    /// Forgets what was noted: the lines as they are now are where the next change begins.
    void Restart();
    /// Nothing is noted as long as it is held.
    bool Paused = false;

    void Replaces(int row, int count, const std::vector<string>& by) override;

private:
    [[nodiscard]] bool Wraps() const;
    void Compare();

    TAdvMemoStrings* FLines = nullptr;
    TLineChanges FChanges;
    std::vector<string> FTaken; // the whole lines, while word wrap is on
};
