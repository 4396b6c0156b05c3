#include "editor/Memo.h"

#include <algorithm>

TAdvCustomMemo::TAdvCustomMemo() {
    FBridge.FMemos.push_back(this);
    FLines.Memo = &FBridge;
    FLines.OnChange = [this] { LinesChanged(); };
    FUndoList.SetMemo(&FBridge);
}

TAdvCustomMemo::~TAdvCustomMemo() {
    if (FMemoSource)
        FMemoSource->Detach(*this);
    QObject::disconnect(FStylerGone);
    if (FRules.Styler && FRules.Styler->FAllStyles.FOwner == this)
        FRules.Styler->FAllStyles.FOwner = nullptr;
}

TAdvMemoStrings& TAdvCustomMemo::Lines() {
    return FMemoSource ? FMemoSource->Lines : FLines;
}

const TAdvMemoStrings& TAdvCustomMemo::Lines() const {
    return FMemoSource ? FMemoSource->Lines : FLines;
}

TAdvUndoList& TAdvCustomMemo::UndoList() {
    return FMemoSource ? FMemoSource->UndoList : FUndoList;
}

void TAdvCustomMemo::SetMemoSource(TAdvMemoSource* source) {
    if (source == FMemoSource)
        return;
    if (FMemoSource)
        FMemoSource->Detach(*this);
    FMemoSource = source;
    if (source)
        source->Attach(*this);
    FCaret.Write(0, 0);
    FSelection.Clear();
    FScroll.SetTopLine(0);
    FFolding.LinesChanged();
    StylerChanged();
    RefreshControl();
}

void TAdvCustomMemo::Activate() {
    if (!FMemoSource)
        return;
    FMemoSource->Activate(*this);
    // Another control may have taken away the place of this one's caret.
    const int y = std::clamp(FCaret.Y(), 0, std::max(0, Lines().Count() - 1));
    const int x = std::min(FCaret.X(), LineLength(y));
    if (FCaret.IsAt(x, y))
        return;
    FCaret.Write(x, y);
    FSelection.Clear();
}

void TAdvCustomMemo::SetText(const string& text) {
    Activate();
    Lines().SetText(text);
    ClearUndoRedo();
    int longest = 0;
    for (int row = 0; row < Lines().Count(); ++row)
        longest = std::max(longest, LineLength(row));
    FScroll.SetMaxLength(longest);
    UpdateWrap();
    FFolding.AutoCodeFold();
    RefreshControl();
}

void TAdvCustomMemo::KeyDown(int key, TShiftState shift) {
    Activate();
    FKeys.KeyDown(key, shift);
}

void TAdvCustomMemo::KeyPress(QChar c) {
    Activate();
    FTyping.KeyPress(c);
}

void TAdvCustomMemo::Undo() {
    Activate();
    UndoList().Undo();
}

void TAdvCustomMemo::Redo() {
    Activate();
    UndoList().Redo();
}

bool TAdvCustomMemo::IsContinuation(int row) const {
    const TLineProp* prop = Lines().GetLineProp(row);
    return prop != nullptr && prop->Wrapped;
}

TLineModifiedState TAdvCustomMemo::GetModifiedState(int line) const {
    const TLineProp* prop = Lines().GetLineProp(line);
    return prop ? prop->Modified : lmUnmodified;
}

void TAdvCustomMemo::SetModifiedStateInt(int line, TLineModifiedState state) {
    if (line < 0 || line >= Lines().Count())
        return;
    TLineProp& prop = Lines().NeedLineProp(line);
    if (std::exchange(prop.Modified, state) != state)
        RepaintRow(line);
}

string TAdvCustomMemo::LineText(int row) const {
    return row >= 0 && row < Lines().Count() ? Lines()[row] : string();
}

int TAdvCustomMemo::LineLength(int row) const {
    return row >= 0 && row < Lines().Count() ? int(Lines()[row].size()) : 0;
}

int TAdvCustomMemo::TrimmedLength(int row) const {
    int length = LineLength(row);
    if (length == 0 || IsContinuation(row + 1))
        return length;
    const string& line = Lines()[row];
    while (length > 0 && line[length - 1] == u' ')
        --length;
    return length;
}

void TAdvCustomMemo::Wrap() {
    if (Lines().Count() == 0 || Settings.FWordWrap == wwNone)
        return;
    FWrap.Wrap(Lines(), WrapLimit());
    if (Lines().LockCount() == 0)
        Repaint();
}

void TAdvCustomMemo::Unwrap() {
    if (Lines().Count() > 0)
        FWrap.Unwrap(Lines());
}

int TAdvCustomMemo::WrapLimit() const {
    return Settings.FWordWrap == wwRightMargin ? Settings.FRightMargin : FScroll.ColumnsInView() - 1;
}

void TAdvCustomMemo::UpdateWrap() {
    if (Settings.FWordWrap == wwNone)
        return;
    {
        const TStringsUpdate update(Lines());
        Unwrap();
        Wrap();
    }
    FScroll.UpdateRange();
}

void TAdvCustomMemo::SetWordWrap(TWordWrapStyle style) {
    Activate();
    const int offset = FWords.TextFromPos(FCaret.X(), FCaret.Y());
    if (Settings.FWordWrap != wwNone)
        Unwrap();
    Settings.FWordWrap = style;
    UpdateWrap();
    int x = 0;
    int y = 0;
    FWords.PosFromText(offset, x, y);
    FCaret.Write(x, y);
    FSelection.Clear();
    RefreshControl();
}
