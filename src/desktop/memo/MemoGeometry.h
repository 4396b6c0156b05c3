#pragma once
// Where things are in the editor's window: gutter, rows, and the way between columns and pixels.
//
// The control counts in cells of equal width, and so do scrolling and the places of lists and hints. Rows of
// plain characters lie on that grid. Rows with others (wide, combining, right to left, outside the basic
// plane) are laid out by Qt, and a column's place comes from there. No place is ever inside a surrogate pair.
#include "desktop/memo/MemoFonts.h"
#include "desktop/memo/MemoRows.h"

#include <QPoint>
#include <QRect>

class QWidget;

class TMemoGeometry {
public:
    static constexpr int FoldWidth = 16; ///< pixels, as all sizes here

    TMemoGeometry(TAdvCustomMemo& memo, QWidget& viewport);

    /// The font of the text; `zoom` in points comes on top. Tells the control its cells.
    void SetFont(const TMemoFont& font, int zoom);
    [[nodiscard]] const TMemoFonts& Fonts() const { return FFonts; }
    [[nodiscard]] const QFont& Font() const { return FFonts.Of(0); }
    [[nodiscard]] int CellWidth() const { return FFonts.Cell().W; }
    [[nodiscard]] int LineHeight() const { return FFonts.Cell().H; }
    [[nodiscard]] int Ascent() const { return FFonts.Ascent(); }
    /// Tells the control its size; called whenever that, the font or the gutter may have changed.
    void Update();

    int GutterMinimum = 40;
    bool ShowGutter = true;
    /// Wide enough for the last line's number; 0 while the gutter doesn't show.
    [[nodiscard]] int GutterWidth() const;
    /// Where column 0 would be if the text weren't scrolled sideways.
    [[nodiscard]] int TextLeft() const;
    /// Where column 0 is now.
    [[nodiscard]] int RowLeft() const;
    /// The number of the row's line, from 1; 0 for what goes on from the row above by word wrap.
    [[nodiscard]] int NumberOf(int row) const;

    /// The top of a row in the viewport; rows may lie outside it.
    [[nodiscard]] int YOf(int row) const;
    /// The nearest visible row of the text.
    [[nodiscard]] int RowAt(int y) const;
    /// The left edge of a column in the viewport.
    [[nodiscard]] int XOf(int row, int column) const;
    /// The column whose left edge is nearest, at most the row's length.
    [[nodiscard]] int ColumnAt(int row, int x) const;
    [[nodiscard]] QRect RowRect(int row) const;
    /// The cell of the caret, as wide as the character in it, or in the preedit text.
    [[nodiscard]] QRect CaretRect() const;
    /// Where the caret's bar stands: the cell's left edge but for text that runs from right to left.
    [[nodiscard]] int CaretX() const;
    /// The box that opens and closes the fold of a row; empty where none starts.
    [[nodiscard]] QRect FoldBox(int row) const;
    /// The row whose fold box, with the air around it, is there; -1 if none is.
    [[nodiscard]] int FoldMarkAt(QPoint at) const;

    /// The rows that show, from the top; the last may show in part. Without text there is the row to type in.
    [[nodiscard]] std::vector<int> RowsInView() const;
    /// The control scrolls by cells. Where rows are wider or narrower than their columns, this brings the
    /// caret into view and the bar's range to the rows that show.
    enum class ToCaret { No, Yes };
    void ScrollSideways(ToCaret toCaret);

    /// The rows as they show. Preedit text is set there.
    [[nodiscard]] TMemoRows& Rows() const { return *FRows; }

private:
    TAdvCustomMemo& FMemo;
    QWidget& FViewport;
    TMemoFonts FFonts;
    const std::unique_ptr<TMemoRows> FRows;
    struct TCounted {
        quint64 Runs = 0;
        int Row = 0, Number = 1;
    };
    mutable TCounted FCounted; // the last number that was asked for: rows are asked for from top to bottom
};
