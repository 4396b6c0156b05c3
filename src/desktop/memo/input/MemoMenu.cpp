#include "desktop/memo/input/MemoMenu.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "editor/edit/SurrogatePairs.h"

#include <QContextMenuEvent>
#include <QMenu>

#include <functional>

namespace {

/// The keys are shown only: the editor serves them itself.
void Add(QMenu& menu, const char* caption, const char* keys, bool enabled, std::function<void()> call) {
    QAction* action = menu.addAction(QString(caption) + u'\t' + QString(keys), &menu, std::move(call));
    action->setEnabled(enabled);
}

} // namespace

void ShowMemoMenu(TMemoWidget& widget, QContextMenuEvent& event) {
    TAdvMemo& memo = widget.Memo();
    widget.CancelPreedit();
    auto* menu = new QMenu(&widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool edits = !memo.Settings.FReadOnly && memo.EditingAllowed();
    const bool holdsText = memo.Lines().Count() > 1 || memo.LineLength(0) > 0;
    const bool selected = !memo.Selection().IsEmpty();
    const auto execute = [&widget](int key) { return [&widget, key] { widget.Pairs().Execute(key); }; };
    Add(*menu, "&Undo", "Ctrl+Z", memo.CanUndo(), [&widget] { widget.Pairs().Undo(); });
    Add(*menu, "&Redo", "Ctrl+Y", edits && memo.CanRedo(), [&widget] { widget.Pairs().Redo(); });
    menu->addSeparator();
    Add(*menu, "Cu&t", "Ctrl+X", edits && selected, execute(keyCtrlX));
    Add(*menu, "&Copy", "Ctrl+C", selected, execute(keyCtrlC));
    Add(*menu, "&Paste", "Ctrl+V", edits && !widget.Clipboard().Text().isEmpty(), execute(keyCtrlV));
    Add(*menu, "&Delete", "Del", edits && selected, [&widget] { widget.Pairs().DeleteSelection(); });
    menu->addSeparator();
    // With a read-only text the key does nothing; there is no harm in the menu's doing it.
    Add(*menu, "Select &All", "Ctrl+A", holdsText, [&memo] { memo.SelectAll(); });
    if (widget.ExtendMenu)
        widget.ExtendMenu(*menu);
    const QRect caret = widget.Geometry().CaretRect();
    const bool byKey = event.reason() == QContextMenuEvent::Keyboard;
    menu->popup(byKey ? widget.viewport()->mapToGlobal(caret.bottomLeft()) : event.globalPos());
    event.accept();
}
