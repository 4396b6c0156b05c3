#include "editor/assist/ParameterHint.h"

#include "editor/place/MemoState.h"

#include <algorithm>

int FindHintCall(QStringView line, int column, const THintParameter& chars, string& word, int& paramCount) {
    word.clear();
    paramCount = 0;
    int at = std::min(column, int(line.size()));
    int row = 0;
    bool found = false;
    for (; at >= 1 && !found && row < 5; --at) {
        const QChar c = line[at - 1];
        if (c == chars.HintCharEnd)
            return -1;
        if (c == chars.HintCharWriteDelimiter)
            ++paramCount;
        row = c == u' ' || c == chars.HintClassDelimiter ? row + 1 : 0;
        found = c == chars.HintCharStart;
    }
    if (row >= 5)
        return -1;
    const auto ends = [&chars](QChar c) {
        return c == chars.HintCharStart || c == chars.HintCharEnd || c == u' ';
    };
    for (int i = at; found && i >= 1 && !ends(line[i - 1]); --i)
        word.prepend(line[i - 1]);
    return at;
}

void TParameterHint::SetAutoHintParameters(TAutoHintParameters mode) {
    FAutoHintParameters = mode;
    HideHint();
}

void TParameterHint::RestTimerFired() {
    if (FAutoHintParameters == hpAuto && FAllowAutoHint)
        ShowParameterHint();
}

void TParameterHint::FindCall(string& /*word*/, int& /*paramCount*/, bool& /*found*/, bool& /*shown*/) {}

string TParameterHint::Comparable(const string& text) const {
    return FMemo.Rules().FCaseSensitive ? text : text.toUpper();
}

void TParameterHint::ShowParameterHint() {
    const TMemoScroll& scroll = FMemo.Scroll();
    const int y = FMemo.Caret().Y();
    const bool inView = y >= scroll.TopLine() && (scroll.RowsInView() == 0 || y <= scroll.LastRowInView());
    if (!Window || !FMemo.Rules().InForce() || FMemo.GetStyler()->FHintParameter.Parameters.isEmpty() ||
        !inView)
        return;
    const THintParameter& chars = FMemo.GetStyler()->FHintParameter;
    string word;
    int paramCount = 0;
    bool found = false;
    bool shown = false;
    FindCall(word, paramCount, found, shown);
    const bool noCall =
        found ? !shown
              : FindHintCall(Comparable(FMemo.LineText(y)), FMemo.Caret().X(), chars, word, paramCount) == -1;
    if (noCall) {
        HideHint();
        return;
    }
    word = word.trimmed();
    if (word.isEmpty())
        return;
    const string hint = HintFor(word);
    if (hint.isEmpty()) {
        HideHint();
        return;
    }
    Split(hint, paramCount);
    if (OnRetrievedParameterHint)
        OnRetrievedParameterHint(word, FHintForm.part2);
    FHintForm.Active = FHintForm.part2.isEmpty() ? 1 : 2;
    if (FMemo.View)
        FMemo.View->RestartCaretBlink();
    FHintForm.TextColor = chars.TextColor;
    FHintForm.BkColor = chars.BkColor;
    Place();
    FHintShowing = true;
    Window->ShowHint(FHintForm);
    FHintShowing = false;
    FVisible = true;
}

string TParameterHint::HintFor(string word) const {
    const THintParameter& chars = FMemo.GetStyler()->FHintParameter;
    string hint;
    bool handled = false;
    if (OnGetParameterHint)
        OnGetParameterHint(word, hint, handled);
    if (handled)
        return hint;
    word = word.mid(word.lastIndexOf(chars.HintClassDelimiter) + 1);
    for (const string& entry : chars.Parameters) {
        if (Comparable(entry).startsWith(word))
            return entry;
    }
    return {};
}

/// Cuts the hint's parameters into what stands before the current one, the current one and the rest.
void TParameterHint::Split(string text, int paramCount) {
    const THintParameter& chars = FMemo.GetStyler()->FHintParameter;
    text = text.mid(text.indexOf(chars.HintCharStart) + 1);
    if (const qsizetype end = text.indexOf(chars.HintCharEnd); end >= 0)
        text.truncate(end);
    qsizetype start = paramCount == 0 ? 0 : text.size();
    qsizetype end = text.size();
    int count = 0;
    for (qsizetype i = 0; i < text.size() && count <= paramCount; ++i) {
        if (text[i] != chars.HintCharWriteDelimiter && text[i] != chars.HintCharDelimiter)
            continue;
        ++count;
        if (count == paramCount)
            start = i + 1;
        else if (count == paramCount + 1)
            end = i;
    }
    FHintForm.part1 = text.left(start);
    FHintForm.part2 = text.mid(start, end - start);
    FHintForm.part3 = text.mid(end);
}

void TParameterHint::Place() {
    const TMemoFont font;
    const TMemoScroll& scroll = FMemo.Scroll();
    const TMemoFolding& folding = FMemo.Folding();
    const TCellSize cell = scroll.CellSize();
    TMemoRect& place = FHintForm.Place;
    place.Height = Window->Height(font, u"h,g_`") + 5;
    place.Width = 6;
    int part = 1;
    for (const string* text : {&FHintForm.part1, &FHintForm.part2, &FHintForm.part3})
        place.Width += Window->Width(font, /*bold=*/part++ == FHintForm.Active, *text);
    const int row = folding.VisibleBefore(FMemo.Caret().Y()) - folding.VisibleBefore(scroll.TopLine());
    const bool below = FAutoHintParameterPos == hpBelowCode;
    const int x = Window->GutterWidth() + cell.W * (FMemo.Caret().X() - scroll.LeftCol());
    const TMemoPoint at = Window->ToScreen({x, below ? (row + 1) * cell.H : row * cell.H - place.Height});
    if (!FVisible)
        place.Left = at.X;
    place.Left = std::max(0, std::min(place.Left, Window->ScreenWidth() - place.Width));
    place.Top = std::max(0, std::min(at.Y, Window->ScreenHeight() - place.Height));
}

void TParameterHint::HideHint() {
    if (!std::exchange(FVisible, false) || Window == nullptr)
        return;
    Window->HideHint();
}
