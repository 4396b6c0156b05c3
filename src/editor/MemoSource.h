#pragma once
// TAdvMemoSource: text, history and styler that several controls share.
#include "editor/MemoBridge.h"
#include "editor/history/UndoList.h"
#include "editor/style/MemoStyler.h"
#include "editor/text/LineStore.h"

#include <QPointer>

class TAdvMemoSource {
public:
    TAdvMemoSource();
    ~TAdvMemoSource();
    TAdvMemoSource(const TAdvMemoSource&) = delete;
    TAdvMemoSource& operator=(const TAdvMemoSource&) = delete;

    TAdvMemoStrings Lines;
    TAdvUndoList UndoList;
    [[nodiscard]] TAdvCustomMemoStyler* Styler() const { return FStyler; }
    void SetStyler(TAdvCustomMemoStyler* styler);

    /// Called by TAdvCustomMemo::SetMemoSource.
    void Attach(TAdvCustomMemo& memo);
    void Detach(TAdvCustomMemo& memo);
    /// `memo` is the one that edits, undoes and selects from now on.
    void Activate(TAdvCustomMemo& memo);
    /// Folds were opened or closed.
    void FoldsChanged();

private:
    void Connect();

    TMemoBridge FBridge;
    QPointer<TAdvCustomMemoStyler> FStyler;
};
