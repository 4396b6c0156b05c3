#pragma once
// Paints the text of rows: on the grid only what shows of a run, else the row's layout.
#include "desktop/memo/paint/MemoColors.h"

#include <QRect>

class QPainter;
class TMemoWidget;
struct TMemoPiece;
struct TMemoRow;

/// A row while it is painted.
struct TRowPainting {
    QPainter& Painter;
    const TMemoColors& Colors;
    int Row;
    QRect Rect;           ///< of the row, from the text's left edge
    int From = 0, To = 0; ///< selected columns; To may lie behind the text's end
    bool Focused = false;
};

class TMemoText {
public:
    explicit TMemoText(TMemoWidget& widget) : FWidget(widget) {}

    /// The grounds of runs that have a colour of their own.
    void PaintGrounds(const TRowPainting& painting);
    /// A rectangle from column to column, or several where text runs from right to left.
    void Fill(const TRowPainting& painting, int from, int to, const QColor& color);
    void PaintText(const TRowPainting& painting);

private:
    struct TSlice;
    /// Calls `paint` with what shows of each run in a piece.
    template <class F> void EachSlice(const TMemoRow& shown, const TMemoPiece& piece, F paint);
    [[nodiscard]] bool Shows(const TMemoPiece& piece) const;
    void PaintGrid(const TRowPainting& painting, const TMemoRow& shown, const TMemoPiece& piece);
    void PaintSlice(const TRowPainting& painting, const TSlice& slice);
    void PaintLayout(const TRowPainting& painting, const TMemoRow& shown, const TMemoPiece& piece);
    void PaintCustomDrawn(const TRowPainting& painting, const TSlice& slice);

    TMemoWidget& FWidget;
};
