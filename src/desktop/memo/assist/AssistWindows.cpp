#include "desktop/memo/assist/AssistWindows.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/assist/AssistFonts.h"
#include "desktop/memo/assist/CompletionPopup.h"
#include "desktop/memo/assist/HintWindow.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QScreen>
#include <QStyle>
#include <QTimerEvent>

TAssistWindows::TAssistWindows(TMemoWidget& widget) : FWidget(widget) {
    FWidget.installEventFilter(this);
    FWidget.viewport()->installEventFilter(this);
    connect(&FWidget, &TMemoWidget::StateChanged, this, [this] { TakeState(); });
    FWidget.Completion().SetWindow(this);
}

TAssistWindows::~TAssistWindows() {
    FWidget.Completion().SetWindow(nullptr);
}

QRect TAssistWindows::Screen() const {
    return FWidget.screen()->availableGeometry();
}

QRect TAssistWindows::CaretOnScreen() const {
    const QRect caret = FWidget.Geometry().CaretRect();
    return {FWidget.viewport()->mapToGlobal(caret.topLeft()), caret.size()};
}

int TAssistWindows::Width(const TMemoFont& font, bool bold, QStringView text) const {
    return QFontMetrics(DesktopFont(font, bold)).horizontalAdvance(text.toString());
}

int TAssistWindows::Height(const TMemoFont& font, QStringView /*text*/) const {
    return QFontMetrics(DesktopFont(font, /*bold=*/false)).height();
}

int TAssistWindows::ScrollBarWidth() const {
    return FWidget.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &FWidget);
}

int TAssistWindows::GutterWidth() const {
    return FWidget.Geometry().GutterWidth();
}

TMemoPoint TAssistWindows::ToScreen(TMemoPoint client) const {
    const TMemoGeometry& geometry = FWidget.Geometry();
    const TAdvMemo& memo = FWidget.Memo();
    const int fold = memo.Folding().Enabled() ? TMemoGeometry::FoldWidth : 0;
    const int onGrid =
        geometry.GutterWidth() + fold + (memo.Caret().X() - memo.Scroll().LeftCol()) * geometry.CellWidth();
    const int by = geometry.CaretRect().left() - onGrid;
    const QPoint at = FWidget.viewport()->mapToGlobal(QPoint(client.X + by, client.Y)) - Screen().topLeft();
    return {at.x(), at.y()};
}

/// Above the line where there is no room below, and no higher than the room there is.
QRect TAssistWindows::Fitted(QRect list) const {
    constexpr int Gap = 2;
    const QRect screen = Screen();
    const QRect caret = CaretOnScreen();
    if (list.bottom() > screen.bottom()) {
        const int above = caret.top() - Gap - screen.top();
        const int below = screen.bottom() + 1 - list.top();
        list.setHeight(std::min(list.height(), std::max(above, below)));
        if (above > below)
            list.moveBottom(caret.top() - Gap - 1);
    }
    list.moveLeft(std::max(screen.left(), std::min(list.left(), screen.right() + 1 - list.width())));
    return list;
}

void TAssistWindows::ShowList(const TAutoCompletionListBox& list, const TMemoRect& place) {
    if (!FList) {
        FList = std::make_unique<TCompletionPopup>(FWidget, *this);
        connect(FList.get(), &TCompletionPopup::Clicked, this,
                [this](int index) { FWidget.Completion().ListClicked(index); });
    }
    FList->setPalette(FWidget.palette());
    FList->Take(list);
    const QRect wanted(QPoint(place.Left, place.Top) + Screen().topLeft(), QSize(place.Width, place.Height));
    FList->setGeometry(Fitted(wanted));
    FListLine = FWidget.Geometry().CaretRect().top();
    WatchWindow();
    FList->show();
    PlaceHint();
}

void TAssistWindows::UpdateList(const TAutoCompletionListBox& list, int width) {
    FList->Take(list);
    QRect place = FList->geometry();
    place.setWidth(std::max(width, FList->minimumWidth()));
    place.moveLeft(std::max(Screen().left(), std::min(place.left(), Screen().right() + 1 - place.width())));
    FList->setGeometry(place);
}

