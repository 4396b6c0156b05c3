#include "editor/place/Folding.h"

#include "editor/place/MemoState.h"

#include <algorithm>

namespace {

/// How a line changes the nesting: blocks of lines before that it closes, and those that it leaves open.
struct TBalance {
    int Closes = 0;
    int Opens = 0;
};

TBalance BalanceOf(QStringView line, QStringView open, QStringView close) {
    TBalance balance;
    qsizetype nextOpen = line.indexOf(open);
    qsizetype nextClose = line.indexOf(close);
    while (nextOpen >= 0 || nextClose >= 0) {
        const bool opens = nextOpen >= 0 && (nextClose < 0 || nextOpen <= nextClose);
        const qsizetype at = opens ? nextOpen + open.size() : nextClose + close.size();
        if (opens)
            ++balance.Opens;
        else if (balance.Opens > 0)
            --balance.Opens;
        else
            ++balance.Closes;
        if (nextOpen >= 0 && nextOpen < at)
            nextOpen = line.indexOf(open, at);
        if (nextClose >= 0 && nextClose < at)
            nextClose = line.indexOf(close, at);
    }
    return balance;
}

} // namespace

bool TMemoFolding::Enabled() const {
    return FMemo.Settings.FCodeFolding;
}

void TMemoFolding::SetEnabled(bool enabled) {
    FMemo.Settings.FCodeFolding = enabled;
    FStale = true;
    if (enabled)
        AutoCodeFold();
    FMemo.RefreshControl();
}

void TMemoFolding::ClearFolds() {
    for (int row = 0; row < FMemo.Lines().Count(); ++row) {
        TLineProp* prop = FMemo.Lines().GetLineProp(row);
        if (!prop)
            continue;
        prop->FHasChildren = prop->FHasParent = false;
        prop->FLastChildOfParents = 0;
    }
}

void TMemoFolding::AutoCodeFold() {
    const TAdvCustomMemoStyler* styler = FMemo.GetStyler();
    if (!Enabled() || !styler || styler->FBlockStart.isEmpty() || styler->FBlockEnd.isEmpty())
        return;
    ClearFolds();
    TAdvMemoStrings& lines = FMemo.Lines();
    std::vector<int> open; // rows with blocks still open; a row counts once for each, but starts one fold
    for (int row = 0; row < lines.Count(); ++row) {
        const TBalance balance = BalanceOf(lines[row], styler->FBlockStart, styler->FBlockEnd);
        for (int i = 0; i < balance.Closes && !open.empty(); ++i) {
            const int start = open.back();
            open.pop_back();
            if (!open.empty() && open.back() == start)
                continue;
            lines.NeedLineProp(start).FHasChildren = true;
            ++lines.NeedLineProp(row).FLastChildOfParents;
        }
        open.insert(open.end(), size_t(balance.Opens), row);
    }
    PlaceParents();
}

/// Sets FHasParent on every row from the starts and ends of folds.
void TMemoFolding::PlaceParents() {
    TAdvMemoStrings& lines = FMemo.Lines();
    int depth = 0;
    for (int row = 0; row < lines.Count(); ++row) {
        TLineProp* prop = depth > 0 ? &lines.NeedLineProp(row) : lines.GetLineProp(row);
        if (!prop)
            continue;
        prop->FHasParent = depth > 0;
        depth = std::max(0, depth - prop->FLastChildOfParents) + (prop->FHasChildren ? 1 : 0);
    }
    FStale = true;
}

int TMemoFolding::FoldEnd(int line) const {
    const TAdvMemoStrings& lines = FMemo.Lines();
    const TLineProp* prop = lines.GetLineProp(line);
    if (!prop || !prop->FHasChildren)
        return line;
    int depth = 1;
    for (int row = line + 1; row < lines.Count(); ++row) {
        prop = lines.GetLineProp(row);
        if (!prop)
            continue;
        depth -= prop->FLastChildOfParents;
        if (depth <= 0)
            return row;
        depth += prop->FHasChildren ? 1 : 0;
    }
    return lines.Count() - 1;
}

void TMemoFolding::RemoveCodeFolding(int line) {
    TLineProp* start = FMemo.Lines().GetLineProp(line);
    if (!start || !start->FHasChildren)
        return;
    TLineProp* end = FMemo.Lines().GetLineProp(FoldEnd(line));
    if (end && end->FLastChildOfParents > 0)
        --end->FLastChildOfParents;
    start->FHasChildren = false;
    start->FExpanded = true;
    PlaceParents();
}

