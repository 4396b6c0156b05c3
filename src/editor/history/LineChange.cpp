#include "editor/history/LineChange.h"

#include "editor/text/MemoSettings.h"
#include "editor/text/WordWrap.h"

#include <algorithm>

namespace {

/// Puts `by` in the place of the rows from `row` on that hold `old`; rows that stay keep what belongs to
/// them.
void Exchange(TAdvMemoStrings& lines, int row, const std::vector<string>& old,
              const std::vector<string>& by) {
    if (lines.Count() == 0)
        lines.InsertRows(0, {string()});
    const size_t common = std::min(old.size(), by.size());
    for (size_t i = 0; i < common; ++i) {
        if (lines[row + int(i)] != by[i])
            lines.Put(row + int(i), by[i]);
    }
    const int behind = row + int(common);
    if (by.size() > common)
        lines.InsertRows(behind, {by.begin() + std::ptrdiff_t(common), by.end()});
    else if (old.size() > common)
        lines.RemoveRows(behind, int(old.size() - common));
}

} // namespace

bool TLineChange::Append(const TLineChange& next) {
    const bool goesOn = Old.size() == 1 && New.size() == 1 && next.Row == Row && next.Old.size() == 1 &&
                        next.New.size() == 1 && next.Old == New;
    if (goesOn)
        New = next.New;
    return goesOn;
}

void TakeBack(const TLineChanges& changes, TAdvMemoStrings& lines) {
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        Exchange(lines, change->Row, change->New, change->Old);
        for (size_t i = 0; i < change->States.size(); ++i)
            (void)lines.SetModifiedState(change->Row + int(i), change->States[i]);
    }
}

void MakeAgain(const TLineChanges& changes, TAdvMemoStrings& lines) {
    for (const TLineChange& change : changes) {
        Exchange(lines, change.Row, change.Old, change.New);
        for (size_t i = 0; i < change.New.size(); ++i)
            (void)lines.SetModifiedState(change.Row + int(i), lmModified);
    }
}

bool TChangeJournal::Wraps() const {
    return !FLines->Owners.empty() && FLines->Owners.front()->StoreSettings().FWordWrap != wwNone;
}

void TChangeJournal::Watch(TAdvMemoStrings* lines) {
    if (FLines)
        FLines->Journal = nullptr;
    FLines = lines;
    if (FLines)
        FLines->Journal = this;
    Restart();
}

void TChangeJournal::Restart() {
    FChanges.clear();
    FTaken = FLines && Wraps() ? WholeLines(*FLines) : std::vector<string>();
}

void TChangeJournal::Replaces(int row, int count, const std::vector<string>& by) {
    if (Paused || Wraps())
        return;
    TLineChange change{row, {}, by, {}};
    if (FLines->Count() == 0)
        change = {0, {string()}, by, {lmUnmodified}};
    for (int i = row; i < row + count; ++i) {
        change.Old.push_back(FLines->Get(i));
        change.States.push_back(FLines->ModifiedState(i));
    }
    if (count == FLines->Count() && change.New.empty())
        change.New.emplace_back();
    if (change.Old != change.New && (FChanges.empty() || !FChanges.back().Append(change)))
        FChanges.push_back(std::move(change));
}

/// Finds the stretch of lines that are others now.
void TChangeJournal::Compare() {
    std::vector<string> now = WholeLines(*FLines);
    const auto [from, nowFrom] = std::mismatch(FTaken.begin(), FTaken.end(), now.begin(), now.end());
    auto to = FTaken.end();
    auto nowTo = now.end();
    while (to != from && nowTo != nowFrom && *std::prev(to) == *std::prev(nowTo)) {
        --to;
        --nowTo;
    }
    if (from != to || nowFrom != nowTo) {
        TLineChange change{int(from - FTaken.begin()), {from, to}, {nowFrom, nowTo}, {}};
        change.States.assign(change.Old.size(), lmModified);
        FChanges.push_back(std::move(change));
    }
    FTaken = std::move(now);
}

TLineChanges TChangeJournal::Take() {
    if (Wraps())
        Compare();
    return std::exchange(FChanges, {});
}
