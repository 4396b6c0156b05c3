#include "editor/MemoSource.h"

#include "editor/Memo.h"

#include <algorithm>

TAdvMemoSource::TAdvMemoSource() {
    Lines.OnChange = [this] { FBridge.Changed(); };
}

TAdvMemoSource::~TAdvMemoSource() {
    while (!FBridge.FMemos.empty())
        FBridge.FMemos.back()->SetMemoSource(nullptr);
}

void TAdvMemoSource::SetStyler(TAdvCustomMemoStyler* styler) {
    FStyler = styler;
    for (TAdvCustomMemo* memo : FBridge.FMemos)
        memo->StylerChanged();
}

void TAdvMemoSource::Attach(TAdvCustomMemo& memo) {
    FBridge.FMemos.push_back(&memo);
    Connect();
}

void TAdvMemoSource::Detach(TAdvCustomMemo& memo) {
    std::erase(FBridge.FMemos, &memo);
    Connect();
}

void TAdvMemoSource::Activate(TAdvCustomMemo& memo) {
    const auto at = std::find(FBridge.FMemos.begin(), FBridge.FMemos.end(), &memo);
    if (at != FBridge.FMemos.end())
        std::rotate(FBridge.FMemos.begin(), at, at + 1);
}

void TAdvMemoSource::FoldsChanged() {
    for (TAdvCustomMemo* memo : FBridge.FMemos) {
        memo->Folding().LinesChanged();
        memo->RefreshControl();
    }
}

void TAdvMemoSource::Connect() {
    const bool any = !FBridge.FMemos.empty();
    Lines.Memo = any ? &FBridge : nullptr;
    UndoList.SetMemo(any ? &FBridge : nullptr);
}
