// What the editor's window paints, read back from its pixels.
#include "MemoFixture.h"
#include "desktop/memo/paint/MemoColors.h"
#include "desktop/memo/paint/MemoGutter.h"

#include <QImage>
#include <QPainter>
#include <QTextLayout>

namespace {

QPalette DarkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::Text, QColor(220, 220, 220));
    return palette;
}

class MemoPaintTest : public MemoWindowTest {
protected:
    /// A window with these lines, the caret out of the way in an empty row behind them.
    void Given(const QString& text) {
        Memo().SetText(text + "\n\n");
        At(0, Memo().Lines().Count() - 1);
    }
    void At(int x, int y) {
        Memo().Caret().MoveTo(x, y);
        Memo().ClearSelection();
        QApplication::processEvents();
    }
    void Select(const TSelectionRange& range, bool block = false) {
        Memo().Settings.FSelectionMode = block ? smBlock : smText;
        Memo().Selection().Take(range, block);
    }
    [[nodiscard]] TMemoGeometry& Geometry() { return FWidget->Geometry(); }
    [[nodiscard]] QImage Grabbed() {
        return FWidget->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    [[nodiscard]] QImage Painted() {
        QApplication::processEvents();
        return Grabbed();
    }
    /// Places are those of the widget, whatever the screen's scale.
    [[nodiscard]] static QImage Part(const QImage& image, const QRect& rect) {
        const int scale = int(image.devicePixelRatio());
        return image.copy(QRect(rect.topLeft() * scale, rect.size() * scale));
    }
    [[nodiscard]] static QColor Pixel(const QImage& image, int x, int y) {
        return Part(image, {x, y, 1, 1}).pixelColor(0, 0);
    }
    [[nodiscard]] QImage Cell(const QImage& image, int row, int column) {
        return Part(image, {Geometry().XOf(row, column), Geometry().YOf(row), Geometry().CellWidth(),
                            Geometry().LineHeight()});
    }
    /// The ground of a cell, where no character reaches.
    [[nodiscard]] QColor Ground(const QImage& image, int row, int column) {
        return Pixel(image, Geometry().XOf(row, column) + 1, Geometry().YOf(row));
    }
    /// The columns of a row whose ground has a colour.
    [[nodiscard]] std::string GroundsOf(const QImage& image, int row, const QColor& color) {
        std::string columns;
        for (int column = 0; column < 12; ++column)
            columns += Ground(image, row, column) == color ? '#' : '.';
        return columns;
    }
};

TEST_F(MemoPaintTest, EachCellOfARunIsPaintedAlike) {
    for (const int size : {7, 8, 11, 13, 20}) {
        FWidget->SetFont({.Size = size});
        FWidget->resize(100 * Geometry().CellWidth() + 80, 200);
        FWidget->ShowRightMargin = false;
        Given(QString("H").repeated(90) + "\n" + QString("8").repeated(90)); // plain, and bold as a number
        Key(Qt::Key_Home, Qt::ControlModifier);
        At(0, 2);
        const QImage image = Painted();
        for (const int row : {0, 1}) {
            for (int column = 2; column < 90; ++column)
                EXPECT_EQ(Cell(image, row, column), Cell(image, row, 1))
                    << size << " " << row << " " << column;
        }
    }
}

TEST_F(MemoPaintTest, CaretIsPaintedWhereItIs) {
    const QString text = QString::fromUtf8("plain 12 /* italic */\n日本語 wide\na😀b c\nש לום\nö é");
    Given(text);
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column <= Memo().LineLength(row); ++column) {
            At(column, row);
            FWidget->clearFocus();
            const QImage without = Painted();
            FWidget->setFocus();
            const QImage with = Painted();
            const int x = Geometry().CaretX();
            for (const int dx : {-1, 0}) // the bar's two pixels
                EXPECT_EQ(Pixel(with, x + dx, Geometry().YOf(row) + 1), QColor(Qt::black)) << row << column;
            const QRect left(0, Geometry().YOf(row), x - 1, Geometry().LineHeight());
            EXPECT_EQ(Part(with, left), Part(without, left)) << row << " " << column;
            if (row != 3) { // where directions meet, two columns share a place
                EXPECT_EQ(Geometry().ColumnAt(row, x), WholeColumn(Memo().LineText(row), column));
            }
        }
    }
}

