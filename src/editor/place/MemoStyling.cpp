// The look of a control's text: the styler in force, and the runs of rows.
#include "editor/place/MemoState.h"

#include <algorithm>

namespace {

/// Lists are sorted, and in lower case where case doesn't count.
void FoldKeyWords(TElementStyles& styles) {
    for (int i = 0; i < styles.Count(); ++i) {
        TElementStyle& element = styles[i];
        if (element.StyleType() != stKeyword)
            continue;
        QStringList words;
        for (const string& word : element.KeyWords())
            words.append(word.toLower());
        words.sort();
        element.SetKeyWords(words);
    }
}

} // namespace

void TMemoState::TakeStyler(TAdvCustomMemoStyler* styler) {
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
        if (!FRules.FCaseSensitive)
            FoldKeyWords(styler->FAllStyles);
    }
    ResetStyling();
}

void TMemoState::ResetStyling() {
    FLineStates.Reset();
    ++FTextRevision;
    Repaint();
}

quint64 TMemoState::RunsRevision() const {
    const unsigned styles = FRules.Styler ? FRules.Styler->FAllStyles.Revision() : 0;
    return quint64(FTextRevision) << 32 | styles << 1 | (FRules.FUrlAware ? 1 : 0);
}

std::vector<TStyleRun> TMemoState::RunsOf(int row) {
    if (row < 0 || row >= Lines().Count())
        return {};
    // Another control may have been told of the change instead.
    const unsigned revision = FRules.Styler ? FRules.Styler->FAllStyles.Revision() : 0;
    if (std::exchange(FStylesRevision, revision) != revision)
        FLineStates.Reset();
    return RunsOfLine(Lines()[row], FLineStates.LineStartState(row, Lines(), FRules), FRules);
}
