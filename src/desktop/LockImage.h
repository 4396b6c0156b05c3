#pragma once
#include <QWidget>

/// A padlock, drawn, so that it is sharp at every scale.
class TLockImage : public QWidget {
public:
    explicit TLockImage(QWidget* parent);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
