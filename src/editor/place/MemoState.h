#pragma once
// TMemoState: what the parts of a control share. It holds the text, its look, the settings, and where things
// are in it; the parts that edit are above. All on one thread.
#include "editor/history/EditedText.h"
#include "editor/place/Bookmarks.h"
#include "editor/place/Caret.h"
#include "editor/place/CaretMoves.h"
#include "editor/place/ErrorMarks.h"
#include "editor/place/Folding.h"
#include "editor/place/MemoAssist.h"
#include "editor/place/MemoEvents.h"
#include "editor/place/Scrolling.h"
#include "editor/place/Selection.h"
#include "editor/place/Words.h"
#include "editor/style/LineStartState.h"
#include "editor/style/ScanLine.h"
#include "editor/text/MemoSettings.h"
#include "editor/text/WordWrap.h"

class TMemoState : public TTextUser, private TStylesOwner {
public:
    TMemoState() = default;
    ~TMemoState() override;
    TMemoState(const TMemoState&) = delete;
    TMemoState& operator=(const TMemoState&) = delete;

    TMemoSettings Settings;
    TMemoEvents Events;
    TMemoView* View = nullptr;               ///< borrowed
    TMemoClipboard* Clipboard = nullptr;     ///< borrowed
    TAdvMemoChecker* FMemoChecker = nullptr; ///< borrowed
    TRunLook BaseLook{clBlack, clWhite, 0};
    [[nodiscard]] TMemoAssist& Assist() { return *FAssist; }
    /// Borrowed; null for none.
    void SetAssist(TMemoAssist* assist) { FAssist = assist ? assist : &FNoAssist; }

    /// The text at hand: the control's own, or one that it shares.
    [[nodiscard]] TAdvMemoStrings& Lines() { return FText->Lines; }
    [[nodiscard]] const TAdvMemoStrings& Lines() const { return FText->Lines; }
    [[nodiscard]] TAdvUndoList& UndoList() { return FText->UndoList; }
    int AddUndoStep(std::unique_ptr<TUndo> entry) { return UndoList().Add(std::move(entry)); }
    /// This control is the one that the user works with. Brings its caret in range.
    void Activate();

    // Lines. Empty for a row that doesn't exist.
    [[nodiscard]] string LineText(int row) const;
    [[nodiscard]] int LineLength(int row) const;
    /// Without trailing blanks, unless the row goes on in a wrapped continuation.
    [[nodiscard]] int TrimmedLength(int row) const;
    [[nodiscard]] bool IsContinuation(int row) const { return Lines().IsContinuation(row); }
    [[nodiscard]] TLineModifiedState GetModifiedState(int line) const { return Lines().ModifiedState(line); }
    void SetModifiedState(int line) { SetModifiedStateInt(line, lmModified); }
    void SetModifiedStateInt(int line, TLineModifiedState state);

    // Where things are.
    [[nodiscard]] TMemoCaret& Caret() { return FCaret; }
    [[nodiscard]] const TMemoCaret& Caret() const { return FCaret; }
    [[nodiscard]] TCaretMoves& Moves() { return FMoves; }
    [[nodiscard]] TMemoSelection& Selection() { return FSelection; }
    [[nodiscard]] const TMemoSelection& Selection() const { return FSelection; }
    void ClearSelection() override { FSelection.Clear(); }
    [[nodiscard]] string SelText() const { return FSelection.Text(); }
    [[nodiscard]] TMemoScroll& Scroll() { return FScroll; }
    [[nodiscard]] const TMemoScroll& Scroll() const { return FScroll; }
    [[nodiscard]] TMemoFolding& Folding() { return FFolding; }
    [[nodiscard]] const TMemoFolding& Folding() const { return FFolding; }
    [[nodiscard]] TBookmarks& Bookmarks() { return FBookmarks; }
    [[nodiscard]] TErrorMarks& ErrorMarks() { return FErrorMarks; }
    [[nodiscard]] const TMemoWords& Words() const { return FWords; }

    // Looks: what a view paints.
    [[nodiscard]] TStyleRules& Rules() { return FRules; }
    [[nodiscard]] const TStyleRules& Rules() const { return FRules; }
    [[nodiscard]] TAdvCustomMemoStyler* GetStyler() const { return FRules.Styler; }
    [[nodiscard]] std::vector<TStyleRun> RunsOf(int row);
    [[nodiscard]] TRunLook LookOf(const TStyle& state) const { return ::LookOf(state, FRules, BaseLook); }
    /// Another number once the runs of any row may be others.
    [[nodiscard]] quint64 RunsRevision() const;
    void ResetStyling();

    // Word wrap.
    /// Cuts the text afresh if word wrap is on.
    void UpdateWrap();
    void Unwrap();

    // Repainting and compound edits.
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
    /// The store's change handler. Does nothing while refreshing is off.
    void LinesChanged() override;
    void Repaint();
    void RepaintRow(int row);
    void RefreshControl() override;
    [[nodiscard]] bool EditingAllowed() const { return !Events.FOnAllowEdit || Events.FOnAllowEdit(); }

    // What the line store tells and asks.
    void RowsTouched(int row) override;
    void RowsInserted(int row, int count) override;
    void RowsRemoved(int row, int count) override;
    void FoldsChanged() override;
    void Loaded(int longest) override;
    [[nodiscard]] const TMemoSettings& StoreSettings() const override { return Settings; }
    [[nodiscard]] int WrapLimit() const override;
    void ClampCaret() override { FCaret.MoveTo(FCaret.X(), FCaret.Y()); }
    void GoToStart() override;
    void LoadBegins() override;
    void LoadEnds() override;
    void ArrangeLines() override;
    void UndoChanged(bool canUndo, bool canRedo) override;

protected:
    /// Shows another text, or the control's own again for null.
    void ShowText(TEditedText* text);
    void TakeStyler(TAdvCustomMemoStyler* styler);

private:
    void StylesChanged() override { ResetStyling(); }
    [[nodiscard]] TColor BackgroundColor() const override { return BaseLook.BkColor; }

    TEditedText FOwnText;
    TEditedText* FText = &FOwnText;
    TMemoAssist FNoAssist;
    TMemoAssist* FAssist = &FNoAssist;
    QMetaObject::Connection FStylerGone;
    TStyleRules FRules;
    TLineStates FLineStates;
    unsigned FStylesRevision = 0;
    unsigned FTextRevision = 0;
    TMemoCaret FCaret{*this};
    TCaretMoves FMoves{*this};
    TMemoSelection FSelection{*this};
    TMemoScroll FScroll{*this};
    TMemoFolding FFolding{*this};
    TBookmarks FBookmarks;
    TMemoWords FWords{*this};
    TErrorMarks FErrorMarks{*this};
    bool FLetRefresh = true;
};
