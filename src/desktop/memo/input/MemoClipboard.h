#pragma once
// The desktop's clipboard, and the primary selection where the platform has one.
#include "editor/place/MemoView.h"

class TQtMemoClipboard : public TMemoClipboard {
public:
    /// Both ways line breaks are line feeds: it is what the control wants, and what programs here expect.
    [[nodiscard]] string Text() const override;
    void SetText(const string& text) override;

    [[nodiscard]] virtual bool HasPrimary() const;
    [[nodiscard]] virtual string PrimaryText() const;
    virtual void SetPrimaryText(const string& text);
};

/// Line breaks of any kind made line feeds, no other control characters than tabs, and no half of a pair.
[[nodiscard]] string PlainText(string text);
