// Keys in the open completion list, and what accepting an entry puts into the text.
#include "editor/assist/Completion.h"
#include "editor/edit/MemoEditor.h"

#include <algorithm>

bool TMemoCompletion::TakesKey(int key, TShiftState shift) {
    if (FWindow)
        FWindow->StopTimer();
    if (!FListCompletion)
        return false;
    if (FAutoCompletion.Yielding)
        return !YieldsKey(key, shift);
    if (MovesInList(key))
        return true;
    if (key == keyDelete && !FMemo.Settings.FReadOnly)
        FMemo.Editing().DeleteChar(-1, -1);
    return true; // its character does the work
}

/// The keys that move the selection.
bool TMemoCompletion::MovesInList(int key) {
    TAutoCompletionListBox& list = *FListCompletion;
    const int page = std::max(1, FAutoCompletion.Height / std::max(1, list.ItemHeight()) - 1);
    switch (key) {
    case keyUp:
    case keyLeft:
        list.Select(std::max(0, list.ItemIndex - 1));
        break;
    case keyDown:
    case keyRight:
        list.Select(list.ItemIndex + 1);
        break;
    case keyPageUp:
        list.Select(std::max(0, list.ItemIndex - page));
        break;
    case keyPageDown:
        list.Select(list.ItemIndex + page);
        break;
    case keyHome:
        list.Select(0);
        break;
    case keyEnd:
        list.Select(int(list.Entries.size()) - 1);
        break;
    default:
        return false;
    }
    FMoved = true;
    FWindow->UpdateList(list, FWindow->ListPlace().Width);
    return true;
}

void TMemoCompletion::InsertInMemo(QChar c) {
    FMemo.Editing().InsertChar(c);
    FMemo.SetModifiedState(FMemo.Caret().Y());
}

void TMemoCompletion::EraseInList() {
    if (FMemo.Settings.FReadOnly)
        return;
    FMemo.Editing().BackSpace();
    FMemo.SetModifiedState(FMemo.Caret().Y());
    const string word = FMemo.Words().FullWordAtCursor();
    if (FAutoCompleteDot && !word.contains(u'.') && !word.contains(u')'))
        CloseCompletionList();
    else
        RefreshCompletionList(FilterWord());
}

void TMemoCompletion::Cancel() {
    if (Events.OnCancelAutoCompletion)
        Events.OnCancelAutoCompletion();
    CloseCompletionList();
}

bool TMemoCompletion::TakesChar(QChar c) {
    if (FWindow)
        FWindow->StopTimer();
    if (!FListCompletion)
        return false;
    if (FAutoCompletion.Yielding)
        return !YieldsChar(c);
    switch (c.unicode()) {
    case keyEnterChar:
        AcceptCompletionEntry(AddBrackets::Yes);
        return true;
    case u' ':
        AcceptCompletionEntry(AddBrackets::Yes);
        if (IsCompletionStop(c))
            InsertInMemo(c);
        return true;
    case keyBackspaceChar:
        EraseInList();
        return true;
    case keyEscapeChar:
    case keyTabChar:
        CloseCompletionList();
        return true;
    default:
        break;
    }
    if (IsCompletionChar(c)) {
        InsertInMemo(c);
        RefreshCompletionList(FilterWord());
    } else if (IsCompletionStop(c)) {
        AcceptCompletionEntry(AddBrackets::No);
        InsertInMemo(c);
        CharTyped(c);
    } else {
        Cancel();
    }
    return true;
}

void TMemoCompletion::AcceptCompletionEntry(AddBrackets brackets) {
    Accept(Path::Key, brackets);
}

void TMemoCompletion::ListClicked(int index) {
    if (!FListCompletion)
        return;
    FListCompletion->Select(index);
    Accept(Path::Mouse, AddBrackets::Yes);
}

/// The identifier of an entry. A click doesn't stop at a colon, on purpose: the two paths were never alike.
string TMemoCompletion::EntryText(const string& entry, Path path) {
    const string text = entry.mid(KindLength(entry));
    const QStringView stops = path == Path::Key ? u"(; :" : u"(; ";
    const auto* end = std::find_if(text.begin(), text.end(), [stops](QChar c) { return stops.contains(c); });
    return text.left(end - text.begin());
}

void TMemoCompletion::Accept(Path path, AddBrackets brackets) {
    if (!FListCompletion || FListCompletion->ItemIndex < 0)
        return;
    const string entry = FListCompletion->Entries[size_t(FListCompletion->ItemIndex)].Text;
    string text = entry;
    if (Events.OnInsertAutoCompletionEntry)
        Events.OnInsertAutoCompletionEntry(text);
    bool inside = false;
    if (text == entry) {
        inside = entry.contains(u'(') && brackets == AddBrackets::Yes;
        text = EntryText(entry, path) + (inside ? "()" : "");
    }
    const int x0 = FMemo.Caret().X();
    const int y0 = FMemo.Caret().Y();
    const bool yields = FAutoCompletion.Yielding;
    if (yields && FMemo.LineText(y0).mid(x0).startsWith(u'(') && inside) {
        text.chop(2); // the brackets are there
        inside = false;
    }
    if (yields)
        FMemo.UndoList().Hold();
    Replace(text, path);
    if (inside) {
        if (yields && FMemo.Caret().X() == 0)
            FMemo.Caret().SetColumn(-1); // word wrap has cut behind the brackets
        FMemo.Caret().SetColumn(FMemo.Caret().X() - 1);
        FMemo.ClearSelection();
    }
    if (yields)
        FMemo.UndoList().Release(x0, y0); // leaving a line may trim it
    if (inside) {
        if (yields)
            FMemo.Aids().PairPut();
        FHint.ShowParameterHint();
    }
    CloseCompletionList();
    if (yields && text.endsWith(u'.'))
        TimerFired(); // its members
}

void TMemoCompletion::Replace(const string& text, Path path) {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(y);
    int from = 0;
    int to = 0;
    if (FAutoCompletion.Yielding) {
        from = std::min(FDotX, x);
        to = x;
    } else if (FAutoCompleteDot && !text.contains(u'.')) {
        from = std::min(FDotX, x);
        to = path == Path::Key ? x : FDotX + int(FMemo.Words().TokenAtXY(FDotX, FDotY).size());
    } else {
        // Few stops, on purpose: whatever is written without a blank before the caret is replaced.
        const QStringView stops = path == Path::Key ? u" ()[]" : u" '\"()";
        from = to = std::min<int>(x, int(line.size()));
        while (from > 0 && !stops.contains(line[from - 1]))
            --from;
        while (to < line.size() && !stops.contains(line[to]))
            ++to;
    }
    FMemo.Selection().Take({from, y, to, y}, /*block=*/false);
    if (Events.OnAutoCompletion)
        Events.OnAutoCompletion(text);
    const bool replaces = from != to;
    FMemo.Blocks().DeleteSelection();
    FMemo.Caret().SetColumn(from);
    FMemo.Blocks().InsertBuffer(text, replaces ? Linked::Yes : Linked::No);
}
