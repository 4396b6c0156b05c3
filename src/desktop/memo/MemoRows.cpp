#include "desktop/memo/MemoRows.h"

#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace {

/// Where the piece that begins at `from` ends: some way on, where no character belongs to the one before.
int PieceEnd(QStringView text, int from) {
    constexpr int Length = 1000;
    int end = std::min(from + Length, int(text.size()));
    while (end < text.size() && (text[end].unicode() < 32 || text[end].unicode() > 126))
        ++end;
    return end;
}

bool RunsBothWays(QStringView text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        const QChar::Direction direction = c.direction();
        return direction == QChar::DirR || direction == QChar::DirAL || c == QChar(0xD802) ||
               c == QChar(0xD803) || c == QChar(0xD83A) ||
               c == QChar(0xD83B); // the scripts beyond the basic plane that do
    });
}

} // namespace

void TMemoRows::ForgetStale() {
    TStamp stamp{FMemo.RunsRevision(), Preedit, 0, 0};
    if (!Preedit.Text.isEmpty()) {
        stamp.X = FMemo.Caret().X();
        stamp.Y = FMemo.Caret().Y();
    }
    if (stamp == FStamp)
        return;
    FStamp = stamp;
    FRows.clear();
}

const TMemoRow& TMemoRows::Of(int row) {
    constexpr size_t Most = 400; // more than a screen holds
    ForgetStale();
    const auto known = FRows.find(row);
    if (known != FRows.end())
        return known->second;
    if (FRows.size() >= Most)
        FRows.clear();
    return FRows.emplace(row, Make(row)).first->second;
}

TMemoRow TMemoRows::Make(int row) const {
    TMemoRow made;
    made.Text = FMemo.LineText(row);
    made.Runs = FMemo.RunsOf(row);
    made.Cell = FFonts.Cell().W;
    const int length = int(made.Text.size());
    for (int from = 0; from < length || made.Pieces.empty(); from = made.Pieces.back().End()) {
        TMemoPiece piece;
        piece.From = from;
        piece.Length = PieceEnd(made.Text, from) - from;
        made.Pieces.push_back(std::move(piece));
    }
    if (HasPreedit(row))
        TakePreedit(made);
    TRunAt at;
    int x = 0;
    for (TMemoPiece& piece : made.Pieces) {
        piece.Span = {x, piece.Length * made.Cell};
        if (piece.PreeditLength > 0 || !FFonts.OnGrid(QStringView(made.Text).mid(piece.From, piece.Length)))
            LayOut(made, piece, at);
        x += piece.Span.Width;
    }
    return made;
}

void TMemoRows::TakePreedit(TMemoRow& row) const {
    const int column = WholeColumn(row.Text, std::min(FMemo.Caret().X(), int(row.Text.size())));
    TMemoPiece& piece = row.Pieces[size_t(&row.PieceAt(column) - row.Pieces.data())];
    piece.PreeditAt = column - piece.From;
    piece.PreeditLength = int(Preedit.Text.size());
}

QTextCharFormat TMemoRows::FormatOf(const TStyleRun& run) const {
    QTextCharFormat format;
    format.setFont(FFonts.Of(FMemo.LookOf(run.State).Style));
    if (Colour)
        Colour(run, format);
    return format;
}

/// Walks on from `at`, to the run that the next piece begins in.
TMemoRows::TFormats TMemoRows::FormatsOf(const TMemoRow& row, const TMemoPiece& piece, TRunAt& at) const {
    TFormats formats;
    for (; at.Run < row.Runs.size() && at.Column < piece.End(); ++at.Run) {
        const TStyleRun& run = row.Runs[at.Run];
        const int runEnd = at.Column + int(run.Text.size());
        const int from = WholeColumn(row.Text, std::max(at.Column, piece.From)) - piece.From;
        const int end = WholeColumn(row.Text, std::min(runEnd, piece.End())) - piece.From;
        if (from < end) {
            // A run in which the preedit text stands goes on behind it.
            const int middle = piece.PreeditLength > 0 ? std::clamp(piece.PreeditAt, from, end) : end;
            const QTextCharFormat format = FormatOf(run);
            formats.append({from, middle - from, format});
            formats.append({middle + piece.PreeditLength, end - middle, format});
        }
        if (runEnd > piece.End())
            break;
        at.Column = runEnd;
    }
    if (piece.PreeditLength == 0)
        return formats;
    QTextCharFormat underlined;
    underlined.setFont(FFonts.Of(fsUnderline));
    formats.append({piece.PreeditAt, piece.PreeditLength, underlined});
    for (QTextLayout::FormatRange range : Preedit.Formats) {
        range.start += piece.PreeditAt;
        formats.append(range);
    }
    return formats;
}

void TMemoRows::LayOut(const TMemoRow& row, TMemoPiece& piece, TRunAt& at) const {
    piece.Layout = std::make_unique<QTextLayout>(row.Text.mid(piece.From, piece.Length), FFonts.Of(0));
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    piece.Layout->setTextOption(option);
    if (piece.PreeditLength > 0)
        piece.Layout->setPreeditArea(piece.PreeditAt, Preedit.Text);
    piece.Layout->setFormats(FormatsOf(row, piece, at));
    piece.Layout->beginLayout();
    const QTextLine line = piece.Layout->createLine();
    piece.Layout->endLayout();
    piece.Span.Width = int(std::lround(line.naturalTextWidth()));
    if (RunsBothWays(piece.Layout->text()) || (piece.PreeditLength > 0 && RunsBothWays(Preedit.Text)))
        piece.FindPlaces();
}
