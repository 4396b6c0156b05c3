#pragma once
// What a window implements so that completion and hints can be seen. Places are in pixels.
#include "editor/style/MemoFont.h"

struct TMemoPoint {
    int X = 0;
    int Y = 0;
    bool operator==(const TMemoPoint&) const = default;
};

struct TMemoRect {
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    bool operator==(const TMemoRect&) const = default;
};

/// Widths and heights of text. A bold width is that of `font` made bold.
class TTextMetrics {
public:
    virtual ~TTextMetrics() = default;
    [[nodiscard]] virtual int Width(const TMemoFont& font, bool bold, QStringView text) const = 0;
    [[nodiscard]] virtual int Height(const TMemoFont& font, QStringView text) const = 0;
    [[nodiscard]] virtual int ScrollBarWidth() const = 0;
};

class TAutoCompletionListBox;
struct TAdvHintForm;

/// The list's and the hint's windows, and the one timer. Keys that go to the list's window are passed on to
/// the control as if it had the focus.
class TAssistWindow : public TTextMetrics {
public:
    [[nodiscard]] virtual TMemoPoint ToScreen(TMemoPoint client) const = 0;
    [[nodiscard]] virtual int ScreenWidth() const = 0;
    [[nodiscard]] virtual int ScreenHeight() const = 0;
    /// 0 while the gutter doesn't show.
    [[nodiscard]] virtual int GutterWidth() const = 0;

    virtual void ShowList(const TAutoCompletionListBox& list, const TMemoRect& place) = 0;
    /// Entries, selection or width changed.
    virtual void UpdateList(const TAutoCompletionListBox& list, int width) = 0;
    [[nodiscard]] virtual TMemoRect ListPlace() const = 0;
    /// Hides the list and gives the focus to the control.
    virtual void HideList() = 0;

    /// Shows it without taking the focus.
    virtual void ShowHint(const TAdvHintForm& hint) = 0;
    virtual void HideHint() = 0;

    /// One shot: TMemoCompletion::TimerFired after that many milliseconds.
    virtual void StartTimer(int delay) = 0;
    virtual void StopTimer() = 0;
};
