#include "editor/MemoSource.h"

#include "editor/Memo.h"

TAdvMemoSource::~TAdvMemoSource() {
    while (!FMemos.empty())
        FMemos.back()->SetMemoSource(nullptr);
}

void TAdvMemoSource::SetStyler(TAdvCustomMemoStyler* styler) {
    FStyler = styler;
    for (TAdvCustomMemo* memo : FMemos)
        memo->StylerChanged();
}
