#pragma once
// The editing operations that undo entries replay. Columns and lines count from 0.
#include "base/Text.h"

/// The four selection fields: where the selection was begun, and its moving end.
struct TSelectionRange {
    int StartX = 0;
    int StartY = 0;
    int EndX = 0;
    int EndY = 0;
    bool operator==(const TSelectionRange&) const = default;
};

class TUndoTarget {
public:
    virtual ~TUndoTarget() = default;

    [[nodiscard]] virtual int CaretX() const = 0;
    [[nodiscard]] virtual int CaretY() const = 0;
    /// The caret setters, which bring coordinates in range.
    virtual void MoveToLine(int y) = 0;
    virtual void MoveToColumn(int x) = 0;

    /// Empty for a row that doesn't exist.
    [[nodiscard]] virtual string LineText(int y) const = 0;
    virtual void StoreLine(int y, const string& text) = 0;
    virtual void SetModifiedState(int line) = 0;

    virtual void InsertChar(QChar c) = 0;
    virtual void NewLine() = 0;
    virtual void BackSpace() = 0;
    virtual void DeleteChar() = 0;
    virtual void DeleteLine() = 0;
    /// Puts a block in at the caret, like a paste.
    virtual void InsertBuffer(const string& text) = 0;
    /// Puts each line of a block in at the caret's column.
    virtual void InsertColumns(const string& text) = 0;
    virtual void BlockIndent(int rowFrom, int rowTo, int indent) = 0;

    virtual void ClearSelection() = 0;
    virtual void TakeSelection(const TSelectionRange& range, bool block) = 0;
    virtual void DeleteSelection() = 0;
    virtual void BeginSelectionUpdate() = 0;
    virtual void EndSelectionUpdate() = 0;

    virtual void SetOverwrite(bool overwrite) = 0;
    [[nodiscard]] virtual bool AutoIndent() const = 0;
    virtual void SetAutoIndent(bool autoIndent) = 0;

    virtual void Repaint() = 0;
    virtual void UndoChanged(bool canUndo, bool canRedo) = 0;
    virtual void Changed() = 0;
};
