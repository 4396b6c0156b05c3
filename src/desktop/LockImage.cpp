#include "desktop/LockImage.h"

#include <QPainter>
#include <QPainterPath>

namespace {

// The drawing is 48 units wide and high. Its colours stand out from light windows and from dark ones.
constexpr qreal Units = 48;
constexpr QRgb Brass = 0xFFE8A317;
constexpr QRgb BrassEdge = 0xFFA66F00;
constexpr QRgb Steel = 0xFF8A949E;
constexpr QRgb Hole = 0xFF5A3C00;

QPainterPath Shackle() {
    QPainterPath path(QPointF(14, 22));
    path.lineTo(14, 15);
    path.arcTo(QRectF(14, 5, 20, 20), 180, -180);
    path.lineTo(34, 22);
    return path;
}

QPainterPath Keyhole() {
    QPainterPath path;
    path.addEllipse(QPointF(24, 30.5), 3.2, 3.2);
    path.addPolygon(QPolygonF({{23, 31}, {25, 31}, {26.2, 38.5}, {21.8, 38.5}}));
    path.setFillRule(Qt::WindingFill);
    return path;
}

} // namespace

TLockImage::TLockImage(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TLockImage::sizeHint() const {
    constexpr int HeightInLines = 3;
    const int side = fontMetrics().height() * HeightInLines;
    return {side, side};
}

void TLockImage::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / Units, height() / Units);
    painter.setPen(QPen(QColor(Steel), 5, Qt::SolidLine, Qt::FlatCap));
    painter.drawPath(Shackle());
    painter.setPen(QPen(QColor(BrassEdge), 1.5));
    painter.setBrush(QColor(Brass));
    painter.drawRoundedRect(QRectF(8, 21, 32, 23), 3.5, 3.5);
    painter.fillPath(Keyhole(), QColor(Hole));
}
