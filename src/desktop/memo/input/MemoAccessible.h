#pragma once
// What assistive technology is told of the editor. Offsets count as TMemoWords does: a line break is one
// character, the cuts of wrapped lines are none.
#include "base/Text.h"

#include <functional>

class QAccessibleEvent;
class TMemoWidget;

/// Tells of changes since it told last. Costs nothing as long as nobody listens.
class TMemoAccessibility {
public:
    /// From the first on, editors answer to assistive technology.
    explicit TMemoAccessibility(TMemoWidget& widget);
    void Tell();

    // The way out; platforms that paint into memory have none.
    std::function<bool()> Listens; ///< whether assistive technology is there
    std::function<void(QAccessibleEvent&)> Send;

private:
    void TellText(const string& text);

    TMemoWidget& FWidget;
    bool FListening = false;
    string FText;
    quint64 FRevision = 0; // of the control's text
    int FCaret = -1;
    int FSelectionStart = 0;
    int FSelectionEnd = 0;
};

/// The whole text as its offsets count.
[[nodiscard]] string AccessibleText(TMemoWidget& widget);
