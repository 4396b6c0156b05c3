#pragma once
// Edits of more than a character: blocks, the selection, the clipboard, indentation.
#include "editor/history/UndoTarget.h"

class TMemoState;

class TMemoBlocks final : public TUndoBlocks {
public:
    explicit TMemoBlocks(TMemoState& memo) : FMemo(memo) {}

    /// Puts `text` in at the caret, with any kind of line breaks; the caret goes behind it.
    void InsertBuffer(const string& text, Linked linked) override;
    void InsertBuffer(const string& text) { InsertBuffer(text, Linked::No); }
    /// Puts each line of `text` in at the caret's column, in rows from the caret's on.
    void InsertColumns(const string& text) override;
    void DeleteSelection() override;
    /// Puts `text` in the place of a range in text order, as one undo step. Caret and selection go to the two
    /// offsets (TMemoWords::TextFromPos), of which the second is the caret's. Folds that hide any of it
    /// open, and marks on its lines are given up. With word wrap the range must begin where a line does,
    /// wherever wrapping cuts.
    void ReplaceRange(const TSelectionRange& range, const string& text, int anchor, int caret);

    void CutToClipBoard();
    void CopyToClipBoard();
    void PasteFromClipBoard();

    /// Puts `indent` blanks before each row, or takes up to that many away if negative.
    void BlockIndent(int rowFrom, int rowTo, int indent, RecordUndo record) override;

private:
    void Place(int x, int y);
    void RemoveText(int startX, int startY, int endX, int endY);
    void RemoveColumns(int left, int top, int right, int bottom);

    TMemoState& FMemo;
};
