#pragma once
// Folds: nested ranges of lines that the styler's block markers make, and that can be closed.
#include <vector>

class TMemoState;

class TMemoFolding {
public:
    explicit TMemoFolding(TMemoState& memo) : FMemo(memo) {}

    [[nodiscard]] bool Enabled() const;
    void SetEnabled(bool enabled);

    /// Finds the folds of the whole text anew; closed ones stay closed where a fold still starts. A line
    /// starts one fold at most.
    void AutoCodeFold();
    void RemoveCodeFolding(int line);
    /// The fold ends at `line` go to the line before it.
    void MoveFoldEnd(int line);
    void ExpandNode(int line) { SetExpanded(line, true); }
    void CollapseNode(int line) { SetExpanded(line, false); }
    /// Opens the closed folds that hide `line`.
    void Reveal(int line);
    /// Opens what hides any of the lines; false if nothing does.
    bool RevealAll(int from, int to);
    /// Closes the innermost open fold that `line` lies in or starts.
    void CollapseAround(int line);
    [[nodiscard]] bool IsExpanded(int line) const;
    /// The last line of the fold that starts at `line`; `line` itself if none does.
    [[nodiscard]] int FoldEnd(int line) const;

    [[nodiscard]] bool IsVisible(int line) const;
    /// `count` visible lines below `line`, above if negative; stops at the first and last visible one.
    [[nodiscard]] int StepVisible(int line, int count) const;
    /// Visible lines before `line`, and of the whole text.
    [[nodiscard]] int VisibleBefore(int line) const;
    [[nodiscard]] int VisibleCount() const;

    /// Lines came or went.
    void LinesChanged() { FStale = true; }

private:
    void SetExpanded(int line, bool expanded);
    void ClearFolds();
    void PlaceParents();
    void Refresh() const;

    TMemoState& FMemo;
    mutable bool FStale = true;
    mutable int FSeenCount = 0;
    mutable bool FAnyClosed = false;
    mutable std::vector<int> FVisible; // rows that show, ascending; only filled when a fold is closed
};
