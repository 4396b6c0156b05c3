#pragma once
// Scrolls as long as a drag stays outside the text's edges, faster the farther out it is.
#include <QPoint>
#include <QRect>
#include <QTimer>

#include <functional>

class TAutoScroll {
public:
    /// `step` is told rows and columns to go on by, negative for up and left. The timer runs only while the
    /// drag is outside.
    explicit TAutoScroll(std::function<void(int rows, int columns)> step);

    /// The drag is at `pos`; outside is what lies beyond `inner`. `cell` is the way that counts for one more.
    void Aim(QPoint pos, const QRect& inner, QSize cell);
    void Stop() { FTimer.stop(); }

private:
    QTimer FTimer;
    int FRows = 0;
    int FColumns = 0;
};
