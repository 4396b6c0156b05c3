#include "desktop/memo/bars/StatusLine.h"

#include "editor/Memo.h"
#include "editor/place/LinePlace.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

QPalette ErrorPalette(const QPalette& base) {
    const bool dark = base.color(QPalette::Base).lightness() < base.color(QPalette::Text).lightness();
    const QColor text = dark ? QColor(0xFF, 0xC4, 0xBD) : QColor(0x9B, 0x1C, 0x1C);
    const QColor ground = dark ? QColor(0x5C, 0x1F, 0x1F) : QColor(0xFD, 0xE3, 0xE1);
    QPalette palette = base;
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText})
        palette.setColor(role, text);
    for (const QPalette::ColorRole role : {QPalette::Base, QPalette::Window})
        palette.setColor(role, ground);
    return palette;
}

TMessageArea::TMessageArea(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setAccessibleName("Message");
}

QSize TMessageArea::sizeHint() const {
    return {0, fontMetrics().height() + 4};
}

QSize TMessageArea::minimumSizeHint() const {
    return sizeHint();
}

void TMessageArea::Show(const string& text, TMessageKind kind) {
    if (FText == text && FKind == kind)
        return;
    FText = text;
    FKind = kind;
    setToolTip(text);
    setAccessibleDescription(text);
    update();
    if (kind == TMessageKind::Error) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void TMessageArea::paintEvent(QPaintEvent* /*event*/) {
    if (FText.isEmpty())
        return;
    constexpr int Margin = 6;
    QPainter painter(this);
    const QString line =
        fontMetrics().elidedText(FText.section(u'\n', 0, 0), Qt::ElideRight, width() - 2 * Margin);
    const bool error = FKind == TMessageKind::Error;
    const QPalette looks = error ? ErrorPalette(palette()) : palette();
    if (error) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(looks.window());
        painter.drawRoundedRect(QRectF(0, 0, fontMetrics().horizontalAdvance(line) + 2 * Margin, height()), 3,
                                3);
    }
    painter.setPen(looks.color(QPalette::WindowText));
    painter.drawText(rect().adjusted(error ? Margin : 0, 0, -Margin, 0),
                     Qt::AlignVCenter | Qt::TextSingleLine, line);
}

TStatusLine::TStatusLine(QWidget* parent)
    : QWidget(parent), FMessage(new TMessageArea(this)), FSelection(new QLabel(this)),
      FPlace(new QLabel(this)), FMode(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->setSpacing(14);
    layout->addWidget(FMessage, 1);
    for (QLabel* label : {FSelection, FPlace, FMode})
        layout->addWidget(label);
    FSelection->setAccessibleName("Selection");
    FPlace->setAccessibleName("Place of the caret");
    FMode->setAccessibleName("Typing mode");
}

void TStatusLine::TakeState(const TAdvCustomMemo& memo) {
    const TLinePlace place = PlaceOfCaret(memo);
    const auto selected = memo.SelText().size();
    FSelection->setText(selected > 0 ? QString("%L1 selected").arg(selected) : QString());
    FPlace->setText(QString("Line %1, column %2").arg(place.Line).arg(place.Column));
    FMode->setText(memo.Settings.FReadOnly ? "Read-only" : memo.Settings.FOverwrite ? "OVR" : "INS");
}
