// The list that yields: which keys it keeps, and how it follows what is typed into the text.
#include "editor/assist/Completion.h"
#include "editor/edit/MemoEditor.h"

namespace {

string IdentifierOf(const string& entry) {
    const string text = entry.mid(KindLength(entry));
    qsizetype end = 0;
    while (end < text.size() && !QStringView(u"(; :").contains(text[end]))
        ++end;
    return text.left(end);
}

bool IsModifier(int key) {
    return key >= keyShift && key <= keyAlt;
}

} // namespace

/// Something is selected that the user has typed at or moved to, and that isn't there in full.
bool TMemoCompletion::IsChosen() const {
    const TAutoCompletionListBox& list = *FListCompletion;
    if (list.ItemIndex < 0)
        return false;
    const string typed = FMemo.LineText(FDotY).mid(FDotX, std::max(0, FMemo.Caret().X() - FDotX));
    return FMoved || (!typed.isEmpty() && IdentifierOf(list.Entries[size_t(list.ItemIndex)].Text) != typed);
}

/// Where a whole entry was typed, that one is selected and not one that goes on.
void TMemoCompletion::SelectExact(const string& word) {
    for (size_t i = 0; i < FListCompletion->Entries.size(); ++i) {
        if (IdentifierOf(FListCompletion->Entries[i].Text).toUpper() == word)
            return FListCompletion->Select(int(i));
    }
}

bool TMemoCompletion::YieldsKey(int key, TShiftState shift) {
    if (IsModifier(key))
        return true;
    if (shift == 0 && (key == keyUp || key == keyDown || key == keyPageUp || key == keyPageDown)) {
        (void)MovesInList(key);
        return false;
    }
    const bool character = Held(shift, ssCtrl) || Held(shift, ssAlt) ? false : key < keyEscape;
    switch (key) {
    case keyEscape:
        return false; // its character closes the list
    case keyReturn:
    case keyEnter:
    case keyBackspace:
        if (shift != 0)
            CloseCompletionList();
        return true;
    case keyTab:
        if (shift == 0 && IsChosen()) {
            AcceptCompletionEntry(AddBrackets::Yes);
            return false;
        }
        break;
    default:
        if (character)
            return true;
        break;
    }
    CloseCompletionList();
    return true;
}

bool TMemoCompletion::YieldsChar(QChar c) {
    switch (c.unicode()) {
    case keyEscapeChar:
        CloseCompletionList();
        return false;
    case keyBackspaceChar:
        return true; // the list follows
    case keyEnterChar:
    case u' ': {
        const bool chosen = IsChosen();
        if (chosen)
            AcceptCompletionEntry(AddBrackets::Yes);
        else
            Cancel();
        // A blank behind what was put in; not between its brackets, nor where its members are offered.
        const int x = FMemo.Caret().X();
        const bool inside = FMemo.LineText(FMemo.Caret().Y()).mid(x - 1, 2) == QStringView(u"()");
        return !chosen || (c == u' ' && !inside && !IsOpen());
    }
    default:
        if (!IsCompletionChar(c))
            Cancel();
        return true;
    }
}

/// Narrows or widens the list once a character is in the text, or out of it.
void TMemoCompletion::FollowTyping(QChar c) {
    if (!FListCompletion || !(IsCompletionChar(c) || c == QChar(keyBackspaceChar)))
        return;
    const bool leftWord = FMemo.Caret().Y() != FDotY || FMemo.Caret().X() < FDotX;
    if (leftWord)
        return CloseCompletionList();
    FMoved = false;
    RefreshCompletionList(FilterWord());
}
