#include "editor/place/Selection.h"

#include "editor/place/MemoState.h"

#include <algorithm>
#include <tuple>

TSelectionRange TMemoSelection::Ordered() const {
    if (FBlock)
        return {std::min(FStartX, FEndX), std::min(FStartY, FEndY), std::max(FStartX, FEndX),
                std::max(FStartY, FEndY)};
    if (std::tie(FStartY, FStartX) <= std::tie(FEndY, FEndX))
        return Range();
    return {FEndX, FEndY, FStartX, FStartY};
}

bool TMemoSelection::IsBlock() const {
    return FBlock && !IsEmpty();
}

bool TMemoSelection::IsMultiLine() const {
    const TSelectionRange range = Ordered();
    return range.EndY - (range.EndX == 0 ? 1 : 0) > range.StartY;
}

bool TMemoSelection::ColumnsOf(int row, int& from, int& to) const {
    const TSelectionRange range = Ordered();
    if (IsEmpty() || row < range.StartY || row > range.EndY)
        return false;
    const int length = FMemo.LineLength(row);
    from = FBlock || row == range.StartY ? std::min(range.StartX, length) : 0;
    to = FBlock || row == range.EndY ? std::min(range.EndX, length) : length;
    return from < to;
}

string TMemoSelection::Text() const {
    const TSelectionRange range = Ordered();
    string text;
    if (IsEmpty())
        return text;
    const int last = std::min(range.EndY, FMemo.Lines().Count() - 1);
    for (int row = range.StartY; row <= last; ++row) {
        if (row > range.StartY && (FBlock || !FMemo.IsContinuation(row)))
            text += u'\r';
        int from = 0;
        int to = 0;
        if (ColumnsOf(row, from, to))
            text += QStringView(FMemo.LineText(row)).mid(from, to - from);
    }
    return text;
}

bool TMemoSelection::EndsAtCaret() const {
    return FMemo.Caret().IsAt(FPrevSelX, FPrevSelY);
}

void TMemoSelection::Collapse() {
    FStartX = FEndX = FMemo.Caret().X();
    FStartY = FEndY = FMemo.Caret().Y();
}

void TMemoSelection::Clear() {
    const bool had = !IsEmpty();
    Collapse();
    FPrevSelX = FEndX;
    FPrevSelY = FEndY;
    FBlock = FMemo.Settings.FSelectionMode == smBlock;
    if (had)
        Tell();
}

void TMemoSelection::Extend() {
    FBlock = FMemo.Settings.FSelectionMode == smBlock;
    FEndX = FPrevSelX = FMemo.Caret().X();
    FEndY = FPrevSelY = FMemo.Caret().Y();
    Tell();
}

void TMemoSelection::SelectAll() {
    const int last = std::max(0, FMemo.Lines().Count() - 1);
    FMemo.Caret().MoveTo(FMemo.LineLength(last), last);
    Take({0, 0, FMemo.LineLength(last), last}, /*block=*/false);
}

void TMemoSelection::Take(const TSelectionRange& range, bool block) {
    FStartX = range.StartX;
    FStartY = range.StartY;
    FEndX = FPrevSelX = range.EndX;
    FEndY = FPrevSelY = range.EndY;
    FBlock = block;
    Tell();
}

void TMemoSelection::SetStart(int x, int y) {
    FStartX = x;
    FStartY = y;
    Tell();
}

void TMemoSelection::EndUpdate() {
    if (--FUpdates == 0 && std::exchange(FWaiting, false))
        Tell();
}

void TMemoSelection::Tell() {
    if (FUpdates > 0) {
        FWaiting = true;
        return;
    }
    FMemo.Repaint();
    if (FMemo.Events.FOnSelectionChange)
        FMemo.Events.FOnSelectionChange();
}
