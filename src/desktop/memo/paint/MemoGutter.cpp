#include "desktop/memo/paint/MemoGutter.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/paint/MemoColors.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int NumberAir = 5; // between a number and the strip
constexpr int MarkWidth = 10;

} // namespace

void TMemoGutter::PaintGround(QPainter& painter, const QRect& rect, const TMemoTints& tints) {
    painter.fillRect(QRect(0, rect.y(), FWidget.Geometry().GutterWidth(), rect.height()), tints.Gutter);
}

void TMemoGutter::PaintRow(QPainter& painter, int row, const TMemoTints& tints) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const QRect rect(0, geometry.YOf(row), geometry.GutterWidth(), geometry.LineHeight());
    if (!rect.isEmpty()) {
        PaintMarks(painter, rect, row, tints);
        if (FWidget.ShowLineNumbers)
            PaintNumber(painter, rect, row, tints);
    }
    if (FWidget.Memo().Folding().Enabled())
        PaintFold(painter, QRect(rect.width(), rect.y(), TMemoGeometry::FoldWidth, rect.height()), row,
                  tints);
}

void TMemoGutter::PaintNumber(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints) {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int number = geometry.NumberOf(row);
    if (number == 0)
        return;
    const QString text = QString::number(number);
    const int width = int(text.size()) * geometry.CellWidth();
    const TLineProp* prop = FWidget.Memo().Lines().GetLineProp(row);
    const bool current = row == FWidget.Memo().Caret().Y();
    painter.setPen(prop && prop->BreakPoint ? tints.OnMark : current ? tints.CurrentNumber : tints.Number);
    painter.setFont(geometry.Font());
    painter.drawText(rect.right() + 1 - StripWidth - NumberAir - width, rect.y() + geometry.Ascent(), text);
}

void TMemoGutter::PaintMarks(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints) {
    const TLineProp* prop = FWidget.Memo().Lines().GetLineProp(row);
    if (!prop)
        return;
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing);
    if (prop->BreakPoint) { // the number stands on it
        painter.setBrush(tints.BreakPoint);
        painter.drawRoundedRect(rect.adjusted(MarkWidth + 1, 1, -StripWidth - 2, -1), 3, 3);
    }
    if (prop->Bookmark) {
        const QRect mark(1, rect.y() + 1, MarkWidth - 1, rect.height() - 2);
        painter.setBrush(tints.Bookmark);
        painter.drawRoundedRect(mark, 2, 2);
        QFont small = FWidget.Geometry().Font();
        small.setLetterSpacing(QFont::AbsoluteSpacing, 0);
        small.setPixelSize(std::min(MarkWidth, mark.height() - 1));
        painter.setFont(small);
        painter.setPen(tints.OnMark);
        painter.drawText(mark, Qt::AlignCenter, QString::number(prop->BookmarkIndex));
    }
    painter.setRenderHint(QPainter::Antialiasing, /*on=*/false);
    if (FWidget.ShowModified && prop->Modified != lmUnmodified)
        painter.fillRect(rect.right() + 1 - StripWidth, rect.y(), StripWidth, rect.height(),
                         prop->Modified == lmModified ? tints.Modified : tints.Saved);
}

bool TMemoGutter::InFold(int row) const {
    const TLineProp* prop = FWidget.Memo().Lines().GetLineProp(row);
    return prop != nullptr && prop->FHasParent;
}

void TMemoGutter::PaintFold(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints) {
    PaintFoldLines(painter, rect, row, tints);
    const QRect box = FWidget.Geometry().FoldBox(row);
    if (box.isEmpty())
        return;
    painter.fillRect(box, tints.Fold);
    painter.fillRect(box.adjusted(1, 1, -1, -1), tints.Base);
    const QPoint middle = box.center();
    const int arm = box.width() / 2 - 2;
    painter.fillRect(middle.x() - arm, middle.y(), 2 * arm + 1, 1, tints.CurrentNumber);
    if (!FWidget.Memo().Folding().IsExpanded(row))
        painter.fillRect(middle.x(), middle.y() - arm, 1, 2 * arm + 1, tints.CurrentNumber);
}

/// A line beside the rows of a fold, with a tick at its end.
void TMemoGutter::PaintFoldLines(QPainter& painter, const QRect& rect, int row, const TMemoTints& tints) {
    const TMemoFolding& folding = FWidget.Memo().Folding();
    const TLineProp* prop = FWidget.Memo().Lines().GetLineProp(row);
    const QPoint middle(rect.x() + rect.width() / 2, rect.y() + rect.height() / 2);
    if (InFold(row))
        painter.fillRect(middle.x(), rect.y(), 1, middle.y() - rect.y(), tints.Fold);
    const int next = folding.StepVisible(row, 1);
    if (next != row && InFold(next))
        painter.fillRect(middle.x(), middle.y(), 1, rect.bottom() + 1 - middle.y(), tints.Fold);
    if (prop && prop->FLastChildOfParents > 0)
        painter.fillRect(middle.x(), middle.y(), rect.width() / 2 - 2, 1, tints.Fold);
}
