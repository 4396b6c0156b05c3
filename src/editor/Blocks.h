#pragma once
// Edits of more than a character: blocks, the selection, the clipboard, indentation.
#include "base/Text.h"

class TAdvCustomMemo;

enum class Linked { No, Yes }; ///< one undo step with the entry before
enum class RecordUndo { No, Yes };

class TMemoBlocks {
public:
    explicit TMemoBlocks(TAdvCustomMemo& memo) : FMemo(memo) {}

    /// Puts `text` in at the caret, with any kind of line breaks; the caret goes behind it.
    void InsertBuffer(const string& text, Linked linked = Linked::No);
    /// Puts each line of `text` in at the caret's column, in rows from the caret's on.
    void InsertColumns(const string& text);
    void DeleteSelection();

    void CutToClipBoard();
    void CopyToClipBoard();
    void PasteFromClipBoard();

    /// Puts `indent` blanks before each row, or takes up to that many away if negative.
    void BlockIndent(int rowFrom, int rowTo, int indent, RecordUndo record);

private:
    void Place(int x, int y);
    void RemoveText(int startX, int startY, int endX, int endY);
    void RemoveColumns(int left, int top, int right, int bottom);

    TAdvCustomMemo& FMemo;
};
