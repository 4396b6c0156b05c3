#include "desktop/memo/paint/MemoPainter.h"

#include "desktop/memo/MemoWidget.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

TMemoPainter::TMemoPainter(TMemoWidget& widget)
    : FWidget(widget), FColors(widget.palette()), FGutter(widget), FText(widget) {
    FWidget.Geometry().Rows().Colour = [this](const TStyleRun& run, QTextCharFormat& format) {
        const TRunLook look = FWidget.Memo().LookOf(run.State);
        format.setForeground(run.CustomDraw ? QColor(Qt::transparent)
                                            : FColors.Text(look.TextColor, look.BkColor));
    };
}

const TMemoColors& TMemoPainter::Colors() {
    if (!FColors.IsFor(FWidget.palette())) {
        FColors = TMemoColors(FWidget.palette());
        FWidget.Geometry().Rows().Forget(); // layouts hold colours
    }
    return FColors;
}

void TMemoPainter::Paint(const QRect& rect) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    QPainter painter(FWidget.viewport());
    painter.fillRect(rect, Colors().Back(FWidget.Memo().BaseLook.BkColor));
    FGutter.PaintGround(painter, rect, FColors.Tints);
    const std::vector<int> rows = geometry.RowsInView();
    int y = 0;
    for (const int row : rows) {
        if (y <= rect.bottom() && y + geometry.LineHeight() > rect.y())
            PaintRow(painter, row);
        y += geometry.LineHeight();
    }
    PaintRightMargin({painter, FColors, 0, QRect(geometry.TextLeft(), y, 0, rect.bottom() + 1 - y)});
    PaintCaret(painter);
}

void TMemoPainter::PaintRow(QPainter& painter, int row) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    QRect rect = geometry.RowRect(row);
    FGutter.PaintRow(painter, row, FColors.Tints);
    rect.setLeft(geometry.TextLeft());
    TRowPainting painting{painter, FColors, row, rect};
    painting.Focused = FWidget.hasFocus();
    TakeSelection(painting);
    PaintRowGround(painting);
    painter.save();
    painter.setClipRect(rect.adjusted(-1, 0, 0, 0), Qt::IntersectClip); // a caret may stand in front
    FText.PaintGrounds(painting);
    PaintRightMargin(painting);
    PaintMarked(painting);
    PaintBrackets(painting);
    if (painting.From < painting.To)
        FText.Fill(painting, painting.From, painting.To,
                   painting.Focused ? FColors.Tints.Selection : FColors.Tints.SelectionAway);
    FText.PaintText(painting);
    PaintErrors(painting);
    PaintFoldedText(painting);
    painter.restore();
}

void TMemoPainter::PaintRowGround(const TRowPainting& painting) {
    const TLineProp* prop = FWidget.Memo().Lines().GetLineProp(painting.Row);
    const QRect ground = painting.Rect.adjusted(-4, 0, 0, 0);
    if (prop && prop->BreakPoint)
        painting.Painter.fillRect(ground, FColors.Tints.BreakPointLine);
    else if (FWidget.Memo().Settings.FShowActiveLine && painting.Row == FWidget.Memo().Caret().Y())
        painting.Painter.fillRect(ground, FColors.Tints.CurrentLine);
}

void TMemoPainter::PaintRightMargin(const TRowPainting& painting) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int x = geometry.RowLeft() + FWidget.Memo().Settings.FRightMargin * geometry.CellWidth();
    if (FWidget.ShowRightMargin && x >= geometry.TextLeft())
        painting.Painter.fillRect(x, painting.Rect.y(), 1, painting.Rect.height(), FColors.Tints.RightMargin);
}

/// A selection that goes on to the next row takes a cell for the line break; a block is a rectangle whatever
/// the rows' lengths.
void TMemoPainter::TakeSelection(TRowPainting& painting) {
    const TMemoSelection& selection = FWidget.Memo().Selection();
    const TSelectionRange range = selection.Ordered();
    const int row = painting.Row;
    if (selection.IsEmpty() || row < range.StartY || row > range.EndY)
        return;
    if (selection.IsBlock()) {
        painting.From = range.StartX;
        painting.To = range.EndX;
        return;
    }
    if (!selection.ColumnsOf(row, painting.From, painting.To))
        painting.To = painting.From;
    const string text = FWidget.Memo().LineText(row); // a pair of surrogates is selected as a whole
    painting.From = WholeColumn(text, painting.From);
    painting.To += WholeColumn(text, painting.To) < painting.To ? 1 : 0;
    if (row < range.EndY && !FWidget.Memo().IsContinuation(row + 1))
        ++painting.To;
}

