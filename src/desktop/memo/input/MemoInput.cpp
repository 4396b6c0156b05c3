#include "desktop/memo/input/MemoInput.h"

#include "desktop/memo/MemoWidget.h"
#include "editor/edit/SurrogatePairs.h"
#include "editor/text/Characters.h"

#include <QGuiApplication>
#include <QInputMethodEvent>

#include <algorithm>

namespace {

QTextCharFormat ComposingFormat() {
    QTextCharFormat format;
    format.setFontUnderline(/*underline=*/true);
    return format;
}

TPreedit PreeditOf(const QInputMethodEvent& event) {
    TPreedit preedit{WithoutHalfPairs(event.preeditString()), {}, 0};
    const int length = int(preedit.Text.size());
    preedit.Cursor = length;
    for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
        const int start = std::clamp(attribute.start, 0, length);
        if (attribute.type == QInputMethodEvent::Cursor)
            preedit.Cursor = attribute.length != 0 ? WholeColumn(preedit.Text, start) : -1;
        else if (attribute.type == QInputMethodEvent::TextFormat && attribute.length > 0)
            preedit.Formats.append({start, std::min(attribute.length, length - start),
                                    attribute.value.value<QTextFormat>().toCharFormat()});
    }
    if (preedit.Formats.isEmpty() && length > 0)
        preedit.Formats.append({0, length, ComposingFormat()});
    return preedit;
}

} // namespace

TMemoInput::TMemoInput(TMemoWidget& widget) : FWidget(widget) {
    widget.setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText | Qt::ImhMultiLine);
}

void TMemoInput::Take(QInputMethodEvent& event) {
    if (FWidget.Memo().Settings.FReadOnly || !FWidget.Memo().EditingAllowed()) {
        Cancel();
        return event.ignore();
    }
    FWidget.Geometry().Rows().Preedit = {};
    Commit(event);
    for (const QInputMethodEvent::Attribute& attribute : event.attributes())
        if (attribute.type == QInputMethodEvent::Selection)
            Select(attribute.start, attribute.length);
    Compose(event);
    event.accept();
}

void TMemoInput::Commit(const QInputMethodEvent& event) {
    TAdvMemo& memo = FWidget.Memo();
    if (event.replacementLength() > 0) {
        FWidget.Pairs().WidenSelection();
        memo.Blocks().DeleteSelection();
        const int row = memo.Caret().Y();
        const string line = memo.LineText(row);
        const int from = std::clamp(memo.Caret().X() + event.replacementStart(), 0, int(line.size()));
        const int to = std::clamp(from + event.replacementLength(), from, int(line.size()));
        const int end = WholeColumn(line, to) == to ? to : to + 1;
        FWidget.Pairs().Replace({WholeColumn(line, from), row, end, row},
                                WithoutHalfPairs(event.commitString()));
    } else if (!event.commitString().isEmpty()) {
        FWidget.Pairs().Type(event.commitString());
    }
}

void TMemoInput::Compose(const QInputMethodEvent& event) {
    FWidget.Geometry().Rows().Preedit = PreeditOf(event);
    if (!event.preeditString().isEmpty()) {
        FWidget.Memo().Scroll().ScrollCaretIntoView();
        FWidget.Geometry().ScrollSideways(TMemoGeometry::ToCaret::Yes);
    }
    FWidget.CaretPlaceChanged();
}

/// Columns of the caret's line, as surrounding text is told.
void TMemoInput::Select(int start, int length) {
    TAdvMemo& memo = FWidget.Memo();
    const int row = memo.Caret().Y();
    const int size = memo.LineLength(row);
    const int from = std::clamp(start, 0, size);
    const int to = std::clamp(start + length, 0, size);
    memo.Caret().MoveTo(to, row);
    memo.Selection().Take({from, row, to, row}, /*block=*/false);
    FWidget.Pairs().Snap();
}

void TMemoInput::Cancel() {
    if (FWidget.Geometry().Rows().Preedit.Text.isEmpty())
        return;
    FWidget.Geometry().Rows().Preedit = {};
    QGuiApplication::inputMethod()->reset();
    FWidget.CaretPlaceChanged();
}

QVariant TMemoInput::Answer(int query) const {
    switch (query) {
    case Qt::ImEnabled:
        return !FWidget.Memo().Settings.FReadOnly;
    case Qt::ImReadOnly:
        return FWidget.Memo().Settings.FReadOnly;
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
        return FWidget.Geometry().CaretRect().translated(FWidget.viewport()->pos());
    case Qt::ImFont:
        return FWidget.Geometry().Font();
    default:
        return Surroundings(query);
    }
}

QVariant TMemoInput::Surroundings(int query) const {
    const TAdvMemo& memo = FWidget.Memo();
    const string line = memo.LineText(memo.Caret().Y());
    const int x = std::min(memo.Caret().X(), int(line.size()));
    const TSelectionRange range = memo.Selection().Range();
    switch (query) {
    case Qt::ImSurroundingText:
        return line;
    case Qt::ImTextBeforeCursor:
        return line.left(x);
    case Qt::ImTextAfterCursor:
        return line.mid(x);
    case Qt::ImCursorPosition:
        return x;
    case Qt::ImAnchorPosition: // the nearest place of this line
        if (memo.Selection().IsEmpty())
            return x;
        return range.StartY < memo.Caret().Y()   ? 0
               : range.StartY > memo.Caret().Y() ? int(line.size())
                                                 : std::min(range.StartX, int(line.size()));
    case Qt::ImCurrentSelection:
        return memo.SelText().replace(u'\r', u'\n');
    default:
        return {};
    }
}