TEST_F(MemoPaintTest, SelectionTakesItsColumnsAndLineBreaks) {
    Given("abcdef\n\nabc\nlast row");
    const QColor highlight = FWidget->palette().color(QPalette::Active, QPalette::Highlight);
    Select({4, 0, 2, 3});
    QImage image = Painted();
    EXPECT_EQ(GroundsOf(image, 0, highlight), "....###.....");
    EXPECT_EQ(GroundsOf(image, 1, highlight), "#...........");
    EXPECT_EQ(GroundsOf(image, 2, highlight), "####........");
    EXPECT_EQ(GroundsOf(image, 3, highlight), "##..........");
    Select({2, 0, 5, 2}, /*block=*/true);
    image = Painted();
    for (const int row : {0, 1, 2})
        EXPECT_EQ(GroundsOf(image, row, highlight), "..###.......") << row;
    FWidget->clearFocus();
    EXPECT_EQ(GroundsOf(Painted(), 0, highlight), "............");
    EXPECT_EQ(GroundsOf(Painted(), 0, TMemoColors(FWidget->palette()).Tints.SelectionAway), "..###.......");
}

TEST_F(MemoPaintTest, SelectionCoversTextOfBothDirections) {
    Given(QString::fromUtf8("a \"שלום עולם\" + \"مرحبا\"; b"));
    const TMemoRow& shown = Geometry().Rows().Of(0);
    const int length = Memo().LineLength(0);
    std::vector<bool> covered(size_t(shown.Width()));
    for (const TMemoSpan& span : shown.SpansOf(0, length)) {
        for (int x = span.X; x < span.X + span.Width; ++x)
            covered.at(size_t(x)) = true;
    }
    EXPECT_EQ(std::count(covered.begin(), covered.end(), false), 0);
    // The first Hebrew letter is the rightmost of the run.
    EXPECT_GT(shown.SpansOf(3, 4)[0].X, shown.SpansOf(4, 5)[0].X);
    EXPECT_EQ(shown.SpansOf(3, 4)[0].X, shown.SpansOf(4, 5)[0].X + shown.SpansOf(4, 5)[0].Width);
}

TEST_F(MemoPaintTest, PairsOfSurrogatesStayWhole) {
    const QString text = QString::fromUtf8("a😀b"); // columns 1 and 2 are the pair
    Given(text);
    Select({0, 0, 2, 0});
    const QImage half = Grabbed(); // before the window has brought it out of the pair
    Select({0, 0, 3, 0});
    EXPECT_EQ(half, Grabbed());
    Select({0, 1, 0, 1});
    const QRect rect(Geometry().XOf(0, 0), 0, 200, Geometry().LineHeight());
    QImage whole = Part(half, rect);
    whole.setDevicePixelRatio(half.devicePixelRatio());
    whole.fill(Qt::white);
    QTextLayout layout(text, Geometry().Font());
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    QPainter painter(&whole);
    layout.draw(&painter, QPointF(0, Geometry().Ascent() - line.ascent()));
    painter.end();
    At(0, 2);
    EXPECT_EQ(Part(Painted(), rect), Part(whole, {QPoint(), rect.size()}));
}

TEST_F(MemoPaintTest, WavesStandUnderErrors) {
    Given("var a = b c;\n\nend");
    Memo().ErrorMarks().Set(0, 8, 3);
    Memo().ErrorMarks().Set(1, 0, 1);
    const QImage image = Painted();
    const auto red = [&](int row, int column) {
        const QImage cell = Cell(image, row, column);
        for (int x = 0; x < cell.width(); ++x) {
            for (int y = cell.height() - 4; y < cell.height(); ++y) {
                const QColor color = cell.pixelColor(x, y);
                if (color.red() > color.green() + 80 && color.red() > color.blue() + 80)
                    return true;
            }
        }
        return false;
    };
    for (int column = 0; column < 14; ++column)
        EXPECT_EQ(red(0, column), column >= 8 && column < 11) << column;
    EXPECT_TRUE(red(1, 0));
    EXPECT_FALSE(red(2, 0));
}

