#pragma once
// Drag and drop of text: a selection on its way out, and text coming in at a caret of its own.
#include "desktop/memo/input/AutoScroll.h"

#include <functional>

class QDrag;
class QDragMoveEvent;
class QDropEvent;
class TMemoWidget;

class TMemoDrag {
public:
    explicit TMemoDrag(TMemoWidget& widget);

    [[nodiscard]] bool IsInSelection(QPoint pos) const;
    /// Drags the selection until it is dropped somewhere or given up.
    void Start();
    void Move(QDragMoveEvent& event);
    void Leave();
    void Drop(QDropEvent& event);
    /// The caret where the text would go.
    void Paint();

    /// Lets the desktop run a drag: what was done with the text in the end.
    std::function<Qt::DropAction(QDrag&)> Run;

private:
    [[nodiscard]] bool Takes(const QDropEvent& event) const;
    [[nodiscard]] bool IsOwn(const QDropEvent& event) const;
    void ShowCaret(int x, int y);
    void HideCaret();
    [[nodiscard]] QRect CaretRect() const;
    void Insert(int x, int y, const QString& text);
    void MoveHere(int x, int y);

    TMemoWidget& FWidget;
    TAutoScroll FScroll;
    bool FDragging = false;
    bool FMovedHere = false; // the drag under way has ended as a move within this window
    int FX = -1;             // the drop caret, -1 for none
    int FY = -1;
};
