#pragma once
// The mouse wheel over the editor: rows, columns with Shift, and the size of the text with Ctrl.
#include <QPointF>

class QWheelEvent;
class TMemoWidget;

class TMemoWheel {
public:
    explicit TMemoWheel(TMemoWidget& widget) : FWidget(widget) {}

    /// Small turns add up.
    void Turn(QWheelEvent& event);

private:
    TMemoWidget& FWidget;
    QPointF FRest; // columns and rows not scrolled yet
    int FZoomRest = 0;
};
