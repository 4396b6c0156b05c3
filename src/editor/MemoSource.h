#pragma once
// TAdvMemoSource: text, history and styler that several controls share.
#include "editor/history/EditedText.h"
#include "editor/style/MemoStyler.h"

#include <QPointer>

class TAdvCustomMemo;

class TAdvMemoSource : public TEditedText {
public:
    TAdvMemoSource() = default;
    ~TAdvMemoSource();
    TAdvMemoSource(const TAdvMemoSource&) = delete;
    TAdvMemoSource& operator=(const TAdvMemoSource&) = delete;

    [[nodiscard]] TAdvCustomMemoStyler* Styler() const { return FStyler; }
    void SetStyler(TAdvCustomMemoStyler* styler);

    /// Called by TAdvCustomMemo::SetMemoSource.
    void Add(TAdvCustomMemo& memo) { FMemos.push_back(&memo); }
    void Remove(TAdvCustomMemo& memo) { std::erase(FMemos, &memo); }

private:
    std::vector<TAdvCustomMemo*> FMemos;
    QPointer<TAdvCustomMemoStyler> FStyler;
};
