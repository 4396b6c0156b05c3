#include "desktop/memo/input/MemoAccessible.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "editor/edit/SurrogatePairs.h"
#include "editor/text/Characters.h"

#include <QAccessibleWidget>

#include <algorithm>
#include <tuple>

namespace {

class TMemoAccessible : public QAccessibleWidget,
                        public QAccessibleTextInterface,
                        public QAccessibleEditableTextInterface {
public:
    explicit TMemoAccessible(TMemoWidget& widget)
        : QAccessibleWidget(&widget, QAccessible::EditableText), FWidget(widget) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        if (type == QAccessible::EditableTextInterface)
            return static_cast<QAccessibleEditableTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiLine = state.selectableText = true;
        state.readOnly = FWidget.Memo().Settings.FReadOnly;
        state.editable = !state.readOnly;
        return state;
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return AccessibleText(FWidget);
        const QString text = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && text.isEmpty() ? QString("Editor") : text;
    }
    void setText(QAccessible::Text kind, const QString& text) override {
        if (kind == QAccessible::Value)
            replaceText(0, characterCount(), text);
        else
            QAccessibleWidget::setText(kind, text);
    }

    void selection(int index, int* start, int* end) const override {
        const TSelectionRange range = Memo().Selection().Ordered();
        *start = index == 0 ? Offset(range.StartX, range.StartY) : 0;
        *end = index == 0 ? Offset(range.EndX, range.EndY) : 0;
    }
    [[nodiscard]] int selectionCount() const override { return Memo().Selection().IsEmpty() ? 0 : 1; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int /*index*/) override { Memo().ClearSelection(); }
    void setSelection(int index, int start, int end) override {
        if (index == 0)
            Select(start, end);
    }
    [[nodiscard]] int cursorPosition() const override {
        return Offset(Memo().Caret().X(), Memo().Caret().Y());
    }
    void setCursorPosition(int position) override { Select(position, position); }

    [[nodiscard]] QString text(int start, int end) const override;
    [[nodiscard]] int characterCount() const override {
        const int last = std::max(0, Memo().Lines().Count() - 1);
        return Offset(Memo().LineLength(last), last);
    }
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int /*offset*/, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

    void deleteText(int start, int end) override { replaceText(start, end, {}); }
    void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }
    void replaceText(int start, int end, const QString& text) override;

private:
    struct TPlace {
        int X = 0;
        int Y = 0;
    };
    [[nodiscard]] TAdvMemo& Memo() const { return FWidget.Memo(); }
    [[nodiscard]] int Offset(int x, int y) const { return Memo().Words().TextFromPos(x, y); }
    [[nodiscard]] TPlace PlaceOf(int offset) const {
        TPlace place;
        Memo().Words().PosFromText(offset, place.X, place.Y);
        return place;
    }
    void Select(int start, int end);

    TMemoWidget& FWidget;
};

QString TMemoAccessible::text(int start, int end) const {
    const TPlace from = PlaceOf(start);
    const TPlace to = PlaceOf(std::min(end, characterCount()));
    QString text;
    for (int row = from.Y; row <= to.Y; ++row) {
        if (row > from.Y && !Memo().IsContinuation(row))
            text += u'\n';
        const int first = row == from.Y ? from.X : 0;
        const int behind = row == to.Y ? to.X : Memo().LineLength(row);
        text += Memo().LineText(row).mid(first, behind - first);
    }
    return text;
}

QRect TMemoAccessible::characterRect(int offset) const {
    const TPlace place = PlaceOf(offset);
    const TMemoGeometry& geometry = FWidget.Geometry();
    const int left = geometry.XOf(place.Y, place.X);
    const int right = geometry.XOf(place.Y, CharacterEnd(Memo().LineText(place.Y), place.X));
    const QRect rect(left, geometry.YOf(place.Y), right > left ? right - left : geometry.CellWidth(),
                     geometry.LineHeight());
    return rect.translated(FWidget.viewport()->mapToGlobal(QPoint()));
}

int TMemoAccessible::offsetAtPoint(const QPoint& point) const {
    const QPoint pos = FWidget.viewport()->mapFromGlobal(point);
    const TMemoGeometry& geometry = FWidget.Geometry();
    if (!FWidget.viewport()->rect().contains(pos) || pos.x() < geometry.TextLeft())
        return -1;
    const int row = geometry.RowAt(pos.y());
    const int column = geometry.ColumnAt(row, pos.x());
    // The character under the point begins at or before it.
    const bool left = column > 0 && geometry.XOf(row, column) > pos.x();
    return Offset(left ? WholeColumn(Memo().LineText(row), column - 1) : column, row);
}

