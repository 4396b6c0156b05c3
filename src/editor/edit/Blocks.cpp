#include "editor/edit/Blocks.h"

#include "editor/place/MemoState.h"

#include <algorithm>
#include <tuple>

namespace {

/// The pieces between line breaks of any kind, an empty last one too.
std::vector<string> Pieces(string text) {
    text.replace("\r\n", "\n").replace(u'\r', u'\n');
    const QStringList pieces = text.split(u'\n');
    return {pieces.begin(), pieces.end()};
}

/// Remembers which rows were unchanged since the last save, for an edit that puts many in anew.
class TRowMarks {
public:
    TRowMarks(TMemoState& memo, int from, int to) : FMemo(memo), FFrom(from) {
        for (int row = from; row <= to; ++row)
            FRows.emplace_back(memo.LineText(row), memo.GetModifiedState(row));
    }
    /// Rows from the first one on that have the same text again get their marks back.
    void Restore() const {
        for (size_t i = 0; i < FRows.size(); ++i) {
            const int row = FFrom + int(i);
            if (FMemo.LineText(row) == FRows[i].first)
                FMemo.SetModifiedStateInt(row, FRows[i].second);
        }
    }

private:
    TMemoState& FMemo;
    int FFrom;
    std::vector<std::pair<string, TLineModifiedState>> FRows;
};

} // namespace

void TMemoBlocks::InsertBuffer(const string& text, Linked linked) {
    TMemoCaret& caret = FMemo.Caret();
    TAdvMemoStrings& lines = FMemo.Lines();
    if (text.isEmpty())
        return;
    caret.SetLine(caret.Y());
    const int x0 = caret.X();
    const int y0 = caret.Y();
    const string whole = TabsToBlanks(text, FMemo.Settings.FTabSize);
    std::vector<string> pieces = Pieces(whole);
    const int added = int(pieces.size()) - 1;
    const string line = FMemo.LineText(y0);
    const int endX = int(pieces.back().size()) + (added == 0 ? x0 : 0);
    FMemo.CompoundEdit([&] {
        if (x0 == 0 && added > 0 && !FMemo.IsContinuation(y0)) {
            // Whole lines go in before the caret's, which keeps its marks.
            lines.Put(y0, pieces.back() + line);
            pieces.pop_back();
            lines.InsertRows(y0, pieces);
        } else {
            pieces.back() += line.mid(x0);
            lines.Put(y0, line.left(x0) + pieces.front());
            pieces.erase(pieces.begin());
            if (added > 0)
                lines.InsertRows(y0 + 1, pieces);
        }
        for (int row = y0; row <= y0 + added; ++row)
            FMemo.SetModifiedState(row);
        Place(endX, y0 + added);
    });
    FMemo.ClearSelection();
    FMemo.AddUndoStep(
        std::make_unique<TPasteUndo>(x0, y0, caret.X(), caret.Y(), whole, linked == Linked::Yes));
}

/// Puts the caret where an edit ended, through a new wrapping if that is on.
void TMemoBlocks::Place(int x, int y) {
    FMemo.Folding().AutoCodeFold();
    if (FMemo.Settings.FWordWrap != wwNone) {
        const int offset = FMemo.Words().TextFromPos(x, y);
        FMemo.UpdateWrap();
        FMemo.Words().PosFromText(offset, x, y);
    }
    if (y != FMemo.Caret().Y())
        FMemo.Caret().Write(x, FMemo.Caret().Y()); // the old column might pad the new line
    FMemo.Caret().MoveTo(x, y);
}

void TMemoBlocks::InsertColumns(const string& text) {
    TMemoCaret& caret = FMemo.Caret();
    const int x = caret.X();
    int row = caret.Y();
    FMemo.CompoundEdit([&] {
        for (const string& piece : Pieces(text)) {
            if (row < FMemo.Lines().Count() && !piece.isEmpty())
                FMemo.Lines().Put(row, FMemo.LineText(row).insert(x, piece));
            ++row;
        }
    });
}

void TMemoBlocks::DeleteSelection() {
    TMemoSelection& selection = FMemo.Selection();
    TMemoCaret& caret = FMemo.Caret();
    if (selection.IsEmpty())
        return;
    const TSelectionRange range = selection.Ordered();
    auto entry =
        std::make_unique<TDeleteBufUndo>(caret.X(), caret.Y(), range.StartX, range.StartY, selection.Text());
    entry->SetSelection(selection.Range());
    entry->FBlock = selection.IsBlock();
    FMemo.CompoundEdit([&] {
        if (entry->FBlock)
            RemoveColumns(range.StartX, range.StartY, range.EndX, range.EndY);
        else
            RemoveText(range.StartX, range.StartY, range.EndX, range.EndY);
        Place(range.StartX, range.StartY);
    });
    entry->FUndoCurX = caret.X();
    entry->FUndoCurY = caret.Y();
    FMemo.ClearSelection();
    FMemo.AddUndoStep(std::move(entry));
}

