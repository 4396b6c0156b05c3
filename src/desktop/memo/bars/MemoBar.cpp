#include "desktop/memo/bars/MemoBar.h"

#include "desktop/memo/MemoWidget.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>

namespace {

bool IsReturn(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

TMemoBar::TMemoBar(TMemoWidget& editor, QWidget* parent) : QFrame(parent), FEditor(editor) {
    hide();
}

void TMemoBar::Close() {
    hide();
    FEditor.setFocus();
}

bool TMemoBar::event(QEvent* event) {
    // Wherever a dialog has these keys as shortcuts, they are the bar's.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (IsReturn(key) || key == Qt::Key_Escape) {
            event->accept();
            return true;
        }
    }
    return QFrame::event(event);
}

/// What the fields and buttons leave alone comes here.
void TMemoBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Close();
    } else if (IsReturn(event->key())) {
        if (auto* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget()))
            button->click();
        else
            Accept(event->modifiers());
    } else {
        QFrame::keyPressEvent(event);
        return;
    }
    event->accept();
}
