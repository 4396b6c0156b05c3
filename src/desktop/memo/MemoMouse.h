#pragma once
// What the mouse does in the editor's window: caret and selection, drag and drop of text, wheel and zoom, the
// context menu.
class QContextMenuEvent;
class QDragMoveEvent;
class QDropEvent;
class QMouseEvent;
class QWheelEvent;
class TMemoWidget;

class TMemoMouse {
public:
    explicit TMemoMouse(TMemoWidget& widget) : FWidget(widget) {}

    void Press(QMouseEvent& event);
    void Move(QMouseEvent& event);
    void Release(QMouseEvent& event);
    void DoubleClick(QMouseEvent& event);
    /// False: the wheel scrolls as usual.
    [[nodiscard]] bool Wheel(QWheelEvent& event);
    void Menu(QContextMenuEvent& event);
    void DragMove(QDragMoveEvent& event);
    void DragLeave();
    void Drop(QDropEvent& event);

private:
    TMemoWidget& FWidget;
};
