#pragma once
// Keys, and text from input methods, on their way to the control.
#include "editor/MemoView.h"

class QInputMethodEvent;
class QKeyEvent;
class QVariant;
class TMemoWidget;

class TMemoKeyboard {
public:
    explicit TMemoKeyboard(TMemoWidget& widget) : FWidget(widget) {}

    /// The key is for the editor, whatever shortcut has it elsewhere.
    [[nodiscard]] bool Wants(const QKeyEvent& event) const;
    void Press(QKeyEvent& event);
    void TakeInput(QInputMethodEvent& event);
    /// Invalid where the widget's own answer holds.
    [[nodiscard]] QVariant Answer(int query) const;

private:
    TMemoWidget& FWidget;
};

[[nodiscard]] TShiftState ShiftStateOf(Qt::KeyboardModifiers modifiers);
