#include "editor/Memo.h"

#include <algorithm>

TAdvCustomMemo::~TAdvCustomMemo() {
    if (FMemoSource)
        FMemoSource->Remove(*this);
}

void TAdvCustomMemo::SetStyler(TAdvCustomMemoStyler* styler) {
    FInternalStyles = styler;
    if (!FMemoSource)
        TakeStyler(styler);
}

void TAdvCustomMemo::StylerChanged() {
    TakeStyler(FMemoSource ? FMemoSource->Styler() : FInternalStyles.data());
}

void TAdvCustomMemo::SetMemoSource(TAdvMemoSource* source) {
    if (source == FMemoSource)
        return;
    if (FMemoSource)
        FMemoSource->Remove(*this);
    FMemoSource = source;
    if (source)
        source->Add(*this);
    ShowText(source);
    Caret().Write(0, 0);
    ClearSelection();
    Scroll().SetTopLine(0);
    Folding().LinesChanged();
    StylerChanged();
    RefreshControl();
}

void TAdvCustomMemo::SetText(const string& text) {
    Activate();
    Lines().SetText(text);
    ClearUndoRedo();
    int longest = 0;
    for (int row = 0; row < Lines().Count(); ++row)
        longest = std::max(longest, LineLength(row));
    Scroll().SetMaxLength(longest);
    ArrangeLines();
    RefreshControl();
}

void TAdvCustomMemo::SetWordWrap(TWordWrapStyle style) {
    Activate();
    const int offset = Words().TextFromPos(Caret().X(), Caret().Y());
    if (Settings.FWordWrap != wwNone)
        Unwrap();
    Settings.FWordWrap = style;
    UpdateWrap();
    int x = 0;
    int y = 0;
    Words().PosFromText(offset, x, y);
    Caret().Write(x, y);
    ClearSelection();
    RefreshControl();
}
