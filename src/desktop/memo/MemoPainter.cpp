#include "desktop/memo/MemoPainter.h"

#include "desktop/memo/MemoWidget.h"

#include <QPainter>

void TMemoPainter::Paint(const QRect& rect) {
    QPainter painter(FWidget.viewport());
    painter.fillRect(rect, FWidget.palette().base());
    for (const int row : FWidget.Geometry().RowsInView())
        if (FWidget.Geometry().RowRect(row).intersects(rect))
            PaintRow(painter, row);
    if (FWidget.CaretShows())
        painter.fillRect(FWidget.Geometry().CaretRect().adjusted(0, 0, 0, 0), Qt::black);
}

void TMemoPainter::PaintRow(QPainter& painter, int row) {
    TMemoGeometry& geometry = FWidget.Geometry();
    int column = 0;
    for (const TStyleRun& run : FWidget.Memo().RunsOf(row)) {
        const TRunLook look = FWidget.Memo().LookOf(run.State);
        painter.setFont(geometry.FontOf(look.Style));
        painter.drawText(geometry.XOf(row, column), geometry.YOf(row) + geometry.Ascent(), run.Text);
        column += int(run.Text.size());
    }
}
