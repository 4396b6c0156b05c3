#pragma once
// Ten numbered bookmarks, each at a line.
#include "editor/text/IntList.h"

class TAdvMemoStrings;

class TBookmarks {
public:
    static constexpr int Count = 10;
    TBookmarks();

    /// The bookmark's line; -1 if it isn't set.
    [[nodiscard]] int Line(int bookmark) const { return FBookmarkList[bookmark]; }
    void Set(int bookmark, int line, TAdvMemoStrings& lines);
    void Remove(int bookmark, TAdvMemoStrings& lines);
    /// Rows came or went: bookmarks at and behind `row`, or behind it, move along.
    void RowsInserted(int row, int count);
    void RowsRemoved(int row, int count);

private:
    TIntList FBookmarkList;
};
