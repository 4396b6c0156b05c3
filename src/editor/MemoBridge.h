#pragma once
// What a line store and an undo list see of the control that works on them. A control's own store has one
// for that control; the store of a source has one that leads to whichever control is active.
#include "editor/history/UndoTarget.h"
#include "editor/text/LineStoreOwner.h"

#include <functional>
#include <vector>

class TAdvCustomMemo;

class TMemoBridge : public TLineStoreOwner, public TUndoTarget {
public:
    /// The first control acts; all are told what changed.
    std::vector<TAdvCustomMemo*> FMemos;

    [[nodiscard]] int TabSize() const override;
    [[nodiscard]] int CaretX() const override;
    [[nodiscard]] int CaretY() const override;
    void WriteCaret(int x, int y) override;
    void MoveCaret(int x, int y) override;
    void ClearSelection() override;
    void ClearUndo() override;
    void RowsTouched(int index) override;
    void RowsInserted(int index, int count) override;
    void RowsRemoved(int index, int count) override;
    void DeleteCaretLine() override;
    [[nodiscard]] bool CodeFolding() const override;
    void RemoveCodeFolding(int line) override;
    void MoveFoldEnd(int line) override;
    void AutoCodeFold() override;
    void LoadBegins() override;
    void LoadEnds(int maxLength) override;
    [[nodiscard]] bool WordWrapOn() const override;
    void Wrap() override;
    void Unwrap() override;
    void UpdateWrap() override;
    void Repaint() override;
    void RefreshControl() override;

    void MoveToLine(int y) override;
    void MoveToColumn(int x) override;
    [[nodiscard]] string LineText(int y) const override;
    void StoreLine(int y, const string& text) override;
    void SetModifiedState(int line) override;
    void InsertChar(QChar c) override;
    void NewLine() override;
    void BackSpace() override;
    void DeleteChar() override;
    void DeleteLine() override;
    void InsertBuffer(const string& text) override;
    void InsertColumns(const string& text) override;
    void BlockIndent(int rowFrom, int rowTo, int indent) override;
    void TakeSelection(const TSelectionRange& range, bool block) override;
    void DeleteSelection() override;
    void BeginSelectionUpdate() override;
    void EndSelectionUpdate() override;
    void SetOverwrite(bool overwrite) override;
    [[nodiscard]] bool AutoIndent() const override;
    void SetAutoIndent(bool autoIndent) override;
    void UndoChanged(bool canUndo, bool canRedo) override;
    void Changed() override;

private:
    [[nodiscard]] TAdvCustomMemo& Active() const { return *FMemos.front(); }
};
