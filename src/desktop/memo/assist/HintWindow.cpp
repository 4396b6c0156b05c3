#include "desktop/memo/assist/HintWindow.h"

#include "desktop/memo/assist/AssistFonts.h"
#include "desktop/memo/paint/MemoColors.h"

#include <QFontMetrics>
#include <QPainter>

THintWindow::THintWindow(QWidget& editor) : QWidget(&editor, Qt::ToolTip | Qt::FramelessWindowHint) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void THintWindow::Take(const TAdvHintForm& hint) {
    FHint = hint;
    setAccessibleName(hint.part1 + hint.part2 + hint.part3);
    update();
}

void THintWindow::paintEvent(QPaintEvent* /*event*/) {
    constexpr int Gap = 2; // from the edges and between the parts
    const TMemoColors colors(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.Back(FHint.BkColor));
    painter.setPen(QPen(Qt::gray, 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    painter.setPen(colors.Text(FHint.TextColor, FHint.BkColor));
    int left = Gap;
    int part = 1;
    for (const string* text : {&FHint.part1, &FHint.part2, &FHint.part3}) {
        const QFont font = DesktopFont({}, /*bold=*/part++ == FHint.Active);
        const QFontMetrics metrics(font);
        painter.setFont(font);
        painter.drawText(left, Gap + metrics.ascent(), *text);
        left += metrics.horizontalAdvance(*text) + Gap;
    }
}
