#include "editor/place/Caret.h"

#include "editor/place/MemoState.h"

#include <algorithm>

void TMemoCaret::SetLine(int y) {
    TAdvMemoStrings& lines = FMemo.Lines();
    if (lines.Count() == 0)
        lines.Add({});
    y = std::clamp(y, 0, lines.Count() - 1);
    if (FMemo.Settings.FShowActiveLine && y != FActiveLine) {
        const int old = std::exchange(FActiveLine, y);
        FMemo.RepaintRow(old);
        FMemo.RepaintRow(y);
        if (FMemo.Events.FOnActiveLineChange)
            FMemo.Events.FOnActiveLineChange(y);
    }
    const bool leaves = y != FCurY;
    if (leaves) {
        LeaveLine(std::exchange(FCurY, y));
        SetColumn(FCurX); // the new line may be shorter
    }
    Placed();
    if (leaves && std::exchange(FShouldCheckCodeFolding, false))
        FMemo.Folding().AutoCodeFold();
}

void TMemoCaret::LeaveLine(int y) {
    // What an undo puts back stays as it was.
    const bool trims = !FMemo.UndoList().IsPerforming() &&
                       (FMemo.Settings.FTrimTrailingSpaces || FMemo.Settings.FWordWrap != wwNone);
    const int length = FMemo.TrimmedLength(y);
    if (trims && length < FMemo.LineLength(y))
        FMemo.Lines().Put(y, FMemo.LineText(y).left(length));
    FMemo.Assist().HideHint();
}

void TMemoCaret::SetColumn(int x) {
    const bool expands = FMemo.Settings.FAutoExpand;
    if (expands && x == FCurX && x <= FMemo.LineLength(FCurY))
        return;
    if (!expands && FMemo.Lines().Count() == 0)
        return;
    if (x < 0) {
        const int above = FCurY == 0 ? 0 : FMemo.Folding().StepVisible(FCurY, -1);
        if (above < FCurY) {
            SetLine(above);
            x = FMemo.LineLength(FCurY);
        } else {
            x = 0;
        }
    }
    TMemoScroll& scroll = FMemo.Scroll();
    if (x > scroll.MaxLength()) {
        if (scroll.ColumnsInView() > 0)
            scroll.SetLeftCol(std::max(0, x - scroll.ColumnsInView()));
        scroll.SetMaxLength(x);
    }
    FCurX = EnsureReachable(x);
    Placed();
    if (FMemo.Events.FOnColumnChange)
        FMemo.Events.FOnColumnChange(FCurX);
}

/// Pads the line up to `x` where that is allowed; returns the column that the caret may take.
int TMemoCaret::EnsureReachable(int x) {
    TAdvMemoStrings& lines = FMemo.Lines();
    const int length = FMemo.LineLength(FCurY);
    if (x <= length)
        return x;
    if (!FMemo.Settings.FAutoExpand)
        return length;
    if (lines.Count() == 0)
        lines.Add(string(x, u' '));
    else if (FCurY < lines.Count())
        lines.Put(FCurY, FMemo.LineText(FCurY) + string(x - length, u' '));
    return x;
}

void TMemoCaret::Placed() {
    FMemo.Scroll().ScrollCaretIntoView();
    FMemo.Scroll().UpdateRange();
    if (FMemo.View)
        FMemo.View->CaretMoved();
    if (FMemo.Events.FOnCursorChange)
        FMemo.Events.FOnCursorChange();
}
