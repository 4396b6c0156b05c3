#include "desktop/memo/MemoRows.h"

#include <QTextOption>

#include <algorithm>
#include <cmath>

int WholeColumn(QStringView text, int column) {
    const bool inside = column > 0 && column < text.size() && text[column].isLowSurrogate() &&
                        text[column - 1].isHighSurrogate();
    return inside ? column - 1 : column;
}

int TMemoRow::ToLayout(int column) const {
    return column > PreeditAt ? column + PreeditLength : column;
}

int TMemoRow::ToColumn(int place) const {
    return place > PreeditAt ? std::max(PreeditAt, place - PreeditLength) : place;
}

int TMemoRow::XOf(int column, int cellWidth) const {
    const int whole = WholeColumn(Text, column);
    if (!Layout)
        return whole * cellWidth;
    return int(std::lround(Layout->lineAt(0).cursorToX(ToLayout(whole))));
}

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
    if (HasPreedit(row)) {
        made.PreeditAt = WholeColumn(made.Text, std::min(FMemo.Caret().X(), int(made.Text.size())));
        made.PreeditLength = int(Preedit.Text.size());
    }
    if (made.PreeditLength > 0 || !FFonts.OnGrid(made.Text))
        LayOut(made);
    return made;
}

QList<QTextLayout::FormatRange> TMemoRows::FormatsOf(const TMemoRow& row) const {
    QList<QTextLayout::FormatRange> formats;
    int column = 0;
    for (const TStyleRun& run : row.Runs) {
        QTextCharFormat format;
        format.setFont(FFonts.Of(FMemo.LookOf(run.State).Style));
        if (Colour)
            Colour(run, format);
        // A run in which the preedit text stands goes on behind it.
        const int end = column + int(run.Text.size());
        const int middle = std::clamp(row.PreeditAt, column, end);
        if (row.PreeditLength == 0) {
            formats.append({column, end - column, format});
        } else {
            formats.append({column, middle - column, format});
            formats.append({middle + row.PreeditLength, end - middle, format});
        }
        column = end;
    }
    if (row.PreeditLength == 0)
        return formats;
    QTextCharFormat underlined;
    underlined.setFont(FFonts.Of(fsUnderline));
    formats.append({row.PreeditAt, row.PreeditLength, underlined});
    for (QTextLayout::FormatRange range : Preedit.Formats) {
        range.start += row.PreeditAt;
        formats.append(range);
    }
    return formats;
}

void TMemoRows::LayOut(TMemoRow& row) const {
    row.Layout = std::make_unique<QTextLayout>(row.Text, FFonts.Of(0));
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    row.Layout->setTextOption(option);
    if (row.PreeditLength > 0)
        row.Layout->setPreeditArea(row.PreeditAt, Preedit.Text);
    row.Layout->setFormats(FormatsOf(row));
    row.Layout->beginLayout();
    row.Layout->createLine();
    row.Layout->endLayout();
    const auto runsLeft = [](QChar c) {
        const QChar::Direction direction = c.direction();
        return direction == QChar::DirR || direction == QChar::DirAL || c.isSurrogate();
    };
    const string shown = row.Text + (row.PreeditLength > 0 ? Preedit.Text : string());
    row.Mixed = std::any_of(shown.begin(), shown.end(), runsLeft);
}
