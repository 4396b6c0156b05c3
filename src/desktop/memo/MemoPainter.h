#pragma once
// Paints the rows of the editor's window: runs, selection, caret and what lies behind and beside them.
#include <QRect>

class QPainter;
class TMemoWidget;

class TMemoPainter {
public:
    explicit TMemoPainter(TMemoWidget& widget) : FWidget(widget) {}

    /// Paints what of the viewport lies in `rect`.
    void Paint(const QRect& rect);

private:
    void PaintRow(QPainter& painter, int row);

    TMemoWidget& FWidget;
};
