#pragma once
// What the mouse does in the editor's window: caret and selection by clicks and drags, wheel and zoom. Drags
// of text and the context menu have classes of their own.
#include "desktop/memo/input/AutoScroll.h"
#include "desktop/memo/input/MemoDrag.h"
#include "desktop/memo/input/MemoWheel.h"
#include "editor/history/UndoTarget.h"

#include <QElapsedTimer>

class QContextMenuEvent;
class QMouseEvent;
class QWheelEvent;

class TMemoMouse {
public:
    explicit TMemoMouse(TMemoWidget& widget);

    void Press(QMouseEvent& event);
    void Move(QMouseEvent& event);
    void Release(QMouseEvent& event);
    void DoubleClick(QMouseEvent& event);
    void Wheel(QWheelEvent& event) { FWheel.Turn(event); }
    void Menu(QContextMenuEvent& event);
    /// A key may have ended a block selection, or finished a selection.
    void KeyServed();

    [[nodiscard]] TMemoDrag& Drag() { return FDrag; }
    void PaintDropCaret();

private:
    enum class TUnit { Character, Word, Line };
    struct TPlace {
        int X = 0;
        int Y = 0;
    };

    void Click(QMouseEvent& event);
    void ClickMargin(QMouseEvent& event);
    void ToggleFold(int row);
    [[nodiscard]] bool IsTripleClick(const QMouseEvent& event) const;
    void Begin(TUnit unit, TPlace place);
    void SelectTo(TPlace place);
    void SelectUnits(const TSelectionRange& unit);
    void AutoScrolled(int rows, int columns);
    void SetBlock(bool on);
    void Finish();
    void PastePrimary(QPoint pos);
    void ShowShape(QPoint pos);
    [[nodiscard]] TPlace PlaceAt(QPoint pos) const;
    [[nodiscard]] TSelectionRange UnitAt(TPlace place) const;
    [[nodiscard]] QRect TextArea() const;
    [[nodiscard]] QPoint IntoText(QPoint pos) const;

    TMemoWidget& FWidget;
    TMemoDrag FDrag;
    TMemoWheel FWheel;
    TAutoScroll FScroll;
    bool FSelecting = false;
    bool FMayDrag = false; // pressed in the selection
    bool FBlock = false;   // the mouse has made selections rectangles for now
    TUnit FUnit = TUnit::Character;
    TSelectionRange FOrigin;  // the unit where the selection was begun
    TSelectionRange FOffered; // what was last made the primary selection
    QPoint FPressed;
    QPoint FLast;
    QElapsedTimer FSinceDouble;
    QPoint FDoubleAt;
};
