#include "desktop/memo/input/AutoScroll.h"

namespace {

/// 0 inside, otherwise one and a further one for every `size` beyond.
int StepsBeyond(int at, int first, int last, int size) {
    if (at < first)
        return -1 - (first - at) / size;
    return at > last ? 1 + (at - last) / size : 0;
}

} // namespace

TAutoScroll::TAutoScroll(std::function<void(int, int)> step) {
    constexpr int Beat = 50; // ms
    FTimer.setInterval(Beat);
    QObject::connect(&FTimer, &QTimer::timeout, &FTimer,
                     [this, step = std::move(step)] { step(FRows, FColumns); });
}

void TAutoScroll::Aim(QPoint pos, const QRect& inner, QSize cell) {
    FRows = StepsBeyond(pos.y(), inner.top(), inner.bottom(), cell.height());
    FColumns = StepsBeyond(pos.x(), inner.left(), inner.right(), cell.width());
    if (FRows == 0 && FColumns == 0)
        FTimer.stop();
    else if (!FTimer.isActive())
        FTimer.start();
}
