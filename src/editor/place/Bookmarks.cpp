#include "editor/place/Bookmarks.h"

#include "editor/text/LineStore.h"

TBookmarks::TBookmarks() {
    for (int i = 0; i < Count; ++i)
        FBookmarkList.Add(-1);
}

void TBookmarks::Set(int bookmark, int line, TAdvMemoStrings& lines) {
    Remove(bookmark, lines);
    if (line < 0 || line >= lines.Count())
        return;
    FBookmarkList.SetInteger(bookmark, line);
    TLineProp& prop = lines.NeedLineProp(line);
    prop.Bookmark = true;
    prop.BookmarkIndex = bookmark;
}

void TBookmarks::Remove(int bookmark, TAdvMemoStrings& lines) {
    if (TLineProp* prop = lines.GetLineProp(Line(bookmark)); prop && prop->BookmarkIndex == bookmark)
        prop->Bookmark = false;
    FBookmarkList.SetInteger(bookmark, -1);
}

void TBookmarks::RowsInserted(int row, int count) {
    for (int i = 0; i < Count; ++i) {
        if (Line(i) >= row)
            FBookmarkList.SetInteger(i, Line(i) + count);
    }
}

void TBookmarks::RowsRemoved(int row, int count) {
    for (int i = 0; i < Count; ++i) {
        if (Line(i) >= row + count)
            FBookmarkList.SetInteger(i, Line(i) - count);
        else if (Line(i) >= row) // its line went
            FBookmarkList.SetInteger(i, -1);
    }
}