TMemoRect TAssistWindows::ListPlace() const {
    if (!FList)
        return {};
    const QPoint at = FList->pos() - Screen().topLeft();
    return {at.x(), at.y(), FList->width(), FList->height()};
}

/// The editor has had the focus all the time.
void TAssistWindows::HideList() {
    if (FList)
        FList->hide();
    PlaceHint();
}

void TAssistWindows::ShowHint(const TAdvHintForm& hint) {
    if (!FHint)
        FHint = std::make_unique<THintWindow>(FWidget);
    FHint->setPalette(FWidget.palette());
    FHint->Take(hint);
    constexpr int Air = 2; // between the last part and the frame
    FHintPlace = QRect(QPoint(hint.Place.Left, hint.Place.Top) + Screen().topLeft(),
                       QSize(hint.Place.Width + Air, hint.Place.Height));
    WatchWindow();
    FHint->show();
    PlaceHint();
}

/// Where the control wants it, or else beside the line or the list where it covers neither.
void TAssistWindows::PlaceHint() {
    if (!FHint || !FHint->isVisible())
        return;
    const QRect caret = CaretOnScreen();
    const QRect list = FList && FList->isVisible() ? FList->geometry() : QRect();
    const int height = FHintPlace.height();
    QRect place = FHintPlace;
    for (const int top :
         {place.top(), caret.top() - height, caret.bottom() + 1, list.bottom() + 1, list.top() - height}) {
        place.moveTop(top);
        if (!place.intersects(list) && Screen().contains(place))
            break;
        place = FHintPlace;
    }
    FHint->setGeometry(place);
}

void TAssistWindows::HideHint() {
    if (FHint)
        FHint->hide();
}

void TAssistWindows::StartTimer(int delay) {
    FDelay.start(delay, this);
}

void TAssistWindows::timerEvent(QTimerEvent* event) {
    if (event->timerId() == FDelay.timerId()) {
        FDelay.stop();
        FWidget.Completion().TimerFired();
    } else if (event->timerId() == FRest.timerId()) {
        FRest.stop();
        FWidget.Completion().Hint().RestTimerFired();
    }
}

void TAssistWindows::Rest() {
    if (FWidget.hasFocus())
        FRest.start(FWidget.Completion().Hint().FAutoHintParameterDelay, this);
}

/// A hint that shows follows the caret from parameter to parameter. A list stays with its line, and a hint in
/// the view.
void TAssistWindows::TakeState() {
    Rest();
    const QRect caret = FWidget.Geometry().CaretRect();
    if (FWidget.Completion().IsOpen() && caret.top() != FListLine)
        FWidget.Completion().ListDeactivated();
    TParameterHint& hint = FWidget.Completion().Hint();
    if (!hint.Visible())
        return;
    if (caret.top() < 0 || caret.bottom() > FWidget.viewport()->height())
        hint.HideHint();
    else
        hint.ShowParameterHint();
}

void TAssistWindows::Dismiss() {
    FDelay.stop();
    FWidget.Completion().ListDeactivated();
    FWidget.Completion().HideHint();
}

void TAssistWindows::WatchWindow() {
    if (FWindow == FWidget.window())
        return;
    if (FWindow && FWindow != &FWidget)
        FWindow->removeEventFilter(this);
    FWindow = FWidget.window();
    FWindow->installEventFilter(this);
}

bool TAssistWindows::FilterEditor(QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride: {
        const bool escape = static_cast<QKeyEvent&>(event).key() == Qt::Key_Escape;
        if (escape && FWidget.Completion().Hint().Visible() && !FWidget.Completion().IsOpen()) {
            if (event.type() == QEvent::KeyPress)
                FWidget.Completion().HideHint();
            event.accept();
            return true;
        }
        Rest();
        break;
    }
    case QEvent::FocusIn:
        Rest();
        break;
    case QEvent::FocusOut:
        FRest.stop();
        if (static_cast<QFocusEvent&>(event).reason() != Qt::PopupFocusReason)
            Dismiss();
        break;
    default:
        break;
    }
    return false;
}

bool TAssistWindows::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &FWidget && FilterEditor(*event))
        return true;
    const bool onText = watched == FWidget.viewport();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
        if (onText)
            Dismiss();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
        if (!onText)
            Dismiss();
        break;
    default:
        break;
    }
    return false;
}
