#include "desktop/memo/input/MemoWheel.h"

#include "desktop/memo/MemoWidget.h"

#include <QApplication>
#include <QScrollBar>
#include <QWheelEvent>

void TMemoWheel::Turn(QWheelEvent& event) {
    constexpr int Notch = 120;
    if (event.modifiers().testFlag(Qt::ControlModifier)) {
        FZoomRest += event.angleDelta().y();
        FWidget.SetZoom(FWidget.Zoom() + FZoomRest / Notch);
        FZoomRest %= Notch;
        return event.accept();
    }
    const TMemoGeometry& geometry = FWidget.Geometry();
    const QPointF cell(geometry.CellWidth(), geometry.LineHeight());
    const QPointF pixels = event.pixelDelta();
    const QPointF notches = QPointF(event.angleDelta()) / Notch * QApplication::wheelScrollLines();
    QPointF way = pixels.isNull() ? notches : QPointF(pixels.x() / cell.x(), pixels.y() / cell.y());
    if (event.modifiers().testFlag(Qt::ShiftModifier))
        way = way.transposed();
    if (way.x() * FRest.x() < 0 || way.y() * FRest.y() < 0)
        FRest = {}; // the other way round, at once
    FRest += way;
    const QPoint steps(int(FRest.x()), int(FRest.y()));
    FRest -= steps;
    QScrollBar* rows = FWidget.verticalScrollBar();
    QScrollBar* columns = FWidget.horizontalScrollBar();
    rows->setValue(rows->value() - steps.y());
    columns->setValue(columns->value() - steps.x());
    event.accept();
}
