#include "desktop/memo/MemoKeyboard.h"

#include "desktop/memo/MemoWidget.h"

#include <QKeyEvent>

TShiftState ShiftStateOf(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? unsigned(ssShift) : 0) |
           (modifiers & Qt::ControlModifier ? unsigned(ssCtrl) : 0) |
           (modifiers & Qt::AltModifier ? unsigned(ssAlt) : 0);
}

bool TMemoKeyboard::Wants(const QKeyEvent& /*event*/) const {
    return false;
}

void TMemoKeyboard::Press(QKeyEvent& event) {
    FWidget.Memo().KeyDown(event.key(), ShiftStateOf(event.modifiers()));
    for (const QChar c : event.text())
        FWidget.Memo().KeyPress(c);
}

void TMemoKeyboard::TakeInput(QInputMethodEvent& event) {
    for (const QChar c : event.commitString())
        FWidget.Memo().KeyPress(c);
}

QVariant TMemoKeyboard::Answer(int /*query*/) const {
    return {};
}
