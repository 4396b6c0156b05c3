#pragma once
// The window of the parameter hint: three texts in a frame, one of them in bold.
#include "editor/assist/ParameterHint.h"

#include <QWidget>

class THintWindow : public QWidget {
    Q_OBJECT
public:
    /// Over the window of `editor`.
    explicit THintWindow(QWidget& editor);

    void Take(const TAdvHintForm& hint);
    [[nodiscard]] const TAdvHintForm& Shown() const { return FHint; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TAdvHintForm FHint;
};
