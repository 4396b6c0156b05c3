#pragma once
// What the control asks of its completion, hints and corrections while keys are served. As it stands here
// there are none.
#include "editor/place/MemoView.h"

class TMemoAssist {
public:
    virtual ~TMemoAssist() = default;
    /// True: the open completion list has served the key.
    [[nodiscard]] virtual bool TakesKey(int /*key*/, TShiftState /*shift*/) { return false; }
    [[nodiscard]] virtual bool TakesChar(QChar /*c*/) { return false; }
    [[nodiscard]] virtual bool IsOpen() const { return false; }
    /// Called after a character was served, for those that open lists and hints.
    virtual void CharTyped(QChar /*c*/) {}
    /// Ctrl+Space, with Shift for the parameter hint.
    virtual void Ask(bool /*parameterHint*/) {}
    /// The word to put in place of `word`, or the same.
    [[nodiscard]] virtual string CorrectedWord(const string& word) { return word; }
    /// The caret left its line.
    virtual void HideHint() {}
    virtual void AllowAutoHint(bool /*allow*/) {}
};
