#pragma once
// Keys on their way to the control.
//
// What a platform puts into an event's text differs for control characters, so those are made from the key;
// only characters to be typed are taken from the text. Keys that the editor has no use for go on to the
// windows above.
#include "editor/place/MemoView.h"

class QKeyEvent;
class TMemoWidget;

class TMemoKeyboard {
public:
    explicit TMemoKeyboard(TMemoWidget& widget) : FWidget(widget) {}

    /// The key is for the editor, whatever shortcut has it elsewhere.
    [[nodiscard]] bool Wants(const QKeyEvent& event) const;
    void Press(QKeyEvent& event);

private:
    [[nodiscard]] bool Zoom(const QKeyEvent& event);
    [[nodiscard]] bool Leave(const QKeyEvent& event);
    void Send(const QKeyEvent& event);

    TMemoWidget& FWidget;
};

[[nodiscard]] TShiftState ShiftStateOf(Qt::KeyboardModifiers modifiers);
