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

void TAdvCustomMemo::SetWholeText(const string& text) {
    SetText(text);
    if (text.isEmpty() || text.endsWith(u'\n') || text.endsWith(u'\r'))
        Lines().InsertRows(Lines().Count(), {string()});
    ClearUndoRedo();
}

string TAdvCustomMemo::WholeText() const {
    const std::vector<string> lines = WholeLines(Lines());
    return QStringList(lines.begin(), lines.end()).join(u'\n');
}

void TAdvCustomMemo::SetWordWrap(TWordWrapStyle style) {
    Activate();
    UndoList().Flush();
    const int offset = Words().TextFromPos(Caret().X(), Caret().Y());
    if (Settings.FWordWrap != wwNone)
        Unwrap();
    Settings.FWordWrap = style;
    UpdateWrap();
    UndoList().Restart();
    int x = 0;
    int y = 0;
    Words().PosFromText(offset, x, y);
    Caret().Write(x, y);
    ClearSelection();
    RefreshControl();
}
