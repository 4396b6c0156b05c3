#include "desktop/memo/MemoMouse.h"

#include "desktop/memo/MemoWidget.h"

#include <QMouseEvent>

void TMemoMouse::Press(QMouseEvent& event) {
    const int row = FWidget.Geometry().RowAt(event.pos().y());
    FWidget.Memo().Caret().MoveTo(FWidget.Geometry().ColumnAt(row, event.pos().x()), row);
    FWidget.Memo().ClearSelection();
}

void TMemoMouse::Move(QMouseEvent& /*event*/) {}

void TMemoMouse::Release(QMouseEvent& /*event*/) {}

void TMemoMouse::DoubleClick(QMouseEvent& /*event*/) {}

bool TMemoMouse::Wheel(QWheelEvent& /*event*/) {
    return false;
}

void TMemoMouse::Menu(QContextMenuEvent& /*event*/) {}

void TMemoMouse::DragMove(QDragMoveEvent& /*event*/) {}

void TMemoMouse::DragLeave() {}

void TMemoMouse::Drop(QDropEvent& /*event*/) {}
