#pragma once
// A bar below the editor that is opened for a while. Return and Escape stay in it: they never reach the
// buttons of a dialog around.
#include <QFrame>

class TMemoWidget;

class TMemoBar : public QFrame {
    Q_OBJECT
public:
    TMemoBar(TMemoWidget& editor, QWidget* parent);

    /// Hides it and gives the focus back to the editor.
    void Close();

protected:
    /// Return was pressed in a field.
    virtual void Accept(Qt::KeyboardModifiers modifiers) = 0;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    [[nodiscard]] TMemoWidget& Editor() { return FEditor; }

private:
    TMemoWidget& FEditor;
};
