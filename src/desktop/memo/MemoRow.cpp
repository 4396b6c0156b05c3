#include "desktop/memo/MemoRow.h"

#include <QGlyphRun>

#include <algorithm>
#include <cmath>

int TMemoPiece::PlaceOf(int column) const {
    const int place = column - From;
    return place > PreeditAt ? place + PreeditLength : place;
}

int TMemoPiece::ColumnOf(int place) const {
    return From + (place > PreeditAt ? std::max(PreeditAt, place - PreeditLength) : place);
}

int TMemoPiece::XOfPlace(int place) const {
    return Span.X + int(std::lround(Layout->lineAt(0).cursorToX(place)));
}

/// Where directions meet, places of the cursor don't tell where a character is; glyphs do. Each reaches to
/// the next one's left edge, and what combines with a character has that one's place.
void TMemoPiece::FindPlaces() {
    const QTextLine line = Layout->lineAt(0);
    const int count = line.textLength();
    const string text = Layout->text();
    std::vector<int> edges{Span.X + Span.Width};
    for (int place = 0; place < count; ++place) {
        qreal x = line.naturalTextWidth();
        for (const QGlyphRun& run : line.glyphRuns(place, 1)) {
            for (const QPointF& at : run.positions())
                x = std::min(x, at.x());
        }
        const int column = ColumnOf(place) - From;
        const bool combines = place > 0 && column < text.size() && text[column].isMark();
        Places.push_back(combines ? Places.back() : TMemoSpan{Span.X + int(std::lround(x)), 0});
        edges.push_back(Places.back().X);
    }
    std::sort(edges.begin(), edges.end());
    for (TMemoSpan& place : Places) {
        const auto next = std::upper_bound(edges.begin(), edges.end(), place.X);
        place.Width = next == edges.end() ? 0 : *next - place.X;
    }
}

const TMemoPiece& TMemoRow::PieceAt(int column) const {
    const auto next = std::upper_bound(Pieces.begin(), Pieces.end(), column,
                                       [](int at, const TMemoPiece& piece) { return at < piece.From; });
    return next == Pieces.begin() ? Pieces.front() : *(next - 1);
}

bool TMemoRow::IsLaidOut() const {
    return std::any_of(Pieces.begin(), Pieces.end(),
                       [](const TMemoPiece& piece) { return piece.Layout != nullptr; });
}

int TMemoRow::XOf(int column) const {
    const int within = WholeColumn(Text, std::min(column, int(Text.size())));
    const int beyond = std::max(0, column - int(Text.size())) * Cell;
    const TMemoPiece& piece = PieceAt(within);
    return beyond + (piece.Layout ? piece.XOfPlace(piece.PlaceOf(within))
                                  : piece.Span.X + (within - piece.From) * Cell);
}

int TMemoRow::ColumnAt(int x) const {
    const auto next = std::upper_bound(Pieces.begin() + 1, Pieces.end(), x,
                                       [](int at, const TMemoPiece& piece) { return at < piece.Span.X; });
    const TMemoPiece& piece = *(next - 1);
    const int from = x - piece.Span.X;
    if (piece.Layout)
        return WholeColumn(Text, piece.ColumnOf(piece.Layout->lineAt(0).xToCursor(from)));
    const int cells = int(std::floor(double(from) / Cell + 0.5));
    return std::clamp(piece.From + cells, piece.From, piece.End());
}

TMemoSpan TMemoRow::SpanOf(int column) const {
    const TMemoPiece& piece = PieceAt(column);
    if (!piece.Layout || column >= Text.size())
        return {XOf(column), Cell};
    const int place = piece.PlaceOf(WholeColumn(Text, column));
    if (!piece.Places.empty())
        return piece.Places[size_t(place)];
    const int x = piece.XOfPlace(place);
    const int end = piece.XOfPlace(piece.Layout->nextCursorPosition(place));
    return {std::min(x, end), std::max(1, std::abs(end - x))};
}

std::vector<TMemoSpan> TMemoRow::SpansOf(int from, int to) const {
    std::vector<TMemoSpan> spans;
    const auto add = [&spans](int x, int end) { spans.push_back({std::min(x, end), std::abs(end - x)}); };
    for (const TMemoPiece& piece : Pieces) {
        const int first = std::max(from, piece.From);
        const int last = std::min(to, piece.End());
        if (first >= last)
            continue;
        const int end = last == piece.End() ? piece.Span.X + piece.Span.Width : XOf(last);
        if (piece.Places.empty())
            add(XOf(first), end);
        for (int column = first; !piece.Places.empty() && column < last; ++column)
            spans.push_back(piece.Places[size_t(piece.PlaceOf(column))]);
    }
    const int length = int(Text.size());
    if (to > length)
        spans.push_back({Width() + std::max(0, from - length) * Cell, (to - std::max(from, length)) * Cell});
    return spans;
}

int TMemoRow::Width() const {
    return Pieces.back().Span.X + Pieces.back().Span.Width;
}
