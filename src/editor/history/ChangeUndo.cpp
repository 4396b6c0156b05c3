#include "editor/history/ChangeUndo.h"

#include "editor/text/WordWrap.h"

#include <algorithm>

namespace {

bool IsEmpty(const TSelectionRange& range) {
    return range.StartX == range.EndX && range.StartY == range.EndY;
}

} // namespace

TChangeUndo::TChangeUndo(TLineChanges changes, const TUndo& entry)
    : TUndo(entry.FUndoCurX0, entry.FUndoCurY0 < 0 ? entry.FUndoCurY : entry.FUndoCurY0, entry.FUndoCurX,
            entry.FUndoCurY, {}),
      FChanges(std::move(changes)), FSort(SortOf(entry)) {
    TakeSelections(entry);
}

TChangeUndo::TSort TChangeUndo::SortOf(const TUndo& entry) {
    if (const auto* deletion = dynamic_cast<const TDeleteCharUndo*>(&entry)) {
        if (deletion->FUndoText.contains(u'\r'))
            return TSort::Other;
        return deletion->FIsBackspace ? TSort::Backspace : TSort::Delete;
    }
    if (dynamic_cast<const TDeleteBufUndo*>(&entry))
        return TSort::Erasing;
    const bool typed = dynamic_cast<const TInsertCharUndo*>(&entry) != nullptr ||
                       dynamic_cast<const TOverwriteCharUndo*>(&entry) != nullptr;
    return typed && !entry.FUndoText.contains(u'\r') ? TSort::Typing : TSort::Other;
}

void TChangeUndo::TakeSelections(const TUndo& entry) {
    if (const auto* deletion = dynamic_cast<const TDeleteBufUndo*>(&entry)) {
        FBefore = deletion->Selection();
        FBlock = deletion->FBlock;
    } else if (const auto* replacement = dynamic_cast<const TReplaceUndo*>(&entry)) {
        FBefore = replacement->FBefore;
        FBlock = replacement->FBlock;
        FAfter = replacement->FAfter;
    }
}

bool TChangeUndo::Append(TLineChanges& changes, const TUndo& entry) {
    const TSort sort = SortOf(entry);
    const bool meets = IsMetBy(entry) && sort != TSort::Other && sort != TSort::Erasing &&
                       (sort == FSort || (sort == TSort::Typing && FSort == TSort::Erasing));
    if (!entry.FLinkedUndo && !meets)
        return false;
    for (TLineChange& change : changes) {
        if (FChanges.empty() || !FChanges.back().Append(change))
            FChanges.push_back(std::move(change));
    }
    FSort = sort;
    FUndoCurX = entry.FUndoCurX;
    FUndoCurY = entry.FUndoCurY;
    FAfter = {};
    return true;
}

void TChangeUndo::Saved() {
    for (TLineChange& change : FChanges)
        std::fill(change.States.begin(), change.States.end(), lmModified);
}

void TChangeUndo::PerformUndo() {
    Perform(TakeBack, FUndoCurX0, FUndoCurY0);
    if (!IsEmpty(FBefore))
        Memo->Selection.Take(FBefore, FBlock);
}

void TChangeUndo::PerformRedo() {
    Perform(MakeAgain, FUndoCurX, FUndoCurY);
    if (!IsEmpty(FAfter))
        Memo->Selection.Take(FAfter, /*block=*/false);
}

void TChangeUndo::Perform(void (*change)(const TLineChanges&, TAdvMemoStrings&), int x, int y) {
    TAdvMemoStrings& lines = *Memo->Lines;
    const bool wraps = Memo->Settings.FWordWrap != wwNone;
    {
        const TStringsUpdate update(lines);
        if (wraps)
            TWordWrap().Unwrap(lines);
        change(FChanges, lines);
        lines.Owners.front()->ArrangeLines();
    }
    if (wraps) { // where the caret stood between the cuts of then says nothing about those of now
        x = 0;
        y = RowOfLine(lines, FChanges.front().Row);
    }
    PlaceCaret(x, y);
}

/// The caret must not pad lines on its way.
void TChangeUndo::PlaceCaret(int x, int y) {
    const TAdvMemoStrings& lines = *Memo->Lines;
    if (lines.Count() == 0)
        return;
    y = std::clamp(y, 0, lines.Count() - 1);
    x = std::clamp(x, 0, int(lines[y].size()));
    Memo->Caret.SetColumn(0);
    Memo->Caret.SetLine(y);
    Memo->Caret.SetColumn(x);
    Memo->Selection.Clear();
}

void TChangeUndo::GoOn(int x0, int y0, int x, int y) {
    if (FUndoCurX != x0 || FUndoCurY != y0)
        return;
    FUndoCurX = x;
    FUndoCurY = y;
}
