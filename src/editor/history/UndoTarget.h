#pragma once
// What undo entries replay edits on: the lines, and the parts of the control that work on them, each by the
// little that a replay needs of it. Columns and lines count from 0.
#include "editor/text/LineStore.h"
#include "editor/text/MemoSettings.h"
#include "editor/text/TextRange.h"

enum class Linked { No, Yes }; ///< one undo step with the entry before
enum class RecordUndo { No, Yes };

class TUndoCaret {
public:
    virtual ~TUndoCaret() = default;
    [[nodiscard]] virtual int X() const = 0;
    [[nodiscard]] virtual int Y() const = 0;
    /// The caret setters, which bring coordinates in range.
    virtual void SetLine(int y) = 0;
    virtual void SetColumn(int x) = 0;
};

class TUndoSelection {
public:
    virtual ~TUndoSelection() = default;
    virtual void Clear() = 0;
    virtual void Take(const TSelectionRange& range, bool block) = 0;
    /// Notices wait for the end of the bracket.
    virtual void BeginUpdate() = 0;
    virtual void EndUpdate() = 0;
};

/// The basic edits at the caret.
class TUndoEdits {
public:
    virtual ~TUndoEdits() = default;
    virtual void InsertChar(QChar c) = 0;
    virtual void NewLine() = 0;
    virtual void BackSpace() = 0;
    /// A negative `x` is the forward delete at the caret.
    virtual void DeleteChar(int x, int y) = 0;
    virtual void DeleteLine() = 0;
};

class TUndoBlocks {
public:
    virtual ~TUndoBlocks() = default;
    /// Puts a block in at the caret, like a paste.
    virtual void InsertBuffer(const string& text, Linked linked) = 0;
    /// Puts each line of a block in at the caret's column.
    virtual void InsertColumns(const string& text) = 0;
    virtual void DeleteSelection() = 0;
    virtual void BlockIndent(int rowFrom, int rowTo, int indent, RecordUndo record) = 0;
};

struct TUndoTarget {
    TAdvMemoStrings* Lines;
    TMemoSettings& Settings;
    TUndoCaret& Caret;
    TUndoSelection& Selection;
    TUndoEdits& Edits;
    TUndoBlocks& Blocks;

    /// Empty for a row that doesn't exist, which isn't stored either.
    [[nodiscard]] string LineText(int y) const;
    void StoreLine(int y, const string& text) const;
};
