#include "desktop/memo/MemoWidget.h"

#include "desktop/memo/assist/AssistWindows.h"
#include "desktop/memo/input/MemoAccessible.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "desktop/memo/input/MemoInput.h"
#include "desktop/memo/input/MemoKeyboard.h"
#include "desktop/memo/input/MemoMouse.h"
#include "desktop/memo/paint/MemoPainter.h"
#include "editor/edit/SurrogatePairs.h"

#include <QApplication>
#include <QPaintEvent>
#include <QScrollBar>
#include <QStyleHints>

TMemoWidget::TMemoWidget(QWidget* parent)
    : QAbstractScrollArea(parent), FPairs(std::make_unique<TSurrogatePairs>(FMemo)),
      FAssist(std::make_unique<TAssistWindows>(*this)), FPainter(std::make_unique<TMemoPainter>(*this)),
      FKeyboard(std::make_unique<TMemoKeyboard>(*this)), FInput(std::make_unique<TMemoInput>(*this)),
      FAccessibility(std::make_unique<TMemoAccessibility>(*this)),
      FMouse(std::make_unique<TMemoMouse>(*this)) {
    FMemo.View = this;
    SetClipboard(std::make_unique<TQtMemoClipboard>());
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_KeyCompression, /*on=*/false);
    setAcceptDrops(/*on=*/true);
    viewport()->setMouseTracking(/*enable=*/true);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    FGeometry.Update();
}

TMemoWidget::~TMemoWidget() {
    FMemo.View = nullptr;
}

void TMemoWidget::SetFont(const TMemoFont& font) {
    FFont = font;
    FGeometry.SetFont(FFont, FZoom);
    SizeCompletion();
    viewport()->update();
}

void TMemoWidget::YieldCompletion() {
    FCompletion.FAutoCompletion.Yielding = true;
    SizeCompletion();
}

void TMemoWidget::SizeCompletion() {
    constexpr int Widest = 600;
    constexpr int Height = 200;
    TAutoCompletion& settings = FCompletion.FAutoCompletion;
    if (!settings.Yielding)
        return;
    FCompletion.CloseCompletionList();
    settings.Font.Name = FFont.Name;
    settings.Font.Size = FFont.Size + FZoom;
    settings.MaxWidth = Widest * settings.Font.Size / std::max(1, FFont.Size);
    settings.Height = Height * settings.Font.Size / std::max(1, FFont.Size);
}

void TMemoWidget::SetZoom(int points) {
    constexpr int Smallest = 4;
    constexpr int Largest = 72;
    FZoom = std::clamp(FFont.Size + points, Smallest, Largest) - FFont.Size;
    SetFont(FFont);
}

void TMemoWidget::paintEvent(QPaintEvent* event) {
    FPainter->Paint(event->rect());
    FMouse->PaintDropCaret();
}

void TMemoWidget::resizeEvent(QResizeEvent* /*event*/) {
    FGeometry.Update();
}

void TMemoWidget::scrollContentsBy(int /*dx*/, int /*dy*/) {
    if (FTakingRange)
        return;
    FMemo.Scroll().SetTopLine(FMemo.Folding().StepVisible(0, verticalScrollBar()->value()));
    FMemo.Scroll().SetLeftCol(horizontalScrollBar()->value());
}

void TMemoWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        viewport()->update();
    QAbstractScrollArea::changeEvent(event);
}

void TMemoWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() != FBlink.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    FCaretShows = !FCaretShows;
    viewport()->update(FGeometry.RowRect(FMemo.Caret().Y()));
}

void TMemoWidget::focusInEvent(QFocusEvent* /*event*/) {
    FMemo.Activate();
    RestartCaretBlink();
    viewport()->update(); // the selection has other colours now
}

void TMemoWidget::focusOutEvent(QFocusEvent* event) {
    FBlink.stop();
    CancelPreedit();
    if (event->reason() != Qt::PopupFocusReason)
        FCompletion.ListDeactivated();
    viewport()->update();
}

/// Tab is text here; Ctrl+Tab leaves.
bool TMemoWidget::focusNextPrevChild(bool /*next*/) {
    return false;
}

