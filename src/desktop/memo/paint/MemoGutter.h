#pragma once
// What stands beside the text: line numbers, marks of bookmarks and breakpoints, a strip for changed and
// saved lines, and the column of folds.
class QPainter;
class QRect;
class TMemoWidget;
struct TMemoTints;

class TMemoGutter {
public:
    explicit TMemoGutter(TMemoWidget& widget) : FWidget(widget) {}

    /// Paints the ground from top to bottom, also where no rows are.
    void PaintGround(QPainter& painter, const QRect& rect, const TMemoTints& tints);
    void PaintRow(QPainter& painter, int row, const TMemoTints& tints);
    static constexpr int StripWidth = 3; ///< pixels, at the gutter's right edge

private:
    void PaintNumber(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints);
    void PaintMarks(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints);
    void PaintFold(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints);
    void PaintFoldLines(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints);
    [[nodiscard]] bool InFold(int row) const;

    TMemoWidget& FWidget;
};