void TMemoFolding::MoveFoldEnd(int line) {
    TLineProp* prop = FMemo.Lines().GetLineProp(line);
    if (!prop || line == 0)
        return;
    TLineProp& above = FMemo.Lines().NeedLineProp(line - 1);
    int ends = std::exchange(prop->FLastChildOfParents, 0);
    if (ends > 0 && above.FHasChildren) { // nothing is left inside that fold
        above.FHasChildren = false;
        above.FExpanded = true;
        --ends;
    }
    above.FLastChildOfParents += ends;
    PlaceParents();
}

bool TMemoFolding::IsExpanded(int line) const {
    const TLineProp* prop = FMemo.Lines().GetLineProp(line);
    return prop == nullptr || prop->FExpanded;
}

void TMemoFolding::SetExpanded(int line, bool expanded) {
    TLineProp* prop = FMemo.Lines().GetLineProp(line);
    if (!Enabled() || !prop || !prop->FHasChildren || prop->FExpanded == expanded)
        return;
    prop->FExpanded = expanded;
    FMemo.Lines().TellFoldsChanged();
    if (!IsVisible(FMemo.Caret().Y()))
        FMemo.Caret().SetLine(line);
}

void TMemoFolding::Reveal(int line) {
    for (int above = line - 1; above >= 0 && !IsVisible(line); --above) {
        if (!IsExpanded(above) && FoldEnd(above) >= line)
            ExpandNode(above);
    }
}

bool TMemoFolding::RevealAll(int from, int to) {
    bool hidden = false;
    for (int line = from; line <= std::min(to, FMemo.Lines().Count() - 1); ++line) {
        if (IsVisible(line))
            continue;
        hidden = true;
        Reveal(line);
    }
    return hidden;
}

void TMemoFolding::CollapseAround(int line) {
    for (int start = line; start >= 0; --start) {
        const TLineProp* prop = FMemo.Lines().GetLineProp(start);
        if (prop && prop->FHasChildren && prop->FExpanded && FoldEnd(start) >= line)
            return CollapseNode(start);
    }
}

void TMemoFolding::Refresh() const {
    const TAdvMemoStrings& lines = FMemo.Lines();
    if (!FStale && FSeenCount == lines.Count())
        return;
    FStale = false;
    FSeenCount = lines.Count();
    FVisible.clear();
    FAnyClosed = false;
    for (int row = 0; Enabled() && row < lines.Count() && !FAnyClosed; ++row) {
        const TLineProp* prop = lines.GetLineProp(row);
        FAnyClosed = prop != nullptr && prop->FHasChildren && !prop->FExpanded;
    }
    int hidden = 0; // depth inside a closed fold; its first line shows, its last doesn't
    for (int row = 0; FAnyClosed && row < lines.Count(); ++row) {
        if (hidden == 0)
            FVisible.push_back(row);
        const TLineProp* prop = lines.GetLineProp(row);
        if (!prop)
            continue;
        hidden = std::max(0, hidden - prop->FLastChildOfParents);
        if (prop->FHasChildren && (hidden > 0 || !prop->FExpanded))
            ++hidden;
    }
}

bool TMemoFolding::IsVisible(int line) const {
    Refresh();
    return !FAnyClosed || std::binary_search(FVisible.begin(), FVisible.end(), line);
}

int TMemoFolding::StepVisible(int line, int count) const {
    Refresh();
    if (!FAnyClosed)
        return std::clamp(line + count, 0, std::max(0, FMemo.Lines().Count() - 1));
    const auto at = std::upper_bound(FVisible.begin(), FVisible.end(), line);
    const int index = int(at - FVisible.begin()) - 1 + count;
    return FVisible[size_t(std::clamp(index, 0, int(FVisible.size()) - 1))];
}

int TMemoFolding::VisibleBefore(int line) const {
    Refresh();
    if (!FAnyClosed)
        return std::clamp(line, 0, FMemo.Lines().Count());
    return int(std::lower_bound(FVisible.begin(), FVisible.end(), line) - FVisible.begin());
}

int TMemoFolding::VisibleCount() const {
    Refresh();
    return FAnyClosed ? int(FVisible.size()) : FMemo.Lines().Count();
}
