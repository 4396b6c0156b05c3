#pragma once
// Where things are in the editor's window: fonts, cells, gutter, and the way between columns and pixels.
//
// The control counts in cells of equal width, and so do scrolling and the places of lists and hints. Rows of
// plain characters lie on that grid. Rows with others (wide, combining, right to left, outside the basic
// plane) are laid out by Qt, and a column's place comes from there. No place is ever inside a surrogate pair.
#include "editor/Memo.h"

#include <QFont>
#include <QPoint>
#include <QRect>
#include <QTextLayout>

class QWidget;

/// Text that an input method has not committed yet. It shows at the caret and is no part of the text.
struct TPreedit {
    string Text;
    QList<QTextLayout::FormatRange> Formats;
    int Cursor = 0; ///< the caret's place in Text; -1 hides it
    bool operator==(const TPreedit&) const = default;
};

class TMemoGeometry {
public:
    static constexpr int FoldWidth = 16; ///< pixels, as all sizes here

    TMemoGeometry(TAdvCustomMemo& memo, QWidget& viewport);

    /// The font of the text; `zoom` in points comes on top. Tells the control its cells.
    void SetFont(const TMemoFont& font, int zoom);
    [[nodiscard]] const QFont& Font() const { return FFont; }
    [[nodiscard]] const QFont& FontOf(TFontStyles style) const {
        return FStyled[style & (fsBold | fsItalic)];
    }
    [[nodiscard]] int CellWidth() const { return FCell.W; }
    [[nodiscard]] int LineHeight() const { return FCell.H; }
    [[nodiscard]] int Ascent() const { return FAscent; }
    /// Tells the control its size; called whenever that, the font or the gutter may have changed.
    void Update();

    int GutterMinimum = 40;
    bool ShowGutter = true;
    /// Wide enough for the last line's number; 0 while the gutter doesn't show.
    [[nodiscard]] int GutterWidth() const;
    /// Where column 0 would be if the text weren't scrolled sideways.
    [[nodiscard]] int TextLeft() const;

    /// The top of a row in the viewport; rows may lie outside it.
    [[nodiscard]] int YOf(int row) const;
    /// The nearest visible row of the text.
    [[nodiscard]] int RowAt(int y) const;
    /// The left edge of a column in the viewport.
    [[nodiscard]] int XOf(int row, int column) const;
    /// The column whose left edge is nearest, at most the row's length.
    [[nodiscard]] int ColumnAt(int row, int x) const;
    [[nodiscard]] QRect RowRect(int row) const;
    /// The cell of the caret, as wide as the character in it.
    [[nodiscard]] QRect CaretRect() const;

    /// The box that opens and closes the fold of a row; empty where none starts.
    [[nodiscard]] QRect FoldBox(int row) const;
    /// The row whose fold box, with the air around it, is there; -1 if none is.
    [[nodiscard]] int FoldMarkAt(QPoint at) const;

    /// The rows that show, from the top; the last may show in part.
    [[nodiscard]] std::vector<int> RowsInView() const;

    /// Every character takes just one cell.
    [[nodiscard]] bool IsOnGrid(QStringView text) const;
    /// The row laid out in one line, with the preedit text where the caret is.
    [[nodiscard]] std::unique_ptr<QTextLayout>
    LayOut(int row, const QList<QTextLayout::FormatRange>& formats = {}) const;
    [[nodiscard]] bool HasPreedit(int row) const;

    TPreedit Preedit;

private:
    TAdvCustomMemo& FMemo;
    QWidget& FViewport;
    QFont FFont;
    QFont FStyled[4]; // by bold and italic
    TCellSize FCell;
    int FAscent = 0;
    bool FFixed = false;
};

/// The nearest column at or before `column` that isn't inside a surrogate pair.
[[nodiscard]] int WholeColumn(QStringView text, int column);
