#pragma once
// TAdvCustomMemo: the text editor control without its window. The work is done by the parts that it has from
// the floors below; this class adds what concerns whole texts and what its users ask for by its name.
//
// A window calls Scroll().Resize, KeyDown and KeyPress, sets View, and paints rows from RunsOf. All on one
// thread.
#include "editor/MemoSource.h"
#include "editor/edit/MemoEditor.h"

class TAdvCustomMemo : public TMemoEditor {
public:
    TAdvCustomMemo() = default;
    ~TAdvCustomMemo() override;

    /// Lower-cases and sorts the styler's keywords unless FCaseSensitive. Borrowed; null switches it off.
    void SetStyler(TAdvCustomMemoStyler* styler);
    /// Shows the source's text, history and styler; null goes back to the control's own.
    void SetMemoSource(TAdvMemoSource* source);
    [[nodiscard]] TAdvMemoSource* MemoSource() const { return FMemoSource; }
    /// The styler of the source or the own one is in force now.
    void StylerChanged();

    [[nodiscard]] string Text() const { return Lines().Text(); }
    void SetText(const string& text);
    /// As Text and SetText, but a line end is one between lines: behind the last one an empty line shows.
    [[nodiscard]] string WholeText() const;
    void SetWholeText(const string& text);
    void ClearUndoRedo() { UndoList().Clear(); }
    [[nodiscard]] int UndoLimit() { return UndoList().Limit(); }
    void SetUndoLimit(int limit) { UndoList().SetLimit(limit); }
    void SelectAll() { Selection().SelectAll(); }
    void ScrollToTop() { Scroll().SetTopLine(0); }
    void ScrollToBottom() { Scroll().SetTopLine(Lines().Count() - Scroll().RowsInView()); }
    void SetWordWrap(TWordWrapStyle style);

private:
    TAdvMemoSource* FMemoSource = nullptr;
    QPointer<TAdvCustomMemoStyler> FInternalStyles;
};

/// The control that applications use.
class TAdvMemo : public TAdvCustomMemo {};