void TMemoBlocks::ReplaceRange(const TSelectionRange& range, const string& text, int anchor, int caret) {
    TMemoSelection& selection = FMemo.Selection();
    const TSelectionRange before = selection.Range();
    const bool block = selection.IsBlock();
    const int x0 = FMemo.Caret().X();
    const int y0 = FMemo.Caret().Y();
    FMemo.Folding().Reveal(range.StartY);
    for (int row = range.StartY; row <= range.EndY; ++row)
        FMemo.Folding().ExpandNode(row);
    const TRowMarks marks(FMemo, range.StartY, range.EndY);
    const int count = FMemo.Lines().Count();
    selection.BeginUpdate();
    selection.Take(range, /*block=*/false);
    auto entry = std::make_unique<TReplaceUndo>(range, selection.Text(), text);
    TSelectionRange after;
    FMemo.CompoundEdit([&] {
        FMemo.UndoList().Perform(*entry);
        if (FMemo.Lines().Count() == count)
            marks.Restore();
        FMemo.Words().PosFromText(anchor, after.StartX, after.StartY);
        FMemo.Words().PosFromText(caret, after.EndX, after.EndY);
        FMemo.Caret().MoveTo(after.EndX, after.EndY);
        selection.Take(after, /*block=*/false);
    });
    selection.EndUpdate();
    entry->FBefore = before;
    entry->FBlock = block;
    entry->FAfter = after;
    std::tie(entry->FUndoCurX0, entry->FUndoCurY0) = std::tie(x0, y0);
    std::tie(entry->FUndoCurX, entry->FUndoCurY) = std::tie(after.EndX, after.EndY);
    FMemo.AddUndoStep(std::move(entry));
}

void TMemoBlocks::RemoveText(int startX, int startY, int endX, int endY) {
    TAdvMemoStrings& lines = FMemo.Lines();
    if (startY >= lines.Count())
        return;
    endY = std::min(endY, lines.Count() - 1);
    lines.Put(startY, FMemo.LineText(startY).left(startX) + FMemo.LineText(endY).mid(endX));
    if (endY > startY)
        lines.RemoveRows(startY + 1, endY - startY);
    FMemo.SetModifiedState(startY);
}

void TMemoBlocks::RemoveColumns(int left, int top, int right, int bottom) {
    for (int row = top; row <= std::min(bottom, FMemo.Lines().Count() - 1); ++row) {
        if (left >= FMemo.LineLength(row))
            continue;
        FMemo.Lines().Put(row, FMemo.LineText(row).remove(left, right - left));
        FMemo.SetModifiedState(row);
    }
}

void TMemoBlocks::CopyToClipBoard() {
    if (FMemo.Clipboard && !FMemo.Selection().IsEmpty())
        FMemo.Clipboard->SetText(FMemo.Selection().Text().replace(u'\r', u'\n'));
}

void TMemoBlocks::CutToClipBoard() {
    if (!FMemo.Clipboard || FMemo.Selection().IsEmpty())
        return;
    CopyToClipBoard();
    DeleteSelection();
}

void TMemoBlocks::PasteFromClipBoard() {
    const string text = FMemo.Clipboard ? FMemo.Clipboard->Text() : string();
    if (text.isEmpty())
        return;
    const bool replaces = !FMemo.Selection().IsEmpty();
    DeleteSelection();
    InsertBuffer(text, replaces ? Linked::Yes : Linked::No);
}

void TMemoBlocks::BlockIndent(int rowFrom, int rowTo, int indent, RecordUndo record) {
    TAdvMemoStrings& lines = FMemo.Lines();
    rowTo = std::min(rowTo, lines.Count() - 1);
    auto entry = std::make_unique<TIndentUndo>(rowFrom, rowTo, indent);
    const bool exact = FMemo.UndoList().IsExact();
    if (exact) { // otherwise the entry has no places
        entry->FUndoCurX0 = FMemo.Caret().X();
        entry->FUndoCurY0 = FMemo.Caret().Y();
    }
    FMemo.CompoundEdit([&] {
        for (int row = rowFrom; row <= rowTo; ++row) {
            const string line = FMemo.LineText(row);
            qsizetype blanks = 0;
            while (blanks < std::min<qsizetype>(-indent, line.size()) && line[blanks] == u' ')
                ++blanks;
            if (indent > 0)
                lines.Put(row, string(indent, u' ') + line);
            else if (blanks > 0)
                lines.Put(row, line.mid(blanks));
            if (indent > 0 || blanks > 0)
                FMemo.SetModifiedState(row);
        }
        FMemo.UpdateWrap();
        FMemo.Caret().SetColumn(FMemo.Caret().X()); // its line may be shorter now
    });
    if (exact) {
        entry->FUndoCurX = FMemo.Caret().X();
        entry->FUndoCurY = FMemo.Caret().Y();
    }
    if (record == RecordUndo::Yes)
        FMemo.AddUndoStep(std::move(entry));
}