void TMemoAccessible::scrollToSubstring(int start, int end) {
    TMemoScroll& scroll = Memo().Scroll();
    for (const int offset : {end, start}) {
        const TPlace place = PlaceOf(offset);
        if (place.Y < scroll.TopLine())
            scroll.SetTopLine(place.Y);
        else if (place.Y > scroll.LastRowInView())
            scroll.SetTopLine(Memo().Folding().StepVisible(place.Y, 1 - scroll.RowsInView()));
        if (place.X < scroll.LeftCol() || place.X >= scroll.LeftCol() + scroll.ColumnsInView())
            scroll.SetLeftCol(std::max(0, place.X - scroll.ColumnsInView() / 2));
    }
}

void TMemoAccessible::Select(int start, int end) {
    const TPlace from = PlaceOf(start);
    const TPlace to = PlaceOf(end);
    Memo().Activate();
    Memo().Caret().MoveTo(to.X, to.Y);
    if (start == end)
        Memo().ClearSelection();
    else
        Memo().Selection().Take({from.X, from.Y, to.X, to.Y}, /*block=*/false);
    FWidget.Pairs().Snap();
}

void TMemoAccessible::replaceText(int start, int end, const QString& text) {
    if (Memo().Settings.FReadOnly || !Memo().EditingAllowed())
        return;
    Select(start, end);
    FWidget.Pairs().WidenSelection();
    const bool replaces = !Memo().Selection().IsEmpty();
    Memo().Blocks().DeleteSelection();
    Memo().Blocks().InsertBuffer(PlainText(text), replaces ? Linked::Yes : Linked::No);
}

QAccessibleInterface* MakeAccessible(const QString& /*className*/, QObject* object) {
    auto* widget = qobject_cast<TMemoWidget*>(object);
    return widget ? new TMemoAccessible(*widget) : nullptr;
}

} // namespace

string AccessibleText(TMemoWidget& widget) {
    const TAdvMemo& memo = widget.Memo();
    string text;
    for (int row = 0; row < memo.Lines().Count(); ++row) {
        if (row > 0 && !memo.IsContinuation(row))
            text += u'\n';
        text += memo.Lines()[row];
    }
    return text;
}

TMemoAccessibility::TMemoAccessibility(TMemoWidget& widget)
    : Listens(&QAccessible::isActive),
      Send([](QAccessibleEvent& event) { QAccessible::updateAccessibility(&event); }), FWidget(widget) {
    QAccessible::installFactory(&MakeAccessible); // once is enough, and it is kept once
}

void TMemoAccessibility::Tell() {
    if (!Listens()) {
        FListening = false;
        FText.clear();
        return;
    }
    const TAdvMemo& memo = FWidget.Memo();
    const TSelectionRange range = memo.Selection().Ordered();
    const int caret = memo.Words().TextFromPos(memo.Caret().X(), memo.Caret().Y());
    const int start = memo.Words().TextFromPos(range.StartX, range.StartY);
    const int end = memo.Words().TextFromPos(range.EndX, range.EndY);
    const bool first = !std::exchange(FListening, true);
    const quint64 revision = memo.RunsRevision();
    const bool changed = std::exchange(FRevision, revision) != revision;
    if (first)
        FText = AccessibleText(FWidget);
    else if (changed)
        TellText(AccessibleText(FWidget));
    const bool selected = start != end || FSelectionStart != FSelectionEnd;
    if (selected && (start != FSelectionStart || end != FSelectionEnd)) {
        QAccessibleTextSelectionEvent event(&FWidget, start, end);
        event.setCursorPosition(caret);
        Send(event);
    } else if (caret != FCaret) {
        QAccessibleTextCursorEvent event(&FWidget, caret);
        Send(event);
    }
    std::tie(FCaret, FSelectionStart, FSelectionEnd) = std::tie(caret, start, end);
}

/// The piece that differs, as one replacement.
void TMemoAccessibility::TellText(const string& text) {
    const string old = std::exchange(FText, text);
    if (old == text)
        return;
    const qsizetype shorter = std::min(old.size(), text.size());
    const qsizetype head =
        std::mismatch(old.begin(), old.begin() + shorter, text.begin()).first - old.begin();
    const qsizetype tail =
        std::mismatch(old.rbegin(), old.rbegin() + (shorter - head), text.rbegin()).first - old.rbegin();
    const string removed = old.mid(head, old.size() - head - tail);
    const string added = text.mid(head, text.size() - head - tail);
    QAccessibleTextUpdateEvent event(&FWidget, int(head), removed, added);
    Send(event);
}
