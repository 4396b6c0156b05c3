#pragma once
// TAdvCustomMemo: the text editor control without its window. The work is done by the parts that it
// gathers; this class holds them together, and what is offered to users of the control.
//
// A window calls Scroll().Resize, KeyDown and KeyPress, sets View, and paints rows from RunsOf. All on one
// thread.
#include "editor/MemoSource.h"
#include "editor/edit/Blocks.h"
#include "editor/edit/Editing.h"
#include "editor/edit/Keys.h"
#include "editor/edit/Typing.h"
#include "editor/place/Bookmarks.h"
#include "editor/place/Caret.h"
#include "editor/place/CaretMoves.h"
#include "editor/place/ErrorMarks.h"
#include "editor/place/Folding.h"
#include "editor/place/MemoEvents.h"
#include "editor/place/Scrolling.h"
#include "editor/place/Selection.h"
#include "editor/place/Words.h"
#include "editor/style/LineStartState.h"
#include "editor/style/ScanLine.h"
#include "editor/text/MemoSettings.h"

class TMemoAssist;

class TAdvCustomMemo : private TStylesOwner {
public:
    TAdvCustomMemo();
    ~TAdvCustomMemo() override;
    TAdvCustomMemo(const TAdvCustomMemo&) = delete;
    TAdvCustomMemo& operator=(const TAdvCustomMemo&) = delete;

    TMemoSettings Settings;
    TMemoEvents Events;
    TMemoView* View = nullptr;               ///< borrowed
    TMemoClipboard* Clipboard = nullptr;     ///< borrowed
    TAdvMemoChecker* FMemoChecker = nullptr; ///< borrowed
    TMemoAssist* Assist = nullptr;           ///< borrowed
    TRunLook BaseLook{clBlack, clWhite, 0};

    /// The text, the history and the styler: the source's where one is attached.
    [[nodiscard]] TAdvMemoStrings& Lines();
    [[nodiscard]] const TAdvMemoStrings& Lines() const;
    [[nodiscard]] TAdvUndoList& UndoList();
    [[nodiscard]] TAdvCustomMemoStyler* GetStyler() const { return FRules.Styler; }
    /// Lower-cases and sorts the styler's keywords unless FCaseSensitive. Borrowed; null switches it off.
    void SetStyler(TAdvCustomMemoStyler* styler);
    void SetMemoSource(TAdvMemoSource* source);
    [[nodiscard]] TAdvMemoSource* MemoSource() const { return FMemoSource; }
    /// This control is the one that the user works with. Brings its caret in range.
    void Activate();

    [[nodiscard]] string Text() const { return Lines().Text(); }
    void SetText(const string& text);
    [[nodiscard]] string SelText() const { return FSelection.Text(); }

    void KeyDown(int key, TShiftState shift);
    void KeyPress(QChar c);
    void ExecuteKey(int key, TShiftState shift) { FKeys.ExecuteKey(key, shift); }
    void Undo();
    void Redo();
    [[nodiscard]] bool CanUndo() { return UndoList().CanUndo(); }
    [[nodiscard]] bool CanRedo() { return UndoList().CanRedo(); }
    int AddUndoStep(std::unique_ptr<TUndo> entry) { return UndoList().Add(std::move(entry)); }
    void ClearUndoRedo() { UndoList().Clear(); }
    [[nodiscard]] int UndoLimit() { return UndoList().Limit(); }
    void SetUndoLimit(int limit) { UndoList().SetLimit(limit); }

    void ClearSelection() { FSelection.Clear(); }
    void SelectAll() { FSelection.SelectAll(); }
    void ScrollToTop() { FScroll.SetTopLine(0); }
    void ScrollToBottom() { FScroll.SetTopLine(Lines().Count() - FScroll.RowsInView()); }
    void SetWordWrap(TWordWrapStyle style);
    /// Cuts the text afresh if word wrap is on.
    void UpdateWrap();
    [[nodiscard]] bool IsContinuation(int row) const;

    [[nodiscard]] TLineModifiedState GetModifiedState(int line) const;
    void SetModifiedState(int line) { SetModifiedStateInt(line, lmModified); }
    void SetModifiedStateInt(int line, TLineModifiedState state);

    /// What a view paints: the runs of a row, and the look of a run.
    [[nodiscard]] std::vector<TStyleRun> RunsOf(int row);
    [[nodiscard]] TRunLook LookOf(const TStyle& state) const { return ::LookOf(state, FRules, BaseLook); }
    /// Another number once the runs of any row may be others.
    [[nodiscard]] quint64 RunsRevision() const;

