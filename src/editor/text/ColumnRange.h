#pragma once
/// Columns of a row.
struct TColumnRange {
    int From = 0;
    int To = 0; ///< excluded
    bool operator==(const TColumnRange&) const = default;
};
