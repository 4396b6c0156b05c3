#include "editor/place/Scrolling.h"

#include "editor/place/MemoState.h"

#include <algorithm>

void TMemoScroll::Resize(const TCellSize& cell, int clientWidth, int clientHeight) {
    FCellSize = cell;
    FClientWidth = clientWidth;
    FClientHeight = clientHeight;
    if (FMemo.Settings.FWordWrap == wwClientWidth)
        FMemo.UpdateWrap();
    UpdateRange();
}

int TMemoScroll::ColumnsInView() const {
    return FCellSize.W > 0 ? FClientWidth / FCellSize.W : 0;
}

int TMemoScroll::RowsInView() const {
    return FCellSize.H > 0 ? FClientHeight / FCellSize.H : 0;
}

int TMemoScroll::LastRowInView() const {
    return FMemo.Folding().StepVisible(FTopLine, std::max(0, RowsInView() - 1));
}

void TMemoScroll::SetLeftCol(int column) {
    if (column == FLeftCol)
        return;
    FLeftCol = std::max(0, column);
    FMemo.Repaint();
    UpdateRange();
}

void TMemoScroll::SetTopLine(int line) {
    line = FMemo.Folding().StepVisible(std::clamp(line, 0, std::max(0, FMemo.Lines().Count() - 1)), 0);
    if (line == FTopLine)
        return;
    FTopLine = line;
    FbackupTopLine = -1;
    FMemo.Repaint();
    UpdateRange();
}

void TMemoScroll::RowsTouched(int row) {
    if (row < FTopLine)
        FbackupTopLine = -1;
}

void TMemoScroll::ScrollCaretIntoView() {
    const bool columns = ScrollColumns();
    const bool rows = ScrollRows();
    if (columns || rows)
        FMemo.Repaint();
}

bool TMemoScroll::ScrollColumns() {
    const int columns = ColumnsInView();
    const int x = FMemo.Caret().X();
    const TMemoSettings& settings = FMemo.Settings;
    if (x < FLeftCol) {
        FLeftCol = std::max(0, x - 2);
        return true;
    }
    if (columns == 0 || x < FLeftCol + columns)
        return false;
    const bool bar = settings.FScrollBars == sbHorizontal || settings.FScrollBars == sbBoth;
    if (bar || settings.FScrollMode == smAuto)
        FLeftCol = std::clamp(x - columns + 2, FLeftCol, x); // two columns inside the right edge
    else
        FMemo.Caret().Write(FLeftCol + columns - 1, FMemo.Caret().Y());
    return true;
}

bool TMemoScroll::ScrollRows() {
    const int y = FMemo.Caret().Y();
    const TMemoSettings& settings = FMemo.Settings;
    if (y < FTopLine) {
        FTopLine = y;
        FbackupTopLine = -1;
        return true;
    }
    const int last = LastRowInView();
    if (RowsInView() == 0 || y <= last)
        return false;
    const TMemoFolding& folding = FMemo.Folding();
    const bool bar = settings.FScrollBars == sbVertical || settings.FScrollBars == sbBoth;
    if (bar || settings.FScrollMode == smAuto) {
        FTopLine = folding.StepVisible(FTopLine, folding.VisibleBefore(y) - folding.VisibleBefore(last));
        FbackupTopLine = -1;
    } else {
        FMemo.Caret().Write(std::min(FMemo.Caret().X(), FMemo.LineLength(last)), last);
    }
    return true;
}

TScrollRange TMemoScroll::Range() const {
    if (FbackupTopLine < 0)
        FbackupTopLine = FMemo.Folding().VisibleBefore(FTopLine);
    return {
        FMemo.Folding().VisibleCount(), FbackupTopLine, RowsInView(), FMaxLength, FLeftCol, ColumnsInView()};
}

void TMemoScroll::UpdateRange() {
    if (!FMemo.View)
        return;
    const TScrollRange range = Range();
    if (range == FTold)
        return;
    FTold = range;
    FMemo.View->ScrollChanged(range);
}
