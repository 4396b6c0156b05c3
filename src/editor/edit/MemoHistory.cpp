#include "editor/edit/MemoHistory.h"

#include "base/Exceptions.h"
#include "editor/edit/MemoEditor.h"
#include "editor/text/Characters.h"

namespace {

bool IsWhole(const TAdvMemoStrings& lines) {
    for (int row = 0; row < lines.Count(); ++row)
        if (!lines[row].isValidUtf16())
            return false;
    return true;
}

/// The step switches overwriting itself.
bool TogglesOverwrite(const TAdvUndoList& list, THistoryStep step) {
    const int index = list.Position() - (step == THistoryStep::Redo ? 1 : 0);
    return index >= 0 && index < list.Count() &&
           dynamic_cast<TInsertOverwriteUndo*>(&list.Get(index)) != nullptr;
}

/// Halves of pairs that a history out of step leaves (an undone entry may grow, and its redo then takes more
/// than it should) are made visible in place, so that the other entries still fit.
void ReplaceHalfPairs(TAdvMemoStrings& lines) {
    for (int row = 0; row < lines.Count(); ++row)
        if (!lines[row].isValidUtf16())
            lines.Put(row, WithoutHalfPairs(lines[row]));
}

} // namespace

void InHistory(TMemoEditor& memo, THistoryStep step, const std::function<void()>& work) {
    const bool toggles = TogglesOverwrite(memo.UndoList(), step);
    const bool whole = IsWhole(memo.Lines());
    const bool indents = memo.Settings.FAutoIndent;
    const bool overwrites = memo.Settings.FOverwrite;
    memo.Settings.FOverwrite = overwrites && toggles;
    try {
        work();
    } catch (const Exception&) {
        memo.UndoList().Clear();
        memo.Settings.FAutoIndent = indents;
    }
    if (!toggles)
        memo.Settings.FOverwrite = overwrites;
    if (whole)
        ReplaceHalfPairs(memo.Lines());
}
