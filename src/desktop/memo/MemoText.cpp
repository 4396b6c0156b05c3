#include "desktop/memo/MemoText.h"

#include "desktop/memo/MemoWidget.h"

#include <QPainter>

#include <algorithm>

/// What shows of a run.
struct TMemoText::TSlice {
    const TStyleRun& Run;
    int Column;       // of the slice's first character
    QStringView Text; // a part of the run's text
};

/// Gives what lies in view of the row's runs. Columns are cells here.
template <class F> void TMemoText::EachSlice(const TRowPainting& painting, const TMemoRow& shown, F paint) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int first = FWidget.Memo().Scroll().LeftCol();
    const int last = first + painting.Rect.width() / geometry.CellWidth() + 1;
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
    TAdvMemo& memo = FWidget.Memo();
    const auto ground = [&](const TStyleRun& run, int from, int to) {
        const TColor color = memo.LookOf(run.State).BkColor;
        if (color != memo.BaseLook.BkColor)
            Fill(painting, from, to, painting.Colors.Back(color));
    };
    if (!shown.Layout) {
        EachSlice(painting, shown, [&](const TSlice& slice) {
            ground(slice.Run, slice.Column, slice.Column + int(slice.Text.size()));
        });
        return;
    }
    int column = 0;
    for (const TStyleRun& run : shown.Runs) {
        ground(run, column, column + int(run.Text.size()));
        column += int(run.Text.size());
    }
}

void TMemoText::Fill(const TRowPainting& painting, int from, int to, const QColor& color) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const TMemoRow& shown = geometry.Rows().Of(painting.Row);
    const auto fill = [&](int x, int end) {
        painting.Painter.fillRect(std::min(x, end), painting.Rect.y(), std::abs(end - x),
                                  painting.Rect.height(), color);
    };
    if (!shown.Mixed) {
        fill(geometry.XOf(painting.Row, from), geometry.XOf(painting.Row, to));
        return;
    }
    const QTextLine line = shown.Layout->lineAt(0);
    const int left = geometry.RowLeft();
    const int length = int(shown.Text.size());
    for (int column = from; column < std::min(to, length); ++column) {
        const int place = shown.ToLayout(column);
        fill(left + int(std::lround(line.cursorToX(place, QTextLine::Leading))),
             left + int(std::lround(line.cursorToX(place, QTextLine::Trailing))));
    }
    if (to > length) {
        const int end = left + int(std::lround(line.naturalTextWidth()));
        fill(end, end + (to - length) * geometry.CellWidth());
    }
}

void TMemoText::PaintText(const TRowPainting& painting) {
    const TMemoRow& shown = FWidget.Geometry().Rows().Of(painting.Row);
    if (shown.Layout)
        PaintLayout(painting, shown);
    else
        PaintGrid(painting, shown);
}

/// Slices are cut once more where the selection begins and ends.
void TMemoText::PaintGrid(const TRowPainting& painting, const TMemoRow& shown) {
    EachSlice(painting, shown, [&](const TSlice& slice) {
        const int end = slice.Column + int(slice.Text.size());
        const int cuts[] = {slice.Column, std::clamp(painting.From, slice.Column, end),
                            std::clamp(painting.To, slice.Column, end), end};
        for (int i = 0; i < 3; ++i) {
            const int length = cuts[i + 1] - cuts[i];
            if (length > 0)
                PaintSlice(painting, {slice.Run, cuts[i], slice.Text.mid(cuts[i] - slice.Column, length)});
        }
    });
}

void TMemoText::PaintSlice(const TRowPainting& painting, const TSlice& slice) {
    TAdvMemo& memo = FWidget.Memo();
    const TMemoGeometry& geometry = FWidget.Geometry();
    const TRunLook look = memo.LookOf(slice.Run.State);
    const bool drawsLine = (look.Style & (fsUnderline | fsStrikeOut)) != 0;
    if (!drawsLine && slice.Text.trimmed().isEmpty())
        return;
    const int x = geometry.XOf(painting.Row, slice.Column);
    const bool selected = slice.Column >= painting.From && slice.Column < painting.To;
    painting.Painter.setFont(geometry.Fonts().Of(look.Style));
    painting.Painter.setPen(selected && painting.Focused
                                ? painting.Colors.Tints.SelectedText
                                : painting.Colors.Text(look.TextColor, look.BkColor));
    if (slice.Run.CustomDraw && memo.GetStyler()) {
        const QRect cells(x, painting.Rect.y(), int(slice.Text.size()) * geometry.CellWidth(),
                          painting.Rect.height());
        memo.GetStyler()->DrawKeyword(&painting.Painter, slice.Text.toString(), cells);
        return;
    }
    painting.Painter.drawText(x, painting.Rect.y() + geometry.Ascent(), slice.Text.toString());
}

void TMemoText::PaintLayout(const TRowPainting& painting, const TMemoRow& shown) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    QList<QTextLayout::FormatRange> selections;
    const int to = std::min(painting.To, int(shown.Text.size()));
    if (painting.Focused && painting.From < to) {
        QTextCharFormat format;
        format.setForeground(painting.Colors.Tints.SelectedText);
        selections.append(
            {shown.ToLayout(painting.From), shown.ToLayout(to) - shown.ToLayout(painting.From), format});
    }
    const QTextLine line = shown.Layout->lineAt(0);
    // Fonts that stand in for others may be taller: the base line is the same as on other rows.
    shown.Layout->draw(&painting.Painter,
                       QPointF(geometry.RowLeft(), painting.Rect.y() + geometry.Ascent() - line.ascent()),
                       selections, QRectF(painting.Rect));
    PaintCustomDrawn(painting, shown);
}

/// The layout leaves their places empty.
void TMemoText::PaintCustomDrawn(const TRowPainting& painting, const TMemoRow& shown) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    int column = 0;
    for (const TStyleRun& run : shown.Runs) {
        const int end = column + int(run.Text.size());
        if (run.CustomDraw && FWidget.Memo().GetStyler()) {
            const int x = geometry.XOf(painting.Row, column);
            const QRect place(x, painting.Rect.y(), geometry.XOf(painting.Row, end) - x,
                              painting.Rect.height());
            FWidget.Memo().GetStyler()->DrawKeyword(&painting.Painter, run.Text, place);
        }
        column = end;
    }
}
