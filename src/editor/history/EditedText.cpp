#include "editor/history/EditedText.h"

#include <algorithm>

TEditedText::TEditedText() {
    Lines.OnChange = [this] {
        for (TTextUser* user : FUsers)
            user->LinesChanged();
    };
    UndoList.OnChange = [this](bool canUndo, bool canRedo) {
        for (TTextUser* user : FUsers)
            user->UndoChanged(canUndo, canRedo);
    };
}

void TEditedText::Attach(TTextUser& user) {
    FUsers.push_back(&user);
    Connect();
}

void TEditedText::Detach(TTextUser& user) {
    std::erase(FUsers, &user);
    Connect();
}

void TEditedText::Activate(TTextUser& user) {
    if (FUsers.empty() || FUsers.front() == &user)
        return;
    const auto at = std::find(FUsers.begin(), FUsers.end(), &user);
    if (at != FUsers.end())
        std::rotate(FUsers.begin(), at, at + 1);
    Connect();
}

void TEditedText::Connect() {
    Lines.Owners.assign(FUsers.begin(), FUsers.end());
    UndoList.SetMemo(FUsers.empty() ? nullptr : &FUsers.front()->UndoTarget());
}
