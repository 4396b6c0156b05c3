#pragma once
// What the control asks of its completion, hints and corrections while keys are served.
#include "editor/place/MemoView.h"

class TMemoAssist {
public:
    virtual ~TMemoAssist() = default;
    /// True: the open completion list has served the key.
    [[nodiscard]] virtual bool TakesKey(int key, TShiftState shift) = 0;
    [[nodiscard]] virtual bool TakesChar(QChar c) = 0;
    /// Called after a character was served, for those that open lists and hints.
    virtual void CharTyped(QChar c) = 0;
    /// Ctrl+Space, with Shift for the parameter hint.
    virtual void Ask(bool parameterHint) = 0;
    /// The word to put in place of `word`, or the same.
    [[nodiscard]] virtual string CorrectedWord(const string& word) = 0;
    /// The caret left its line.
    virtual void HideHint() = 0;
    virtual void AllowAutoHint(bool allow) = 0;
};
