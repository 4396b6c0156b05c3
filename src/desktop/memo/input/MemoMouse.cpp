#include "desktop/memo/input/MemoMouse.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "desktop/memo/input/MemoMenu.h"
#include "editor/edit/SurrogatePairs.h"
#include "editor/text/Characters.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>
#include <tuple>

TMemoMouse::TMemoMouse(TMemoWidget& widget)
    : FWidget(widget), FDrag(widget), FWheel(widget),
      FScroll([this](int rows, int columns) { AutoScrolled(rows, columns); }) {}

QRect TMemoMouse::TextArea() const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int rows = std::max(1, FWidget.Memo().Scroll().RowsInView());
    const int left = geometry.TextLeft();
    return {left, 0, std::max(1, FWidget.viewport()->width() - left), rows * geometry.LineHeight()};
}

QPoint TMemoMouse::IntoText(QPoint pos) const {
    const QRect area = TextArea();
    return {std::clamp(pos.x(), area.left(), area.right()), std::clamp(pos.y(), area.top(), area.bottom())};
}

/// Columns of a rectangle may lie beyond the ends of lines. Words are those under the pointer, not those
/// whose edge is nearest.
TMemoMouse::TPlace TMemoMouse::PlaceAt(QPoint pos) const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int row = geometry.RowAt(pos.y());
    const int length = FWidget.Memo().LineLength(row);
    const int beyond = pos.x() - geometry.XOf(row, length);
    if (FBlock && beyond > 0)
        return {length + (beyond + geometry.CellWidth() / 2) / geometry.CellWidth(), row};
    const int column = geometry.ColumnAt(row, pos.x());
    if (FUnit == TUnit::Word && column > 0 && geometry.XOf(row, column) > pos.x())
        return {WholeColumn(FWidget.Memo().LineText(row), column - 1), row};
    return {column, row};
}

TSelectionRange TMemoMouse::UnitAt(TPlace place) const {
    TAdvMemo& memo = FWidget.Memo();
    TSelectionRange range{place.X, place.Y, place.X, place.Y};
    if (FUnit == TUnit::Word) {
        const string line = memo.LineText(place.Y);
        if (place.X < line.size() && memo.Rules().IsWordBreakChar(line[place.X]))
            range.EndX = CharacterEnd(line, place.X); // between words: the character
        else
            memo.Words().WordBounds(place.X, place.Y, range.StartX, range.EndX);
    } else if (FUnit == TUnit::Line) {
        const int next = memo.Folding().StepVisible(place.Y, 1);
        range = {0, place.Y, next == place.Y ? memo.LineLength(place.Y) : 0, next};
    }
    return range;
}

void TMemoMouse::SetBlock(bool on) {
    if (on == FBlock)
        return;
    FBlock = on;
    FWidget.Memo().Settings.FSelectionMode = on ? smBlock : smText;
}

bool TMemoMouse::IsTripleClick(const QMouseEvent& event) const {
    return FSinceDouble.isValid() && FSinceDouble.elapsed() < QApplication::doubleClickInterval() &&
           (event.pos() - FDoubleAt).manhattanLength() < QApplication::startDragDistance();
}

void TMemoMouse::Press(QMouseEvent& event) {
    FWidget.CancelPreedit();
    FWidget.Memo().Activate();
    FLast = FPressed = event.pos();
    FUnit = TUnit::Character;
    event.accept();
    const bool inText = event.pos().x() >= FWidget.Geometry().TextLeft();
    if (event.button() == Qt::LeftButton && inText)
        Click(event);
    else if (event.button() == Qt::LeftButton)
        ClickMargin(event);
    else if (event.button() == Qt::RightButton && inText && !FDrag.IsInSelection(event.pos())) {
        Begin(TUnit::Character, PlaceAt(event.pos()));
        FSelecting = false;
    }
}

void TMemoMouse::Click(QMouseEvent& event) {
    const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    const bool triple = IsTripleClick(event);
    FSinceDouble.invalidate();
    if (triple)
        return Begin(TUnit::Line, PlaceAt(event.pos()));
    if (!shift && !alt && FDrag.IsInSelection(event.pos())) {
        FMayDrag = true;
        return;
    }
    SetBlock(alt);
    if (!shift)
        return Begin(TUnit::Character, PlaceAt(event.pos()));
    const TSelectionRange range = FWidget.Memo().Selection().Range();
    const TMemoCaret& caret = FWidget.Memo().Caret();
    const bool empty = FWidget.Memo().Selection().IsEmpty();
    const TPlace from = empty ? TPlace{caret.X(), caret.Y()} : TPlace{range.StartX, range.StartY};
    FOrigin = UnitAt(from);
    FSelecting = true;
    SelectTo(PlaceAt(event.pos()));
}

void TMemoMouse::ClickMargin(QMouseEvent& event) {
    const int fold = FWidget.Geometry().FoldMarkAt(event.pos());
    if (fold >= 0)
        return ToggleFold(fold);
    SetBlock(/*on=*/false);
    Begin(TUnit::Line, {0, FWidget.Geometry().RowAt(event.pos().y())});
}

void TMemoMouse::ToggleFold(int row) {
    TAdvMemo& memo = FWidget.Memo();
    if (!memo.Folding().IsExpanded(row))
        return memo.Folding().ExpandNode(row);
    memo.Folding().CollapseNode(row);
    if (memo.Folding().IsVisible(memo.Caret().Y()))
        return;
    memo.Caret().MoveTo(memo.LineLength(row), row);
    memo.ClearSelection();
}

