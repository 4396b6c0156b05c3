#pragma once
// Cuts a line into runs of equal appearance. Time is linear in the line's length, but for characters times
// the number of elements of the styler.
#include "editor/style/StyleRules.h"

struct TStyleRun {
    string Text;
    TStyle State;
    bool CustomDraw = false; ///< a keyword that the styler paints
    bool operator==(const TStyleRun&) const = default;
};

/// Collects runs and merges neighbours of equal state.
class TRunList {
public:
    /// Clears what lasts for one run in `state`: number, keyword, delimiter, URL and highlight.
    void AddRun(QStringView text, TStyle& state);
    /// A run of its own that the styler paints.
    void AddCustomDrawn(QStringView text, TStyle& state);
    [[nodiscard]] std::vector<TStyleRun> Take() { return std::move(FRuns); }

private:
    std::vector<TStyleRun> FRuns;
    bool FOpen = false;
};

/// Scans one piece of a line; `state` is the state at its start and becomes that at its end. True when the
/// piece ran into a line comment, which leaves isComment set for the rest of the line.
[[nodiscard]] bool ScanLine(QStringView text, TStyle& state, const TStyleRules& rules, TRunList& runs);

/// The runs of a whole line that starts in `state`, its URLs told apart.
[[nodiscard]] std::vector<TStyleRun> RunsOfLine(QStringView line, TStyle state, const TStyleRules& rules);