bool TMemoWidget::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && FKeyboard->Wants(static_cast<QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void TMemoWidget::keyPressEvent(QKeyEvent* event) {
    FKeyboard->Press(*event);
}

void TMemoWidget::inputMethodEvent(QInputMethodEvent* event) {
    FInput->Take(*event);
}

QVariant TMemoWidget::inputMethodQuery(Qt::InputMethodQuery query) const {
    const QVariant answer = FInput->Answer(query);
    return answer.isValid() ? answer : QAbstractScrollArea::inputMethodQuery(query);
}

void TMemoWidget::mousePressEvent(QMouseEvent* event) {
    FMouse->Press(*event);
}

void TMemoWidget::mouseMoveEvent(QMouseEvent* event) {
    FMouse->Move(*event);
}

void TMemoWidget::mouseReleaseEvent(QMouseEvent* event) {
    FMouse->Release(*event);
}

void TMemoWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    FMouse->DoubleClick(*event);
}

void TMemoWidget::wheelEvent(QWheelEvent* event) {
    FMouse->Wheel(*event);
}

void TMemoWidget::contextMenuEvent(QContextMenuEvent* event) {
    FMouse->Menu(*event);
}

void TMemoWidget::dragEnterEvent(QDragEnterEvent* event) {
    FMouse->Drag().Move(*event);
}

void TMemoWidget::dragMoveEvent(QDragMoveEvent* event) {
    FMouse->Drag().Move(*event);
}

void TMemoWidget::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    FMouse->Drag().Leave();
}

void TMemoWidget::dropEvent(QDropEvent* event) {
    FMouse->Drag().Drop(*event);
}

void TMemoWidget::RepaintRows(int from, int to) {
    for (int row = from; row <= to; ++row)
        viewport()->update(FGeometry.RowRect(row));
    SettleLater();
}

void TMemoWidget::RepaintAll() {
    viewport()->update();
    SettleLater();
}

void TMemoWidget::CaretMoved() {
    FCaretNew = true;
    viewport()->update(); // the current line and the matching bracket move with it
    SettleLater();
}

void TMemoWidget::RestartCaretBlink() {
    FCaretShows = true;
    const int half = QGuiApplication::styleHints()->cursorFlashTime() / 2;
    if (half > 0 && hasFocus())
        FBlink.start(half, this);
    viewport()->update(FGeometry.RowRect(FMemo.Caret().Y()));
}

/// Called in the middle of operations: what it changes here is the bars' alone.
void TMemoWidget::ScrollChanged(const TScrollRange& range) {
    FTakingRange = true;
    verticalScrollBar()->setRange(0, std::max(0, range.Rows - range.PageRows));
    verticalScrollBar()->setPageStep(std::max(1, range.PageRows));
    verticalScrollBar()->setValue(range.Top);
    horizontalScrollBar()->setRange(0, std::max(0, range.Columns + 1 - range.PageColumns));
    horizontalScrollBar()->setPageStep(std::max(1, range.PageColumns));
    horizontalScrollBar()->setValue(range.Left);
    FTakingRange = false;
    viewport()->update();
}

void TMemoWidget::SettleLater() {
    if (std::exchange(FSettling, true))
        return;
    QMetaObject::invokeMethod(
        this, [this] { Settle(); }, Qt::QueuedConnection);
}

/// What follows from operations, once they are through.
void TMemoWidget::Settle() {
    FPairs->Snap();
    FGeometry.Update(); // more digits may want a wider gutter
    const bool moved = std::exchange(FCaretNew, false);
    FGeometry.ScrollSideways(moved ? TMemoGeometry::ToCaret::Yes : TMemoGeometry::ToCaret::No);
    if (moved)
        updateMicroFocus();
    FAccessibility->Tell();
    FSettling = false;
    Q_EMIT StateChanged();
}

void TMemoWidget::CancelPreedit() {
    FInput->Cancel();
}

void TMemoWidget::CaretPlaceChanged() {
    RestartCaretBlink();
    updateMicroFocus();
}

void TMemoWidget::SetClipboard(std::unique_ptr<TQtMemoClipboard> clipboard) {
    FClipboard = std::move(clipboard);
    FMemo.Clipboard = FClipboard.get();
}