void TMemoMouse::Begin(TUnit unit, TPlace place) {
    FUnit = unit;
    FSelecting = true;
    FOrigin = UnitAt(place);
    TAdvMemo& memo = FWidget.Memo();
    if (unit == TUnit::Character) {
        memo.Caret().MoveTo(std::min(place.X, memo.LineLength(place.Y)), place.Y);
        memo.ClearSelection();
    } else {
        SelectUnits(FOrigin);
    }
    FWidget.Pairs().Snap();
}

void TMemoMouse::SelectTo(TPlace place) {
    SelectUnits(UnitAt(place));
}

/// From the unit where the selection was begun to `unit`, both included.
void TMemoMouse::SelectUnits(const TSelectionRange& unit) {
    TAdvMemo& memo = FWidget.Memo();
    TSelectionRange range{FOrigin.StartX, FOrigin.StartY, unit.EndX, unit.EndY};
    if (std::tie(unit.StartY, unit.StartX) < std::tie(FOrigin.StartY, FOrigin.StartX))
        range = {FOrigin.EndX, FOrigin.EndY, unit.StartX, unit.StartY};
    // A rectangle may reach beyond its lines, the caret must not: it would pad them.
    memo.Caret().MoveTo(std::min(range.EndX, memo.LineLength(range.EndY)), range.EndY);
    memo.Selection().Take(range, FBlock);
}

void TMemoMouse::Move(QMouseEvent& event) {
    FLast = event.pos();
    if (!event.buttons().testFlag(Qt::LeftButton))
        return ShowShape(event.pos());
    if (FMayDrag && (event.pos() - FPressed).manhattanLength() >= QApplication::startDragDistance()) {
        FMayDrag = false;
        return FDrag.Start();
    }
    if (!FSelecting)
        return;
    SelectTo(PlaceAt(IntoText(event.pos())));
    const TMemoGeometry& geometry = FWidget.Geometry();
    QRect area = TextArea();
    if (FUnit == TUnit::Line)
        area.setLeft(std::min(area.left(), event.pos().x())); // lines have no columns to go to
    FScroll.Aim(event.pos(), area, {geometry.CellWidth(), geometry.LineHeight()});
}

void TMemoMouse::AutoScrolled(int rows, int columns) {
    TAdvMemo& memo = FWidget.Memo();
    const TPlace edge = PlaceAt(IntoText(FLast));
    const int row = memo.Folding().StepVisible(edge.Y, rows);
    int column = std::max(0, edge.X + columns);
    if (!FBlock)
        column = std::min(column, memo.LineLength(row));
    SelectTo({WholeColumn(memo.LineText(row), column), row});
}

void TMemoMouse::Release(QMouseEvent& event) {
    FScroll.Stop();
    event.accept();
    if (event.button() == Qt::MiddleButton)
        return PastePrimary(event.pos());
    if (event.button() != Qt::LeftButton)
        return;
    if (std::exchange(FMayDrag, false)) { // a click in the selection, after all
        SetBlock(/*on=*/false);
        Begin(TUnit::Character, PlaceAt(event.pos()));
    }
    if (std::exchange(FSelecting, false))
        Finish();
    ShowShape(event.pos());
}

void TMemoMouse::DoubleClick(QMouseEvent& event) {
    if (event.button() != Qt::LeftButton || event.pos().x() < FWidget.Geometry().TextLeft())
        return Press(event);
    FMayDrag = false;
    FSinceDouble.start();
    FDoubleAt = FLast = FPressed = event.pos();
    SetBlock(/*on=*/false);
    FUnit = TUnit::Word;
    Begin(TUnit::Word, PlaceAt(event.pos()));
}

void TMemoMouse::Finish() {
    FOffered = FWidget.Memo().Selection().Range();
    if (FWidget.Clipboard().HasPrimary() && !FWidget.Memo().Selection().IsEmpty())
        FWidget.Clipboard().SetPrimaryText(FWidget.Memo().SelText());
}

void TMemoMouse::KeyServed() {
    if (!FWidget.Memo().Selection().IsEmpty()) {
        // Only a new one: another program may have the primary selection by now.
        if (FWidget.Memo().Selection().Range() != FOffered)
            Finish();
        return;
    }
    FOffered = {};
    if (!FBlock)
        return;
    SetBlock(/*on=*/false);
    FWidget.Memo().ClearSelection(); // the next one is text from its start
}

void TMemoMouse::PastePrimary(QPoint pos) {
    TAdvMemo& memo = FWidget.Memo();
    if (!FWidget.Clipboard().HasPrimary() || memo.Settings.FReadOnly || !memo.EditingAllowed() ||
        pos.x() < FWidget.Geometry().TextLeft())
        return;
    const string text = FWidget.Clipboard().PrimaryText(); // before the selection that it may be goes
    SetBlock(/*on=*/false);
    const TPlace place = PlaceAt(pos);
    memo.Caret().MoveTo(place.X, place.Y);
    memo.ClearSelection();
    memo.Blocks().InsertBuffer(text);
}

void TMemoMouse::ShowShape(QPoint pos) {
    const bool text = pos.x() >= FWidget.Geometry().TextLeft() && !FDrag.IsInSelection(pos);
    const Qt::CursorShape shape = text ? Qt::IBeamCursor : Qt::ArrowCursor;
    if (FWidget.viewport()->cursor().shape() != shape)
        FWidget.viewport()->setCursor(shape);
}

void TMemoMouse::Menu(QContextMenuEvent& event) {
    ShowMemoMenu(FWidget, event);
}

void TMemoMouse::PaintDropCaret() {
    FDrag.Paint();
}
