#pragma once
// What a window implements to show the control, and what the control gives it.
#include "base/Text.h"

/// Modifier keys that are held.
enum TShift : unsigned { ssShift = 1, ssCtrl = 2, ssAlt = 4 };
using TShiftState = unsigned; ///< a set of TShift
[[nodiscard]] constexpr bool Held(TShiftState shift, TShift key) {
    return (shift & key) != 0;
}

struct TCellSize {
    int W = 0; ///< pixels; 0 as long as there is no window
    int H = 0;
};

/// Ranges and positions of the scroll bars.
struct TScrollRange {
    int Rows = 0;     ///< visible rows of the whole text
    int Top = 0;      ///< visible rows above the view
    int PageRows = 0; ///< rows that fit
    int Columns = 0;  ///< the longest line met so far
    int Left = 0;
    int PageColumns = 0;
    bool operator==(const TScrollRange&) const = default;
};

/// Told what changed. It asks the control for the rest when it paints. Called on the control's thread, in
/// the middle of operations: it must only take note.
class TMemoView {
public:
    virtual ~TMemoView() = default;
    /// Rows of the text, both included; the last may lie behind the end.
    virtual void RepaintRows(int from, int to) = 0;
    virtual void RepaintAll() = 0;
    virtual void CaretMoved() = 0;
    /// The caret shows again at once, whatever its blinking.
    virtual void RestartCaretBlink() = 0;
    virtual void ScrollChanged(const TScrollRange& range) = 0;
};

class TMemoClipboard {
public:
    virtual ~TMemoClipboard() = default;
    [[nodiscard]] virtual string Text() const = 0;
    virtual void SetText(const string& text) = 0;
};