void TMemoPainter::PaintMarked(const TRowPainting& painting) {
    if (!FWidget.MarkedColumns)
        return;
    for (const TColumnRange& range : FWidget.MarkedColumns(painting.Row))
        FText.Fill(painting, range.From, range.To, FColors.Tints.Match);
}

const TBracketMatch& TMemoPainter::Brackets() {
    TAdvMemo& memo = FWidget.Memo();
    const TBracketsOf now{memo.RunsRevision(), memo.Caret().X(), memo.Caret().Y()};
    if (now != FBracketsOf) {
        FBracketsOf = now;
        FBrackets = MatchBracket(memo);
    }
    return FBrackets;
}

void TMemoPainter::PaintBrackets(const TRowPainting& painting) {
    const TBracketMatch& match = Brackets();
    if (!match.Found())
        return;
    const auto mark = [&](int x, int y) {
        if (y == painting.Row)
            FText.Fill(painting, x, x + 1, FColors.Tints.Bracket);
    };
    mark(match.X, match.Y);
    mark(match.OtherX, match.OtherY);
}

void TMemoPainter::PaintErrors(const TRowPainting& painting) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const QRect& rect = painting.Rect;
    for (const TErrorMark& mark : FWidget.Memo().ErrorMarks().Of(painting.Row)) {
        const int from = geometry.XOf(painting.Row, mark.Column);
        const int to = geometry.XOf(painting.Row, mark.Column + mark.Length);
        constexpr int Step = 2; // half a wave
        const int left = std::max(std::min(from, to), rect.left() - 2 * Step);
        const int right = std::min(std::max(from, to), rect.right() + 2 * Step);
        QPolygonF wave;
        bool up = ((left - std::min(from, to)) / Step) % 2 != 0;
        for (int x = left; x < right; x += Step, up = !up)
            wave.append(QPointF(x + 0.5, rect.bottom() - (up ? 1.9 : 0.1)));
        painting.Painter.setRenderHint(QPainter::Antialiasing);
        painting.Painter.setPen(QPen(FColors.Tints.Error, 1.2));
        painting.Painter.drawPolyline(wave);
        painting.Painter.setRenderHint(QPainter::Antialiasing, /*on=*/false);
    }
}

/// A box with dots behind the text of a closed fold.
void TMemoPainter::PaintFoldedText(const TRowPainting& painting) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const TMemoFolding& folding = FWidget.Memo().Folding();
    if (geometry.FoldBox(painting.Row).isEmpty() || folding.IsExpanded(painting.Row))
        return;
    const int x = geometry.XOf(painting.Row, FWidget.Memo().LineLength(painting.Row)) + geometry.CellWidth();
    const QRectF box(x + 0.5, painting.Rect.y() + 2.5, 3 * geometry.CellWidth(), painting.Rect.height() - 5);
    painting.Painter.setRenderHint(QPainter::Antialiasing);
    painting.Painter.setPen(FColors.Tints.Fold);
    painting.Painter.setBrush(FColors.Tints.Gutter);
    painting.Painter.drawRoundedRect(box, 3, 3);
    painting.Painter.setPen(Qt::NoPen);
    painting.Painter.setBrush(FColors.Tints.CurrentNumber);
    for (const int dot : {-1, 0, 1})
        painting.Painter.drawEllipse(box.center() + QPointF(dot * 0.7 * geometry.CellWidth(), 0), 1, 1);
    painting.Painter.setRenderHint(QPainter::Antialiasing, /*on=*/false);
}

/// A bar between characters, or the cell that the next character is written over.
void TMemoPainter::PaintCaret(QPainter& painter) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const bool overwrite = FWidget.Memo().Settings.FOverwrite;
    const QRect cell = geometry.CaretRect();
    const int left = geometry.TextLeft() - 1;
    if (geometry.Rows().HasPreedit(FWidget.Memo().Caret().Y()) && geometry.Rows().Preedit.Cursor < 0)
        return;
    painter.setClipRect(QRect(left, 0, FWidget.viewport()->width() - left, FWidget.viewport()->height()));
    if (!FWidget.hasFocus()) {
        if (overwrite) {
            painter.setPen(FColors.Tints.Number);
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(cell.adjusted(0, 0, -1, -1));
        }
        return;
    }
    if (!FWidget.CaretShows())
        return;
    if (overwrite) {
        QColor block = FColors.Tints.Ink;
        painter.fillRect(cell.adjusted(0, cell.height() - 2, 0, 0), block);
        block.setAlphaF(0.25F);
        painter.fillRect(cell.adjusted(0, 0, 0, -2), block);
        return;
    }
    constexpr int Thinnest = 2;
    const int width = std::max(Thinnest, FWidget.style()->pixelMetric(QStyle::PM_TextCursorWidth));
    painter.fillRect(geometry.CaretX() - 1, cell.y(), width, cell.height(), FColors.Tints.Ink);
}
