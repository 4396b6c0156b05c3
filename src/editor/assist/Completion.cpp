#include "editor/assist/Completion.h"

#include "editor/edit/MemoEditor.h"

#include <algorithm>

TMemoCompletion::TMemoCompletion(TMemoEditor& memo) : FMemo(memo), FHint(memo) {
    FMemo.SetAssist(this);
}

TMemoCompletion::~TMemoCompletion() {
    FMemo.SetAssist(nullptr);
}

void TMemoCompletion::SetWindow(TAssistWindow* window) {
    if (!window)
        CloseCompletionList();
    FWindow = window;
    FHint.Window = window;
}

bool TMemoCompletion::IsStartToken(QChar c) const {
    return FAutoCompletion.StartToken.contains(c);
}

bool TMemoCompletion::HasStartToken(const string& word) const {
    return std::any_of(word.begin(), word.end(), [this](QChar c) { return IsStartToken(c); });
}

bool TMemoCompletion::IsHintStart(QChar /*c*/) const {
    return false;
}

bool TMemoCompletion::IsCompletionChar(QChar c) const {
    return c.isLetterOrNumber() || c == u'-' || c == u'_' || c == QChar(189);
}

bool TMemoCompletion::IsCompletionStop(QChar /*c*/) const {
    return false;
}

void TMemoCompletion::CharTyped(QChar c) {
    if (FAutoCompletion.Yielding) {
        FollowTyping(c);
        if (c != u'.')
            return;
    }
    if (IsStartToken(c) && FAutoCompletion.Active) {
        if (FWindow)
            FWindow->StartTimer(FAutoCompletion.Delay);
    } else if (IsHintStart(c) && FHint.AutoHintParameters() != hpNone) {
        FHint.ShowParameterHint();
    }
}

void TMemoCompletion::TimerFired() {
    if (FWindow)
        FWindow->StopTimer();
    if (!FAutoCompletion.Active || !FAutoCompletion.AutoDisplay)
        return;
    string word = FMemo.Words().WordAtCursor();
    if (word.isEmpty()) // the start token itself is a word here
        word = FMemo.LineText(FMemo.Caret().Y()).left(FMemo.Caret().X()).right(1);
    if (word.isEmpty())
        return;
    FAutoCompleteDot = true;
    FDotX = FMemo.Caret().X();
    FDotY = FMemo.Caret().Y();
    FRequested = false;
    if (!FAutoCompletion.Yielding || DotOffers())
        ShowCompletionList();
}

/// Whether the dot at the caret is code and has a list of its own.
bool TMemoCompletion::DotOffers() const {
    int column = 0;
    for (const TStyleRun& run : FMemo.RunsOf(FDotY)) {
        column += int(run.Text.size());
        if (column < FDotX)
            continue;
        if (run.State.isComment || run.State.isBracket)
            return false;
        break;
    }
    const TCompletionEntry none{string(QChar::Null)};
    TCompletionList list{none};
    if (Events.OnGetAutoCompletionList)
        Events.OnGetAutoCompletionList(CompletionToken(), list);
    return list.empty() || list.front() != none;
}

void TMemoCompletion::Ask(bool parameterHint) {
    if (parameterHint) {
        if (FHint.AutoHintParameters() != hpNone)
            FHint.ShowParameterHint();
        return;
    }
    if (!FAutoCompletion.Active)
        return;
    FRequested = true;
    FAutoCompleteDot = HasStartToken(FMemo.Words().FullWordAtCursor());
    FDotX = FMemo.Caret().X() - int(FMemo.Words().WordTillCursor().size());
    FDotY = FMemo.Caret().Y();
    ShowCompletionList();
}

/// What the list is for, in upper case: the word at the caret, or up to the start token that opened it.
string TMemoCompletion::CompletionToken() const {
    string word = FMemo.Words().FullWordAtCursor();
    if (FAutoCompleteDot) {
        while (!word.isEmpty() && !IsStartToken(word.back()))
            word.chop(1);
    }
    return word.toUpper();
}

/// What the open list is filtered by.
string TMemoCompletion::FilterWord() const {
    if (FAutoCompletion.Yielding)
        return FMemo.LineText(FDotY).mid(FDotX, std::max(0, FMemo.Caret().X() - FDotX)).toUpper();
    const TMemoWords& words = FMemo.Words();
    return (FAutoCompleteDot ? words.TokenAtXY(FDotX, FDotY) : words.WordAtCursor()).toUpper();
}

void TMemoCompletion::CollectEntries(const string& word) {
    FAutoCompleteList.clear();
    if (!FMemo.Rules().InForce())
        return;
    for (const TCompletionEntry& entry : FMemo.GetStyler()->FlistAuto) {
        if (entry.Text.mid(KindLength(entry.Text)).toUpper().startsWith(word))
            FAutoCompleteList.push_back(entry);
    }
}

