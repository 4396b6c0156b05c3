#pragma once
// Paints the rows of the editor's window: runs, selection, caret and what lies behind and beside them.
#include "desktop/memo/paint/MemoColors.h"
#include "desktop/memo/paint/MemoGutter.h"
#include "desktop/memo/paint/MemoText.h"
#include "editor/place/BracketMatch.h"

class TMemoPainter {
public:
    explicit TMemoPainter(TMemoWidget& widget);

    /// Paints what of the viewport lies in `rect`.
    void Paint(const QRect& rect);
    /// The colours at present, for windows that show text of the control beside it.
    [[nodiscard]] const TMemoColors& Colors();

private:
    void PaintRow(QPainter& painter, int row);
    void PaintRowGround(const TRowPainting& painting);
    void PaintRightMargin(const TRowPainting& painting);
    void PaintMarked(const TRowPainting& painting);
    void PaintBrackets(const TRowPainting& painting);
    void PaintErrors(const TRowPainting& painting);
    void PaintFoldedText(const TRowPainting& painting);
    void PaintCaret(QPainter& painter);
    void TakeSelection(TRowPainting& painting);
    [[nodiscard]] const TBracketMatch& Brackets();

    struct TBracketsOf {
        quint64 Runs = 0;
        int X = -1, Y = -1;
        bool operator==(const TBracketsOf&) const = default;
    };
    TMemoWidget& FWidget;
    TMemoColors FColors;
    TMemoGutter FGutter;
    TMemoText FText;
    TBracketMatch FBrackets;
    TBracketsOf FBracketsOf; // the caret and the text that FBrackets is for
};
