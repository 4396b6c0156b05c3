#pragma once
// The syntax state that each line begins with, recomputed from the nearest line whose state is known.
#include "editor/style/StyleRules.h"
#include "editor/text/LineStore.h"

class TLineStates {
public:
    /// The state that a scan of `line` begins with; keeps it in the line's TLineProp, and one checkpoint
    /// every 20 lines on the way.
    [[nodiscard]] TStyle LineStartState(int line, TAdvMemoStrings& lines, const TStyleRules& rules);

    /// The rows from `row` on are others now, or begin differently.
    void Invalidate(int row) { FValid = std::min(FValid, std::max(row, 0)); }
    /// The rules changed: nothing that was kept holds.
    void Reset() { FValid = 0; }

private:
    // Kept states of rows before this one hold; those behind are leftovers.
    int FValid = 0;
};
