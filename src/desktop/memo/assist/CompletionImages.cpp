#include "desktop/memo/assist/CompletionImages.h"

#include <QPainter>
#include <QPainterPath>

namespace {

// All are drawn on a square of 16 by 16.

void DrawBox(QPainter& painter) {
    painter.drawPolygon(QPolygonF({{8, 2}, {13.5, 5}, {13.5, 11}, {8, 14}, {2.5, 11}, {2.5, 5}}));
    painter.drawPolyline(QPolygonF({{2.5, 5}, {8, 8}, {13.5, 5}}));
    painter.drawLine(QPointF(8, 8), QPointF(8, 14));
}

/// The letter x in brackets.
void DrawVariable(QPainter& painter) {
    painter.drawPolyline(QPolygonF({{5, 2.5}, {2.5, 2.5}, {2.5, 13.5}, {5, 13.5}}));
    painter.drawPolyline(QPolygonF({{11, 2.5}, {13.5, 2.5}, {13.5, 13.5}, {11, 13.5}}));
    painter.drawLine(QPointF(6, 6), QPointF(10, 10));
    painter.drawLine(QPointF(10, 6), QPointF(6, 10));
}

/// A form with two fields.
void DrawProperty(QPainter& painter) {
    painter.drawRoundedRect(QRectF(2.5, 2.5, 11, 11), 1.5, 1.5);
    painter.drawLine(QPointF(5, 6), QPointF(11, 6));
    painter.drawLine(QPointF(5, 10), QPointF(8.5, 10));
}

void DrawEvent(QPainter& painter) {
    painter.drawPolygon(QPolygonF({{9.5, 1.5}, {3.5, 9}, {7.5, 9}, {6, 14.5}, {12.5, 6.5}, {8.5, 6.5}}));
}

/// A box with what it is called with beside it.
void DrawMethod(QPainter& painter) {
    painter.save();
    painter.translate(3.5, 1.5);
    painter.scale(0.8, 0.8);
    DrawBox(painter);
    painter.restore();
    for (const double y : {5.0, 8.0, 11.0})
        painter.drawLine(QPointF(1, y), QPointF(3.5, y));
}

struct TImage {
    void (*Draw)(QPainter&);
    QRgb OnLight, OnDark;
};

constexpr TImage Images[] = {{DrawVariable, 0xFF1F5FBF, 0xFF7FB2F5},
                             {DrawProperty, 0xFF00797A, 0xFF5CC8C8},
                             {DrawEvent, 0xFFB26A00, 0xFFF0B84C},
                             {DrawBox, 0xFF7B3FA0, 0xFFCB97EE},
                             {DrawMethod, 0xFF7B3FA0, 0xFFCB97EE}};

} // namespace

void DrawCompletionImage(QPainter& painter, int image, const QRectF& square, bool dark) {
    if (image < 0 || image >= int(std::size(Images)))
        return;
    const TImage& drawn = Images[image];
    const QColor color = QColor::fromRgb(dark ? drawn.OnDark : drawn.OnLight);
    QColor filled = color;
    filled.setAlphaF(0.18F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / 16, square.height() / 16);
    painter.setPen(QPen(color, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(filled);
    drawn.Draw(painter);
    painter.restore();
}
