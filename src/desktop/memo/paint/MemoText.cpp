#include "desktop/memo/paint/MemoText.h"

#include "desktop/memo/MemoWidget.h"

#include <QPainter>

#include <algorithm>

/// What shows of a run.
struct TMemoText::TSlice {
    const TStyleRun& Run;
    int Column;       // of the slice's first character
    QStringView Text; // a part of the run's text
    [[nodiscard]] int End() const { return Column + int(Text.size()); }
};

bool TMemoText::Shows(const TMemoPiece& piece) const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int left = geometry.RowLeft() + piece.Span.X;
    return left < FWidget.viewport()->width() && left + piece.Span.Width >= geometry.TextLeft();
}

template <class F> void TMemoText::EachSlice(const TMemoRow& shown, const TMemoPiece& piece, F paint) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    int first = piece.From;
    int last = piece.End();
    if (!piece.Layout) { // columns are cells
        const int left = geometry.RowLeft() + piece.Span.X;
        const int hidden = std::max(0, geometry.TextLeft() - left) / shown.Cell;
        const int showing = (FWidget.viewport()->width() - left) / shown.Cell + 1;
        first += hidden;
        last = std::min(last, piece.From + showing);
    }
    int column = 0;
    for (const TStyleRun& run : shown.Runs) {
        if (column >= last)
            return;
        const int end = column + int(run.Text.size());
        if (end > first) {
            const int from = std::max(column, first);
            paint(TSlice{run, from, QStringView(run.Text).mid(from - column, std::min(end, last) - from)});
        }
        column = end;
    }
}

void TMemoText::PaintGrounds(const TRowPainting& painting) {
    const TMemoRow& shown = FWidget.Geometry().Rows().Of(painting.Row);
    const TAdvMemo& memo = FWidget.Memo();
    for (const TMemoPiece& piece : shown.Pieces) {
        if (!Shows(piece))
            continue;
        EachSlice(shown, piece, [&](const TSlice& slice) {
            const TColor color = memo.LookOf(slice.Run.State).BkColor;
            if (color != memo.BaseLook.BkColor)
                Fill(painting, slice.Column, slice.End(), painting.Colors.Back(color));
        });
    }
}

void TMemoText::Fill(const TRowPainting& painting, int from, int to, const QColor& color) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    for (const TMemoSpan& span : geometry.Rows().Of(painting.Row).SpansOf(from, to))
        painting.Painter.fillRect(geometry.RowLeft() + span.X, painting.Rect.y(), span.Width,
                                  painting.Rect.height(), color);
}

void TMemoText::PaintText(const TRowPainting& painting) {
    const TMemoRow& shown = FWidget.Geometry().Rows().Of(painting.Row);
    for (const TMemoPiece& piece : shown.Pieces) {
        if (!Shows(piece))
            continue;
        if (piece.Layout)
            PaintLayout(painting, shown, piece);
        else
            PaintGrid(painting, shown, piece);
    }
}

/// Slices are cut once more where the selection begins and ends.
void TMemoText::PaintGrid(const TRowPainting& painting, const TMemoRow& shown, const TMemoPiece& piece) {
    EachSlice(shown, piece, [&](const TSlice& slice) {
        const int cuts[] = {slice.Column, std::clamp(painting.From, slice.Column, slice.End()),
                            std::clamp(painting.To, slice.Column, slice.End()), slice.End()};
        for (int i = 0; i < 3; ++i) {
            const int length = cuts[i + 1] - cuts[i];
            if (length > 0)
                PaintSlice(painting, {slice.Run, cuts[i], slice.Text.mid(cuts[i] - slice.Column, length)});
        }
    });
}

void TMemoText::PaintSlice(const TRowPainting& painting, const TSlice& slice) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const TRunLook look = FWidget.Memo().LookOf(slice.Run.State);
    const bool drawsLine = (look.Style & (fsUnderline | fsStrikeOut)) != 0;
    if (!drawsLine && slice.Text.trimmed().isEmpty())
        return;
    const bool selected = slice.Column >= painting.From && slice.Column < painting.To;
    painting.Painter.setFont(geometry.Fonts().Of(look.Style));
    painting.Painter.setPen(selected && painting.Focused
                                ? painting.Colors.Tints.SelectedText
                                : painting.Colors.Text(look.TextColor, look.BkColor));
    if (slice.Run.CustomDraw)
        PaintCustomDrawn(painting, slice);
    else
        painting.Painter.drawText(geometry.XOf(painting.Row, slice.Column),
                                  painting.Rect.y() + geometry.Ascent(), slice.Text.toString());
}

void TMemoText::PaintLayout(const TRowPainting& painting, const TMemoRow& shown, const TMemoPiece& piece) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    QList<QTextLayout::FormatRange> selections;
    const int from = std::max(painting.From, piece.From);
    const int to = std::min(painting.To, piece.End());
    if (painting.Focused && from < to) {
        QTextCharFormat format;
        format.setForeground(painting.Colors.Tints.SelectedText);
        selections.append({piece.PlaceOf(from), piece.PlaceOf(to) - piece.PlaceOf(from), format});
    }
    // Fonts that stand in for others may be taller: the base line is the same as on other rows.
    const qreal top = painting.Rect.y() + geometry.Ascent() - piece.Layout->lineAt(0).ascent();
    piece.Layout->draw(&painting.Painter, QPointF(geometry.RowLeft() + piece.Span.X, top), selections);
    EachSlice(shown, piece, [&](const TSlice& slice) { // the layout left their places empty
        if (slice.Run.CustomDraw)
            PaintCustomDrawn(painting, slice);
    });
}

void TMemoText::PaintCustomDrawn(const TRowPainting& painting, const TSlice& slice) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int x = geometry.XOf(painting.Row, slice.Column);
    const QRect place(x, painting.Rect.y(), geometry.XOf(painting.Row, slice.End()) - x,
                      painting.Rect.height());
    if (TAdvCustomMemoStyler* styler = FWidget.Memo().GetStyler())
        styler->DrawKeyword(&painting.Painter, slice.Text.toString(), place);
}