/// Lets the handlers change the list; returns the index that they want, or -1.
int TMemoCompletion::AskForList(const string& word) {
    if (Events.OnGetAutoCompletionList)
        Events.OnGetAutoCompletionList(word, FAutoCompleteList);
    int index = -1;
    if (Events.OnGetAutoCompletionListIndex)
        Events.OnGetAutoCompletionListIndex(word, FAutoCompleteList, index);
    return index;
}

void TMemoCompletion::ShowCompletionList() {
    const bool offers =
        (FMemo.Rules().InForce() && !FMemo.GetStyler()->FlistAuto.empty()) || Events.OnGetAutoCompletionList;
    if (!FWindow || !FAutoCompletion.Active || FMemo.Settings.FReadOnly || !offers)
        return;
    const string word = CompletionToken();
    bool allow = true;
    if (Events.OnBeforeAutoCompletion)
        Events.OnBeforeAutoCompletion(word, allow);
    if (!allow)
        return;
    CollectEntries(FAutoCompletion.Yielding ? string() : word);
    FMoved = false;
    const int index = std::max(0, AskForList(word));
    if (FAutoCompleteList.empty())
        return;
    FListCompletion = std::make_unique<TAutoCompletionListBox>(FAutoCompletion);
    FListCompletion->Entries = FAutoCompleteList;
    if (Events.OnStartAutoCompletion)
        Events.OnStartAutoCompletion();
    OpenWindow();
    if (const string filter = FilterWord();
        (FAutoCompleteDot || FAutoCompletion.Yielding) && !filter.isEmpty()) {
        RefreshCompletionList(filter);
    } else {
        FListCompletion->Select(index);
        FWindow->UpdateList(*FListCompletion, FWindow->ListPlace().Width);
    }
}

int TMemoCompletion::ListWidth() {
    const int width = FListCompletion->AutoAdaptWidth(*FWindow);
    return FAutoCompletion.MaxWidth > 0 ? std::min(width, FAutoCompletion.MaxWidth) : width;
}

void TMemoCompletion::OpenWindow() {
    const TMemoScroll& scroll = FMemo.Scroll();
    const TMemoFolding& folding = FMemo.Folding();
    const TCellSize cell = scroll.CellSize();
    const int x = FWindow->GutterWidth() + (folding.Enabled() ? 16 : 0) +
                  cell.W * (FMemo.Caret().X() - scroll.LeftCol());
    const int row = folding.VisibleBefore(FMemo.Caret().Y()) - folding.VisibleBefore(scroll.TopLine());
    const TMemoPoint at = FWindow->ToScreen({x, (row + 1) * cell.H + 2});
    const int fitting = ListWidth(); // computes what drawing needs, even where the width isn't used
    const int width = FAutoCompletion.AutoWidth ? fitting : FAutoCompletion.Width;
    const int left = std::max(0, std::min(at.X, FWindow->ScreenWidth() - width));
    FWindow->ShowList(*FListCompletion, {left, at.Y, width, FAutoCompletion.Height});
}

void TMemoCompletion::RefreshCompletionList(const string& word) {
    if (!FListCompletion)
        FListCompletion = std::make_unique<TAutoCompletionListBox>(FAutoCompletion);
    FListCompletion->Entries.clear();
    const int index = AskForList(word);
    for (const TCompletionEntry& entry : FAutoCompleteList) {
        string text = entry.Text.mid(KindLength(entry.Text)).toUpper();
        if (!FAutoCompletion.Yielding)
            text = text.mid(text.indexOf(u'.') + 1);
        const qsizetype at = text.indexOf(word);
        if (word.isEmpty() || at == 0 || (at > 0 && !FAutoCompletion.FromFirstChar))
            FListCompletion->Entries.push_back(entry);
    }
    FListCompletion->Select(std::max(0, index));
    if (FAutoCompletion.Yielding)
        SelectExact(word);
    if (FAutoCompletion.Yielding && FListCompletion->Entries.empty())
        return CloseCompletionList();
    if (FWindow)
        FWindow->UpdateList(*FListCompletion,
                            FAutoCompletion.SizeDropDown ? ListWidth() : FWindow->ListPlace().Width);
}

void TMemoCompletion::CloseCompletionList() {
    if (!FListCompletion)
        return;
    if (FAutoCompletion.KeepLastSize) {
        FAutoCompletion.AutoWidth = false;
        FAutoCompletion.Width = FWindow->ListPlace().Width;
        FAutoCompletion.Height = FWindow->ListPlace().Height;
    }
    FListCompletion.reset();
    FWindow->HideList();
    if (FMemo.View)
        FMemo.View->CaretMoved();
}

void TMemoCompletion::ListDeactivated() {
    if (!FHint.Showing())
        CloseCompletionList();
}
