#pragma once
// The editor's window: a TAdvMemo on the desktop. It routes events to the parts that know what to do with
// them, and what the control tells it to the next painting.
#include "desktop/memo/MemoGeometry.h"
#include "editor/assist/Completion.h"
#include "editor/text/ColumnRange.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>

class QMenu;
class TAssistWindows;
class TMemoAccessibility;
class TMemoInput;
class TMemoKeyboard;
class TMemoMouse;
class TMemoPainter;
class TQtMemoClipboard;
class TSurrogatePairs;

class TMemoWidget : public QAbstractScrollArea, private TMemoView {
    Q_OBJECT
public:
    explicit TMemoWidget(QWidget* parent = nullptr);
    ~TMemoWidget() override;

    [[nodiscard]] TAdvMemo& Memo() { return FMemo; }
    [[nodiscard]] TMemoCompletion& Completion() { return FCompletion; }
    [[nodiscard]] TMemoGeometry& Geometry() { return FGeometry; }
    [[nodiscard]] TMemoMouse& Mouse() { return *FMouse; }
    [[nodiscard]] TQtMemoClipboard& Clipboard() { return *FClipboard; }
    void SetClipboard(std::unique_ptr<TQtMemoClipboard> clipboard);
    [[nodiscard]] TMemoAccessibility& Accessibility() { return *FAccessibility; }
    /// Keys and typed text go to the control this way.
    [[nodiscard]] TSurrogatePairs& Pairs() { return *FPairs; }
    void SetFont(const TMemoFont& font);
    /// Larger or smaller by points, for this window; 0 goes back to the font's own size.
    void SetZoom(int points);
    [[nodiscard]] int Zoom() const { return FZoom; }

    /// The completion list yields to typing (TAutoCompletion::Yielding), is 600 pixels wide at most, and
    /// follows the zoom.
    void YieldCompletion();

    bool ShowModified = true;    ///< marks of changed and saved lines in the gutter
    bool ShowRightMargin = true; ///< a line at the control's FRightMargin
    bool ShowLineNumbers = true;
    /// What is marked in a row, such as the matches of a search; may be empty. Repaint the viewport when it
    /// answers differently.
    std::function<std::vector<TColumnRange>(int row)> MarkedColumns;
    /// Adds to the context menu; may be empty.
    std::function<void(QMenu& menu)> ExtendMenu;
    /// The caret is in its visible phase.
    [[nodiscard]] bool CaretShows() const { return FCaretShows && hasFocus(); }

    /// Takes back what an input method is composing.
    void CancelPreedit();
    /// The caret shows in another place without having moved in the text.
    void CaretPlaceChanged();
    /// To the neighbour in the tab order, as Tab goes elsewhere. False if there is none.
    bool FocusNext() { return QAbstractScrollArea::focusNextPrevChild(/*next=*/true); }
    bool FocusPrevious() { return QAbstractScrollArea::focusNextPrevChild(/*next=*/false); }

Q_SIGNALS:
    /// Caret, selection, text or overwrite state may have changed: once per turn of the event loop.
    void StateChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void RepaintRows(int from, int to) override;
    void RepaintAll() override;
    void CaretMoved() override;
    void RestartCaretBlink() override;
    void ScrollChanged(const TScrollRange& range) override;
    void Settle();
    void SizeCompletion();
    void SettleLater();

    TAdvMemo FMemo;
    TMemoGeometry FGeometry{FMemo, *viewport()};
    TMemoCompletion FCompletion{FMemo};
    std::unique_ptr<TQtMemoClipboard> FClipboard;
    const std::unique_ptr<TSurrogatePairs> FPairs;
    const std::unique_ptr<TAssistWindows> FAssist;
    const std::unique_ptr<TMemoPainter> FPainter;
    const std::unique_ptr<TMemoKeyboard> FKeyboard;
    const std::unique_ptr<TMemoInput> FInput;
    const std::unique_ptr<TMemoAccessibility> FAccessibility;
    const std::unique_ptr<TMemoMouse> FMouse;
    TMemoFont FFont;
    int FZoom = 0;
    QBasicTimer FBlink;
    bool FCaretShows = true;
    bool FSettling = false; // Settle is under way or queued
    bool FCaretNew = false;
    bool FTakingRange = false;
};
