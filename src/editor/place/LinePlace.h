#pragma once
// Places as users count them: lines and columns from 1, and a line that word wrap cuts is one line.
#include "base/Text.h"

#include <optional>

class TMemoState;

struct TLinePlace {
    int Line = 1;
    int Column = 1;
    bool operator==(const TLinePlace&) const = default;
};

/// Reads "line" or "line:column"; a comma does for the colon, and blanks don't count. Empty for anything
/// else.
[[nodiscard]] std::optional<TLinePlace> ReadPlace(const string& text);

[[nodiscard]] TLinePlace PlaceOfCaret(const TMemoState& memo);
/// Puts the caret there, or as near as the text goes, with nothing selected and the folds around it opened.
void GoToPlace(TMemoState& memo, const TLinePlace& place);
