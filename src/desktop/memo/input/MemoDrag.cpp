#include "desktop/memo/input/MemoDrag.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "editor/edit/SurrogatePairs.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>

#include <algorithm>
#include <tuple>

namespace {

constexpr int CaretWidth = 2;

} // namespace

TMemoDrag::TMemoDrag(TMemoWidget& widget)
    : Run([](QDrag& drag) { return drag.exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction); }),
      FWidget(widget), FScroll([this](int rows, int columns) {
          TMemoScroll& scroll = FWidget.Memo().Scroll();
          scroll.SetTopLine(FWidget.Memo().Folding().StepVisible(scroll.TopLine(), rows));
          scroll.SetLeftCol(std::clamp(scroll.LeftCol() + columns, 0, scroll.MaxLength()));
      }) {}

bool TMemoDrag::IsInSelection(QPoint pos) const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int row = geometry.RowAt(pos.y());
    int from = 0;
    int to = 0;
    return geometry.RowRect(row).contains(pos) && FWidget.Memo().Selection().ColumnsOf(row, from, to) &&
           pos.x() >= geometry.XOf(row, from) && pos.x() < geometry.XOf(row, to);
}

void TMemoDrag::Start() {
    TAdvMemo& memo = FWidget.Memo();
    FWidget.Pairs().WidenSelection();
    auto* drag = new QDrag(&FWidget); // Qt's own from here on
    auto* data = new QMimeData;
    const string text = memo.SelText();
    data->setText(PlainText(text));
    drag->setMimeData(data);
    FDragging = true;
    FMovedHere = false;
    const Qt::DropAction action = Run(*drag);
    FDragging = false;
    HideCaret();
    // Another window on the same text may have taken it and moved what is selected here.
    if (action == Qt::MoveAction && !FMovedHere && !memo.Settings.FReadOnly && memo.EditingAllowed() &&
        memo.SelText() == text)
        FWidget.Pairs().DeleteSelection();
}

bool TMemoDrag::IsOwn(const QDropEvent& event) const {
    return FDragging || (event.source() != nullptr && event.source() == &FWidget);
}

bool TMemoDrag::Takes(const QDropEvent& event) const {
    TAdvMemo& memo = FWidget.Memo();
    return event.mimeData()->hasText() && !memo.Settings.FReadOnly && memo.EditingAllowed();
}

void TMemoDrag::Move(QDragMoveEvent& event) {
    if (!Takes(event)) {
        HideCaret();
        return event.ignore();
    }
    const TMemoGeometry& geometry = FWidget.Geometry();
    const QPoint pos = event.position().toPoint();
    const int row = geometry.RowAt(pos.y());
    ShowCaret(geometry.ColumnAt(row, pos.x()), row);
    const QSize cell(geometry.CellWidth(), geometry.LineHeight());
    const QRect inner(geometry.TextLeft(), 0, FWidget.viewport()->width() - geometry.TextLeft(),
                      FWidget.viewport()->height());
    FScroll.Aim(pos, inner.adjusted(0, cell.height(), -cell.width(), -cell.height()), cell);
    if (IsOwn(event)) {
        event.setDropAction(event.modifiers().testFlag(Qt::ControlModifier) ? Qt::CopyAction
                                                                            : Qt::MoveAction);
        event.accept();
    } else {
        event.acceptProposedAction();
    }
}

void TMemoDrag::Leave() {
    HideCaret();
}

void TMemoDrag::Drop(QDropEvent& event) {
    HideCaret();
    if (!Takes(event))
        return event.ignore();
    const QPoint pos = event.position().toPoint();
    const int y = FWidget.Geometry().RowAt(pos.y());
    const int x = FWidget.Geometry().ColumnAt(y, pos.x());
    if (!IsOwn(event)) {
        event.acceptProposedAction();
        Insert(x, y, PlainText(event.mimeData()->text()));
    } else if (event.modifiers().testFlag(Qt::ControlModifier)) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
        if (!IsInSelection(pos))
            Insert(x, y, PlainText(event.mimeData()->text()));
    } else {
        event.setDropAction(Qt::MoveAction);
        event.accept();
        FMovedHere = true;
        if (!IsInSelection(pos))
            MoveHere(x, y);
    }
    FWidget.setFocus(Qt::MouseFocusReason);
}

/// Text that was dropped is selected, as it was where it came from.
void TMemoDrag::Insert(int x, int y, const QString& text) {
    TAdvMemo& memo = FWidget.Memo();
    memo.Activate();
    memo.Caret().MoveTo(x, y);
    memo.ClearSelection();
    memo.Blocks().InsertBuffer(text);
    memo.Selection().Take({x, y, memo.Caret().X(), memo.Caret().Y()}, /*block=*/false);
}

/// Deletes the selection and puts it in again elsewhere; both are one step in the history.
void TMemoDrag::MoveHere(int x, int y) {
    TAdvMemo& memo = FWidget.Memo();
    memo.Activate();
    FWidget.Pairs().WidenSelection();
    const TSelectionRange range = memo.Selection().Ordered();
    const bool block = memo.Selection().IsBlock();
    const string text = PlainText(memo.SelText());
    const auto target = std::tie(y, x);
    if (!block && target >= std::tie(range.StartY, range.StartX) &&
        target <= std::tie(range.EndY, range.EndX))
        return; // at its edges
    // Text is counted through, which holds when the cuts of wrapped lines move; a rectangle leaves its rows
    // where they are.
    int offset = memo.Words().TextFromPos(x, y);
    if (!block && target > std::tie(range.EndY, range.EndX))
        offset -= int(memo.SelText().size());
    int from = 0;
    int to = 0;
    if (block && memo.Selection().ColumnsOf(y, from, to) && x > from)
        x = std::max(from, x - (to - from));
    memo.Blocks().DeleteSelection();
    if (!block)
        memo.Words().PosFromText(offset, x, y);
    memo.Caret().MoveTo(x, y);
    memo.ClearSelection();
    x = memo.Caret().X();
    y = memo.Caret().Y();
    memo.Blocks().InsertBuffer(text, Linked::Yes);
    memo.Selection().Take({x, y, memo.Caret().X(), memo.Caret().Y()}, /*block=*/false);
}

QRect TMemoDrag::CaretRect() const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    return {geometry.XOf(FY, FX) - CaretWidth / 2, geometry.YOf(FY), CaretWidth, geometry.LineHeight()};
}

void TMemoDrag::ShowCaret(int x, int y) {
    if (x == FX && y == FY)
        return;
    if (FX >= 0)
        FWidget.viewport()->update(CaretRect());
    FX = x;
    FY = y;
    FWidget.viewport()->update(CaretRect());
}

void TMemoDrag::HideCaret() {
    FScroll.Stop();
    if (FX >= 0)
        FWidget.viewport()->update(CaretRect());
    FX = FY = -1;
}

void TMemoDrag::Paint() {
    if (FX < 0)
        return;
    QPainter painter(FWidget.viewport());
    painter.fillRect(CaretRect(), FWidget.palette().color(QPalette::Text));
}
