#pragma once
// The windows and timers of completion and hints, over one editor's window. They go whenever their place no
// longer holds: when the editor loses the focus, its window moves, or the mouse works on the text.
#include "editor/assist/AssistWindow.h"

#include <QBasicTimer>
#include <QFont>
#include <QObject>
#include <QPointer>
#include <QRect>

class QWidget;
class TCompletionPopup;
class THintWindow;
class TMemoWidget;

/// Places are in logical pixels from the top left corner of what is free of the editor's screen.
class TAssistWindows : public QObject, public TAssistWindow {
public:
    /// Serves the widget's completion as long as it lives.
    explicit TAssistWindows(TMemoWidget& widget);
    ~TAssistWindows() override;

    [[nodiscard]] int Width(const TMemoFont& font, bool bold, QStringView text) const override;
    [[nodiscard]] int Height(const TMemoFont& font, QStringView text) const override;
    [[nodiscard]] int ScrollBarWidth() const override;
    /// The control counts in cells. In a row of other characters places near the caret move along with it.
    [[nodiscard]] TMemoPoint ToScreen(TMemoPoint client) const override;
    [[nodiscard]] int ScreenWidth() const override { return Screen().width(); }
    [[nodiscard]] int ScreenHeight() const override { return Screen().height(); }
    [[nodiscard]] int GutterWidth() const override;
    void ShowList(const TAutoCompletionListBox& list, const TMemoRect& place) override;
    void UpdateList(const TAutoCompletionListBox& list, int width) override;
    [[nodiscard]] TMemoRect ListPlace() const override;
    void HideList() override;
    void ShowHint(const TAdvHintForm& hint) override;
    void HideHint() override;
    void StartTimer(int delay) override;
    void StopTimer() override { FDelay.stop(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    [[nodiscard]] QRect Screen() const;
    [[nodiscard]] QRect CaretOnScreen() const;
    [[nodiscard]] QRect Fitted(QRect list) const;
    void PlaceHint();
    void WatchWindow();
    void Rest();
    void TakeState();
    void Dismiss();
    [[nodiscard]] bool FilterEditor(QEvent& event);

    TMemoWidget& FWidget;
    QPointer<QWidget> FWindow;               // that is watched
    std::unique_ptr<TCompletionPopup> FList; // both are made when first needed
    std::unique_ptr<THintWindow> FHint;
    int FListLine = 0; // the top of the caret's row when the list opened
    QRect FHintPlace;  // as the control wants it
    QBasicTimer FDelay, FRest;
};
