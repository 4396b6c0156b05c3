#include "desktop/memo/MemoGeometry.h"

#include <QFontMetricsF>
#include <QTextOption>
#include <QWidget>

#include <algorithm>
#include <cmath>

int WholeColumn(QStringView text, int column) {
    const bool inside = column > 0 && column < text.size() && text[column].isLowSurrogate() &&
                        text[column - 1].isHighSurrogate();
    return inside ? column - 1 : column;
}

TMemoGeometry::TMemoGeometry(TAdvCustomMemo& memo, QWidget& viewport) : FMemo(memo), FViewport(viewport) {
    SetFont({}, 0);
}

void TMemoGeometry::SetFont(const TMemoFont& font, int zoom) {
    constexpr int SmallestSize = 4;
    FFont = QFont(font.Name);
    FFont.setStyleHint(QFont::Monospace);
    FFont.setFixedPitch(/*enable=*/true);
    FFont.setPointSize(std::max(SmallestSize, font.Size + zoom));
    FFont.setKerning(/*enable=*/false);
    // Cells are whole pixels: the advance of every character is brought to the next one.
    const qreal advance = QFontMetricsF(FFont).horizontalAdvance(u'0');
    FCell.W = std::max(1, int(std::ceil(advance - 0.01)));
    FFont.setLetterSpacing(QFont::AbsoluteSpacing, FCell.W - advance);
    const QFontMetricsF metrics(FFont);
    FFixed = std::abs(metrics.horizontalAdvance(u'i') - metrics.horizontalAdvance(u'W')) < 0.01;
    FCell.H = int(std::ceil(metrics.height())) + 1;
    FAscent = int(std::ceil(metrics.ascent()));
    for (unsigned style = 0; style < std::size(FStyled); ++style) {
        FStyled[style] = FFont;
        FStyled[style].setBold((style & fsBold) != 0);
        FStyled[style].setItalic((style & fsItalic) != 0);
    }
    Update();
}

void TMemoGeometry::Update() {
    FMemo.Scroll().Resize(FCell, std::max(0, FViewport.width() - TextLeft()), FViewport.height());
}

int TMemoGeometry::GutterWidth() const {
    if (!ShowGutter)
        return 0;
    constexpr int Margins = 14; // the strip of changed lines, and air around the number
    int digits = 1;
    for (int count = FMemo.Lines().Count(); count >= 10; count /= 10)
        ++digits;
    return std::max(GutterMinimum, digits * FCell.W + Margins);
}

int TMemoGeometry::TextLeft() const {
    return GutterWidth() + (FMemo.Folding().Enabled() ? FoldWidth : 0);
}

int TMemoGeometry::YOf(int row) const {
    const TMemoFolding& folding = FMemo.Folding();
    return (folding.VisibleBefore(row) - folding.VisibleBefore(FMemo.Scroll().TopLine())) * FCell.H;
}

int TMemoGeometry::RowAt(int y) const {
    return FMemo.Folding().StepVisible(FMemo.Scroll().TopLine(), int(std::floor(double(y) / FCell.H)));
}

bool TMemoGeometry::IsOnGrid(QStringView text) const {
    return FFixed && std::all_of(text.begin(), text.end(),
                                 [](QChar c) { return c.unicode() >= 32 && c.unicode() < 127; });
}

bool TMemoGeometry::HasPreedit(int row) const {
    return !Preedit.Text.isEmpty() && row == FMemo.Caret().Y();
}

std::unique_ptr<QTextLayout> TMemoGeometry::LayOut(int row,
                                                   const QList<QTextLayout::FormatRange>& formats) const {
    auto layout = std::make_unique<QTextLayout>(FMemo.LineText(row), FFont);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    layout->setTextOption(option);
    layout->setFormats(formats);
    if (HasPreedit(row)) {
        const int at = WholeColumn(layout->text(), std::min(FMemo.Caret().X(), FMemo.LineLength(row)));
        layout->setPreeditArea(at, Preedit.Text);
        QList<QTextLayout::FormatRange> all = formats;
        for (QTextLayout::FormatRange range : Preedit.Formats) {
            range.start += at;
            all.append(range);
        }
        layout->setFormats(all);
    }
    layout->beginLayout();
    layout->createLine();
    layout->endLayout();
    return layout;
}

int TMemoGeometry::XOf(int row, int column) const {
    const string text = FMemo.LineText(row);
    const int left = TextLeft() - FMemo.Scroll().LeftCol() * FCell.W;
    const int within = WholeColumn(text, std::min(column, int(text.size())));
    const int beyond = (column - std::min(column, int(text.size()))) * FCell.W;
    if (!HasPreedit(row) && IsOnGrid(text))
        return left + within * FCell.W + beyond;
    const auto layout = LayOut(row);
    // Columns behind the caret come after what is being composed there.
    const bool behind = HasPreedit(row) && within > layout->preeditAreaPosition();
    const int place = within + (behind ? int(Preedit.Text.size()) : 0);
    return left + int(std::lround(layout->lineAt(0).cursorToX(place))) + beyond;
}

int TMemoGeometry::ColumnAt(int row, int x) const {
    const string text = FMemo.LineText(row);
    const int from = x - TextLeft() + FMemo.Scroll().LeftCol() * FCell.W;
    if (!HasPreedit(row) && IsOnGrid(text))
        return std::clamp(int(std::floor(double(from) / FCell.W + 0.5)), 0, int(text.size()));
    const auto layout = LayOut(row);
    const int place = layout->lineAt(0).xToCursor(from);
    const int composed = HasPreedit(row) ? int(Preedit.Text.size()) : 0;
    const int at = HasPreedit(row) ? layout->preeditAreaPosition() : place;
    return WholeColumn(text, place > at ? std::max(at, place - composed) : place);
}

QRect TMemoGeometry::RowRect(int row) const {
    return {0, YOf(row), FViewport.width(), FCell.H};
}

QRect TMemoGeometry::CaretRect() const {
    const int row = FMemo.Caret().Y();
    const int column = FMemo.Caret().X();
    if (HasPreedit(row)) {
        const auto layout = LayOut(row);
        const int at = WholeColumn(layout->text(), std::min(column, int(layout->text().size())));
        // Positions of a layout count its preedit text; a QTextLine wants the place behind the text before.
        const qreal x = layout->lineAt(0).cursorToX(at + std::max(0, Preedit.Cursor));
        return {TextLeft() - FMemo.Scroll().LeftCol() * FCell.W + int(std::lround(x)), YOf(row), FCell.W,
                FCell.H};
    }
    const string text = FMemo.LineText(row);
    const int x = XOf(row, column);
    const bool pair = column + 1 < text.size() && text[column].isHighSurrogate();
    const int width = column < text.size() ? XOf(row, column + (pair ? 2 : 1)) - x : FCell.W;
    return {x, YOf(row), width > 0 ? width : FCell.W, FCell.H};
}

std::vector<int> TMemoGeometry::RowsInView() const {
    std::vector<int> rows;
    const int count = FMemo.Lines().Count();
    const int fitting = (FViewport.height() + FCell.H - 1) / FCell.H;
    for (int row = FMemo.Scroll().TopLine(); row < count && int(rows.size()) < fitting;) {
        rows.push_back(row);
        const int next = FMemo.Folding().StepVisible(row, 1);
        if (next == row)
            break;
        row = next;
    }
    return rows;
}
