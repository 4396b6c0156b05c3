#pragma once
// TEditedText: lines with their history, and the controls that show them. A control has a text of its own and
// may show one that it shares with others: then one control at a time is active and does the work, and all
// are told what changed.
#include "editor/history/UndoList.h"

class TTextUser : public TLineStoreOwner {
public:
    [[nodiscard]] virtual TUndoTarget& UndoTarget() = 0;
    virtual void LinesChanged() = 0;
    virtual void UndoChanged(bool canUndo, bool canRedo) = 0;
};

class TEditedText {
public:
    TEditedText();
    TEditedText(const TEditedText&) = delete;
    TEditedText& operator=(const TEditedText&) = delete;

    TAdvMemoStrings Lines;
    TAdvUndoList UndoList;

    void Attach(TTextUser& user);
    void Detach(TTextUser& user);
    /// `user` is the one that edits, undoes and selects from now on.
    void Activate(TTextUser& user);

private:
    void Connect();

    std::vector<TTextUser*> FUsers; // the active one first
};
