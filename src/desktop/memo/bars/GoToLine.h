#pragma once
// The bar that asks for a line to go to, as "line" or "line:column".
#include "desktop/memo/bars/MemoBar.h"

class QLineEdit;

class TGoToLine : public TMemoBar {
    Q_OBJECT
public:
    TGoToLine(TMemoWidget& editor, QWidget* parent);

    void Open();

Q_SIGNALS:
    /// Both from 1.
    void Chosen(int line, int column);

protected:
    void Accept(Qt::KeyboardModifiers modifiers) override;

private:
    QLineEdit* FText;
};
