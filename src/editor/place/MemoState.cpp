#include "editor/place/MemoState.h"

#include <algorithm>

TMemoState::~TMemoState() {
    FText->Detach(*this);
    QObject::disconnect(FStylerGone);
    if (FRules.Styler && FRules.Styler->FAllStyles.FOwner == this)
        FRules.Styler->FAllStyles.FOwner = nullptr;
}

void TMemoState::ShowText(TEditedText* text) {
    FText->Detach(*this);
    FText = text ? text : &FOwnText;
    FText->Attach(*this);
}

void TMemoState::Activate() {
    FText->Activate(*this);
    if (FText == &FOwnText)
        return;
    // Another control may have taken away the place of this one's caret.
    const int y = std::clamp(FCaret.Y(), 0, std::max(0, Lines().Count() - 1));
    const int x = std::min(FCaret.X(), LineLength(y));
    if (FCaret.IsAt(x, y))
        return;
    FCaret.Write(x, y);
    FSelection.Clear();
}

string TMemoState::LineText(int row) const {
    return row >= 0 && row < Lines().Count() ? Lines()[row] : string();
}

int TMemoState::LineLength(int row) const {
    return row >= 0 && row < Lines().Count() ? int(Lines()[row].size()) : 0;
}

int TMemoState::TrimmedLength(int row) const {
    int length = LineLength(row);
    if (length == 0 || IsContinuation(row + 1))
        return length;
    const string& line = Lines()[row];
    while (length > 0 && line[length - 1] == u' ')
        --length;
    return length;
}

void TMemoState::SetModifiedStateInt(int line, TLineModifiedState state) {
    if (Lines().SetModifiedState(line, state))
        RepaintRow(line);
}

int TMemoState::WrapLimit() const {
    return Settings.FWordWrap == wwRightMargin ? Settings.FRightMargin : FScroll.ColumnsInView() - 1;
}

void TMemoState::Unwrap() {
    if (Lines().Count() > 0)
        TWordWrap().Unwrap(Lines());
}

void TMemoState::UpdateWrap() {
    if (Settings.FWordWrap == wwNone)
        return;
    if (Lines().Count() > 0) {
        const TStringsUpdate update(Lines());
        Unwrap();
        TWordWrap().Wrap(Lines(), WrapLimit());
    }
    FScroll.UpdateRange();
}

void TMemoState::ArrangeLines() {
    UpdateWrap();
    FFolding.AutoCodeFold();
}

void TMemoState::GoToStart() {
    FCaret.MoveTo(0, 0);
    FSelection.Clear();
}

void TMemoState::LoadBegins() {
    GoToStart();
    UndoList().Clear();
    FLetRefresh = false;
}

void TMemoState::LoadEnds() {
    UndoList().Restart();
    FLetRefresh = true;
}

void TMemoState::Loaded(int longest) {
    FScroll.SetMaxLength(longest);
    LinesChanged();
}

void TMemoState::RowsTouched(int row) {
    ++FTextRevision;
    FScroll.RowsTouched(row);
    FLineStates.Invalidate(row);
}

void TMemoState::RowsInserted(int row, int count) {
    FBookmarks.RowsInserted(row, count);
    FFolding.LinesChanged();
}

void TMemoState::RowsRemoved(int row, int count) {
    FBookmarks.RowsRemoved(row, count);
    FFolding.LinesChanged();
}

void TMemoState::FoldsChanged() {
    FFolding.LinesChanged();
    RefreshControl();
}

void TMemoState::UndoChanged(bool canUndo, bool canRedo) {
    if (Events.FOnUndoChange)
        Events.FOnUndoChange(canUndo, canRedo);
}

void TMemoState::LinesChanged() {
    if (!FLetRefresh)
        return;
    RefreshControl();
    if (Events.OnChange)
        Events.OnChange();
}

void TMemoState::Repaint() {
    if (View && FLetRefresh)
        View->RepaintAll();
}

void TMemoState::RepaintRow(int row) {
    if (View && FLetRefresh)
        View->RepaintRows(row, row);
}

void TMemoState::RefreshControl() {
    Repaint();
    FScroll.UpdateRange();
}
