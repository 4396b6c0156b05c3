#pragma once
// A row as it shows: its runs, and pieces that lie on the grid of cells or are laid out by Qt. Only very long
// rows have several pieces, so that one odd character in a line of half a megabyte doesn't have all of it
// laid out and painted. Columns are the row's, places are a layout's, which counts preedit text.
#include "editor/style/ScanLine.h"
#include "editor/text/Characters.h"

#include <QTextLayout>

#include <memory>
#include <vector>

/// From left to right, in pixels.
struct TMemoSpan {
    int X = 0;
    int Width = 0;
};

struct TMemoPiece {
    int From = 0, Length = 0;            ///< columns
    TMemoSpan Span;                      ///< from the row's left edge, as all pixels here
    std::unique_ptr<QTextLayout> Layout; ///< null: every character takes one cell
    std::vector<TMemoSpan> Places;       ///< by place, where some of the text runs from right to left
    int PreeditAt = 0;                   ///< a place
    int PreeditLength = 0;

    [[nodiscard]] int End() const { return From + Length; }
    [[nodiscard]] int PlaceOf(int column) const;
    [[nodiscard]] int ColumnOf(int place) const;
    void FindPlaces();
    [[nodiscard]] int XOfPlace(int place) const;
};

struct TMemoRow {
    string Text;
    std::vector<TStyleRun> Runs;
    std::vector<TMemoPiece> Pieces; ///< at least one
    int Cell = 1;                   ///< a cell's width

    [[nodiscard]] const TMemoPiece& PieceAt(int column) const;
    [[nodiscard]] bool IsLaidOut() const;
    /// The left edge of a column; behind the text's end there are cells.
    [[nodiscard]] int XOf(int column) const;
    /// The column whose left edge is nearest, at most the text's length.
    [[nodiscard]] int ColumnAt(int x) const;
    /// The place of the character at a column, its accents included.
    [[nodiscard]] TMemoSpan SpanOf(int column) const;
    /// Where the characters between two columns are: more than one span where text runs from right to left.
    [[nodiscard]] std::vector<TMemoSpan> SpansOf(int from, int to) const;
    [[nodiscard]] int Width() const;
};
