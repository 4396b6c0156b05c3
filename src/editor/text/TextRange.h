#pragma once
/// The four selection fields: where the selection was begun, and its moving end. Columns and lines from 0.
struct TSelectionRange {
    int StartX = 0;
    int StartY = 0;
    int EndX = 0;
    int EndY = 0;
    bool operator==(const TSelectionRange&) const = default;
};