    /// Empty for a row that doesn't exist.
    [[nodiscard]] string LineText(int row) const;
    [[nodiscard]] int LineLength(int row) const;
    /// Without trailing blanks, unless the row goes on in a wrapped continuation.
    [[nodiscard]] int TrimmedLength(int row) const;

    // The parts.
    [[nodiscard]] TMemoCaret& Caret() { return FCaret; }
    [[nodiscard]] const TMemoCaret& Caret() const { return FCaret; }
    [[nodiscard]] TCaretMoves& Moves() { return FMoves; }
    [[nodiscard]] TMemoSelection& Selection() { return FSelection; }
    [[nodiscard]] const TMemoSelection& Selection() const { return FSelection; }
    [[nodiscard]] TMemoScroll& Scroll() { return FScroll; }
    [[nodiscard]] const TMemoScroll& Scroll() const { return FScroll; }
    [[nodiscard]] TMemoFolding& Folding() { return FFolding; }
    [[nodiscard]] const TMemoFolding& Folding() const { return FFolding; }
    [[nodiscard]] TBookmarks& Bookmarks() { return FBookmarks; }
    [[nodiscard]] TErrorMarks& ErrorMarks() { return FErrorMarks; }
    [[nodiscard]] TMemoEditing& Editing() { return FEditing; }
    [[nodiscard]] TMemoBlocks& Blocks() { return FBlocks; }
    [[nodiscard]] const TMemoWords& Words() const { return FWords; }
    [[nodiscard]] TStyleRules& Rules() { return FRules; }
    [[nodiscard]] const TStyleRules& Rules() const { return FRules; }

    // For the parts: repainting and compound edits.
    /// Runs `edit` with repainting held back, then repaints and raises OnChange once.
    template <class F> void CompoundEdit(F edit) {
        const bool outer = FLetRefresh;
        FLetRefresh = false;
        try {
            edit();
        } catch (...) {
            FLetRefresh = outer;
            throw;
        }
        FLetRefresh = outer;
        LinesChanged();
    }
    /// The store's change handler. Does nothing while refreshing or caret updates are off.
    void LinesChanged();
    void Repaint();
    void RepaintRow(int row);
    void RefreshControl();
    void RowsTouched(int row);
    void FoldsChanged();
    [[nodiscard]] bool EditingAllowed() const;
    // Asked of the assistant, where there is one.
    void HideHint();
    void AllowAutoHint(bool allow);
    [[nodiscard]] bool TakesKey(int key, TShiftState shift);
    [[nodiscard]] bool TakesChar(QChar c);
    void CharTyped(QChar c);
    void AskForCompletion(bool parameterHint);
    [[nodiscard]] string CorrectedWord(const string& word);
    void ResetStyling();
    void Wrap();
    void Unwrap();
    /// The styler of the source or the own one is in force now.
    void StylerChanged();
    [[nodiscard]] bool CaretUpdates() const { return FLetCursorUpdate; }
    void SetLetRefresh(bool on) { FLetRefresh = on; }

private:
    void StylesChanged() override;
    [[nodiscard]] TColor BackgroundColor() const override { return BaseLook.BkColor; }
    [[nodiscard]] int WrapLimit() const;
    void TakeStyler(TAdvCustomMemoStyler* styler);

    TAdvMemoStrings FLines;
    TAdvUndoList FUndoList;
    TMemoBridge FBridge;
    TAdvMemoSource* FMemoSource = nullptr;
    QPointer<TAdvCustomMemoStyler> FInternalStyles;
    QMetaObject::Connection FStylerGone;
    TStyleRules FRules;
    TLineStates FLineStates;
    unsigned FStylesRevision = 0;
    unsigned FTextRevision = 0;
    TWordWrap FWrap;
    TMemoCaret FCaret{*this};
    TCaretMoves FMoves{*this};
    TMemoSelection FSelection{*this};
    TMemoScroll FScroll{*this};
    TMemoFolding FFolding{*this};
    TBookmarks FBookmarks;
    TMemoWords FWords{*this};
    TErrorMarks FErrorMarks{*this};
    TMemoEditing FEditing{*this};
    TMemoBlocks FBlocks{*this};
    TMemoKeys FKeys{*this};
    TMemoTyping FTyping{*this};
    bool FLetRefresh = true;
    bool FLetCursorUpdate = true;
};

/// The control that applications use.
class TAdvMemo : public TAdvCustomMemo {};
