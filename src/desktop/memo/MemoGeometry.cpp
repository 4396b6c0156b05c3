#include "desktop/memo/MemoGeometry.h"

#include <QWidget>

#include <algorithm>
#include <cmath>

TMemoGeometry::TMemoGeometry(TAdvCustomMemo& memo, QWidget& viewport)
    : FMemo(memo), FViewport(viewport), FRows(std::make_unique<TMemoRows>(memo, FFonts)) {
    Update();
}

void TMemoGeometry::SetFont(const TMemoFont& font, int zoom) {
    FFonts.Set(font, zoom);
    FRows->Forget();
    Update();
}

void TMemoGeometry::Update() {
    FMemo.Scroll().Resize(FFonts.Cell(), std::max(0, FViewport.width() - TextLeft()), FViewport.height());
}

int TMemoGeometry::GutterWidth() const {
    if (!ShowGutter)
        return 0;
    constexpr int Margins = 18; // a bookmark, the strip of changed lines, and air around the number
    int digits = 1;
    for (int count = FMemo.Lines().Count(); count >= 10; count /= 10)
        ++digits;
    return std::max(GutterMinimum, digits * CellWidth() + Margins);
}

int TMemoGeometry::TextLeft() const {
    constexpr int Air = 4;
    return GutterWidth() + (FMemo.Folding().Enabled() ? FoldWidth : 0) + Air;
}

int TMemoGeometry::RowLeft() const {
    return TextLeft() - FMemo.Scroll().LeftCol() * CellWidth();
}

int TMemoGeometry::NumberOf(int row) const {
    if (FMemo.Settings.FWordWrap == wwNone)
        return row + 1;
    if (FMemo.IsContinuation(row))
        return 0;
    const quint64 revision = FMemo.RunsRevision();
    if (FCounted.Runs != revision || FCounted.Row > row)
        FCounted = {revision, 0, 1};
    while (FCounted.Row < row)
        FCounted.Number += FMemo.IsContinuation(++FCounted.Row) ? 0 : 1;
    return FCounted.Number;
}

int TMemoGeometry::YOf(int row) const {
    const TMemoFolding& folding = FMemo.Folding();
    return (folding.VisibleBefore(row) - folding.VisibleBefore(FMemo.Scroll().TopLine())) * LineHeight();
}

int TMemoGeometry::RowAt(int y) const {
    return FMemo.Folding().StepVisible(FMemo.Scroll().TopLine(), int(std::floor(double(y) / LineHeight())));
}

int TMemoGeometry::XOf(int row, int column) const {
    return RowLeft() + FRows->Of(row).XOf(column);
}

int TMemoGeometry::ColumnAt(int row, int x) const {
    return FRows->Of(row).ColumnAt(x - RowLeft());
}

QRect TMemoGeometry::RowRect(int row) const {
    return {0, YOf(row), FViewport.width(), LineHeight()};
}

int TMemoGeometry::CaretX() const {
    const TMemoRow& shown = FRows->Of(FMemo.Caret().Y());
    const int column = FMemo.Caret().X();
    const TMemoPiece& piece =
        shown.PieceAt(WholeColumn(shown.Text, std::min(column, int(shown.Text.size()))));
    if (piece.PreeditLength == 0)
        return RowLeft() + shown.XOf(column);
    const int within = std::clamp(FRows->Preedit.Cursor, 0, piece.PreeditLength);
    return RowLeft() + piece.XOfPlace(piece.PreeditAt + within);
}

QRect TMemoGeometry::CaretRect() const {
    const int row = FMemo.Caret().Y();
    if (FRows->HasPreedit(row))
        return {CaretX(), YOf(row), CellWidth(), LineHeight()};
    const TMemoSpan span = FRows->Of(row).SpanOf(FMemo.Caret().X());
    return {RowLeft() + span.X, YOf(row), span.Width, LineHeight()};
}

QRect TMemoGeometry::FoldBox(int row) const {
    const TLineProp* prop = FMemo.Lines().GetLineProp(row);
    if (!FMemo.Folding().Enabled() || !prop || !prop->FHasChildren)
        return {};
    const int size = (std::min({9, FoldWidth, LineHeight() - 2}) - 1) / 2 * 2 + 1; // odd: signs have a middle
    return {GutterWidth() + (FoldWidth - size) / 2, YOf(row) + (LineHeight() - size) / 2, size, size};
}

int TMemoGeometry::FoldMarkAt(QPoint at) const {
    if (at.x() < GutterWidth() || at.x() >= GutterWidth() + FoldWidth || at.y() < 0)
        return -1;
    const int row = RowAt(at.y());
    return RowRect(row).contains(at.x(), at.y()) && !FoldBox(row).isEmpty() ? row : -1;
}

std::vector<int> TMemoGeometry::RowsInView() const {
    std::vector<int> rows;
    const int count = std::max(1, FMemo.Lines().Count());
    const int fitting = (FViewport.height() + LineHeight() - 1) / LineHeight();
    for (int row = FMemo.Scroll().TopLine(); row < count && int(rows.size()) < fitting;) {
        rows.push_back(row);
        const int next = FMemo.Folding().StepVisible(row, 1);
        if (next == row)
            break;
        row = next;
    }
    return rows;
}

void TMemoGeometry::ScrollSideways(ToCaret toCaret) {
    TMemoScroll& scroll = FMemo.Scroll();
    int cells = scroll.MaxLength();
    for (const int row : RowsInView()) {
        if (const TMemoRow& shown = FRows->Of(row); shown.IsLaidOut())
            cells = std::max(cells, shown.Width() / CellWidth() + 1);
    }
    if (cells > scroll.MaxLength()) {
        scroll.SetMaxLength(cells);
        scroll.UpdateRange();
    }
    if (toCaret == ToCaret::No || !FRows->Of(FMemo.Caret().Y()).IsLaidOut())
        return;
    constexpr int Beside = 2; // cells that show beside the caret, as where the control scrolls
    const QRect caret = CaretRect();
    const int behind = caret.right() + 1 - FViewport.width();
    const int before = TextLeft() - caret.left();
    if (behind > 0)
        scroll.SetLeftCol(scroll.LeftCol() + behind / CellWidth() + Beside);
    else if (before > 0)
        scroll.SetLeftCol(std::max(0, scroll.LeftCol() - before / CellWidth() - Beside));
}
