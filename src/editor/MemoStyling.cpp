// The control's styler, its events and what it tells its view.
#include "editor/Memo.h"

#include "editor/place/MemoAssist.h"

void TAdvCustomMemo::SetStyler(TAdvCustomMemoStyler* styler) {
    FInternalStyles = styler;
    if (!FMemoSource)
        TakeStyler(styler);
}

void TAdvCustomMemo::StylerChanged() {
    TakeStyler(FMemoSource ? FMemoSource->Styler() : FInternalStyles.data());
}

void TAdvCustomMemo::TakeStyler(TAdvCustomMemoStyler* styler) {
    QObject::disconnect(FStylerGone);
    if (FRules.Styler && FRules.Styler->FAllStyles.FOwner == this)
        FRules.Styler->FAllStyles.FOwner = nullptr;
    FRules.Styler = styler;
    FRules.FUseStyler = styler != nullptr;
    if (styler) {
        FStylerGone = QObject::connect(styler, &QObject::destroyed, [this] {
            FRules.Styler = nullptr;
            FRules.FUseStyler = false;
            ResetStyling();
        });
        styler->FAllStyles.FOwner = this;
        for (int i = 0; i < styler->FAllStyles.Count() && !FRules.FCaseSensitive; ++i) {
            TElementStyle& element = styler->FAllStyles[i];
            if (element.StyleType() != stKeyword)
                continue;
            QStringList words;
            for (const string& word : element.KeyWords())
                words.append(word.toLower());
            words.sort();
            element.SetKeyWords(words);
        }
    }
    ResetStyling();
}

void TAdvCustomMemo::StylesChanged() {
    ResetStyling();
}

void TAdvCustomMemo::ResetStyling() {
    FLineStates.Reset();
    ++FTextRevision;
    Repaint();
}

quint64 TAdvCustomMemo::RunsRevision() const {
    const unsigned styles = FRules.Styler ? FRules.Styler->FAllStyles.Revision() : 0;
    return quint64(FTextRevision) << 32 | styles << 1 | (FRules.FUrlAware ? 1 : 0);
}

std::vector<TStyleRun> TAdvCustomMemo::RunsOf(int row) {
    if (row < 0 || row >= Lines().Count())
        return {};
    // Another control may have been told of the change instead.
    const unsigned revision = FRules.Styler ? FRules.Styler->FAllStyles.Revision() : 0;
    if (std::exchange(FStylesRevision, revision) != revision)
        FLineStates.Reset();
    return RunsOfLine(Lines()[row], FLineStates.LineStartState(row, Lines(), FRules), FRules);
}

void TAdvCustomMemo::RowsTouched(int row) {
    ++FTextRevision;
    FScroll.RowsTouched(row);
    FLineStates.Invalidate(row);
}

void TAdvCustomMemo::LinesChanged() {
    if (!FLetRefresh || !FLetCursorUpdate)
        return;
    Repaint();
    FScroll.UpdateRange();
    if (Events.OnChange)
        Events.OnChange();
}

void TAdvCustomMemo::Repaint() {
    if (View && FLetRefresh)
        View->RepaintAll();
}

void TAdvCustomMemo::RepaintRow(int row) {
    if (View && FLetRefresh)
        View->RepaintRows(row, row);
}

void TAdvCustomMemo::RefreshControl() {
    Repaint();
    FScroll.UpdateRange();
}

void TAdvCustomMemo::FoldsChanged() {
    FFolding.LinesChanged();
    if (FMemoSource)
        FMemoSource->FoldsChanged();
    RefreshControl();
}

bool TAdvCustomMemo::EditingAllowed() const {
    return !Events.FOnAllowEdit || Events.FOnAllowEdit();
}

void TAdvCustomMemo::HideHint() {
    if (Assist)
        Assist->HideHint();
}

void TAdvCustomMemo::AllowAutoHint(bool allow) {
    if (Assist)
        Assist->AllowAutoHint(allow);
}

bool TAdvCustomMemo::TakesKey(int key, TShiftState shift) {
    return Assist != nullptr && Assist->TakesKey(key, shift);
}

bool TAdvCustomMemo::TakesChar(QChar c) {
    return Assist != nullptr && Assist->TakesChar(c);
}

void TAdvCustomMemo::CharTyped(QChar c) {
    if (Assist)
        Assist->CharTyped(c);
}

void TAdvCustomMemo::AskForCompletion(bool parameterHint) {
    if (Assist)
        Assist->Ask(parameterHint);
}

string TAdvCustomMemo::CorrectedWord(const string& word) {
    return Assist ? Assist->CorrectedWord(word) : word;
}