TEST_F(MemoPaintTest, GutterMarksChangedAndSavedLines) {
    Given("a\nb\nc");
    Memo().SetModifiedState(0);
    Memo().SetModifiedStateInt(1, lmSaved);
    const TMemoTints tints = TMemoColors(FWidget->palette()).Tints;
    for (const auto& [row, color] : {std::pair(0, tints.Modified), {1, tints.Saved}, {2, tints.Gutter}})
        EXPECT_EQ(Pixel(Painted(), Geometry().GutterWidth() - 1, Geometry().YOf(row) + 3), color) << row;
}

TEST_F(MemoPaintTest, BracketsAtTheCaretStandOut) {
    Given("f(a,\n  b);");
    At(2, 0);
    const QColor tint = TMemoColors(FWidget->palette()).Tints.Bracket;
    EXPECT_EQ(GroundsOf(Painted(), 0, tint), ".#..........");
    EXPECT_EQ(GroundsOf(Painted(), 1, tint), "...#........");
    Type("("); // another partner now
    EXPECT_EQ(GroundsOf(Painted(), 1, tint), "...#........");
    EXPECT_EQ(GroundsOf(Painted(), 0, tint), "..#.........");
}

TEST_F(MemoPaintTest, WrappedRowsHaveNoNumbers) {
    Memo().Settings.FRightMargin = 10;
    Memo().SetText("a\nbb bb bb bb bb bb\nc\n");
    Memo().SetWordWrap(wwRightMargin);
    std::vector<int> numbers;
    for (int row = 0; row < Memo().Lines().Count(); ++row)
        numbers.push_back(Geometry().NumberOf(row));
    EXPECT_EQ(numbers, (std::vector{1, 2, 0, 3})) << Text();
    EXPECT_EQ(Geometry().NumberOf(1), 2); // asked for again
}

TEST_F(MemoPaintTest, WideRowsScrollWithTheirCaret) {
    FWidget->resize(400, 200);
    Given(QString(60, QChar(0x65E5)));
    At(0, 0);
    for (int i = 0; i < 60; ++i) {
        Key(Qt::Key_Right);
        QApplication::processEvents();
        const QRect caret = Geometry().CaretRect();
        ASSERT_LE(Geometry().TextLeft(), caret.left()) << i;
        ASSERT_LT(caret.left(), FWidget->viewport()->width()) << i;
    }
}

/// Every colour of the styler, and those of the completion list.
TEST_F(MemoPaintTest, TextStandsOutOnDarkGround) {
    const TMemoColors colors(DarkPalette());
    const TAdvJSMemoStyler styler;
    std::vector<std::pair<TColor, TColor>> looks{
        {styler.FCommentStyle.TextColor, styler.FCommentStyle.BkColor},
        {styler.FNumberStyle.TextColor, styler.FNumberStyle.BkColor},
        {styler.FHighlightStyle.TextColor, styler.FHighlightStyle.BkColor}};
    for (int i = 0; i < styler.FAllStyles.Count(); ++i)
        looks.emplace_back(styler.FAllStyles[i].Font().Color, styler.FAllStyles[i].BGColor());
    for (const TColor color : {0xFF0000, 0x808000, 0x800000, 0x0000FF, 0xFFFFFF, 0x00FFFF, 0x000000})
        looks.insert(looks.end(),
                     {{color, clWhite}, {color, 0xFF000005}, {color, 0x80FFFF}, {color, 0x0000FF}});
    for (const auto& [text, back] : looks) {
        EXPECT_GE(Contrast(colors.Text(text, back), colors.Back(back)), 4.5)
            << std::hex << text << " " << back;
        const float hue = TMemoColors(QPalette()).Text(text, back).hslHueF();
        if (hue >= 0 && text != clBlack) {
            EXPECT_NEAR(colors.Text(text, back).hslHueF(), hue, 0.02) << std::hex << text;
        }
    }
    const QColor comment = colors.Text(styler.FCommentStyle.TextColor);
    EXPECT_LT(Contrast(comment, colors.Tints.Base), Contrast(colors.Text(clBlack), colors.Tints.Base) / 2);
}

} // namespace
