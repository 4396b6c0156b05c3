#pragma once
// The bracket at the caret and its partner: ()[]{} outside strings and comments.
class TMemoState;

struct TBracketMatch {
    int X = -1, Y = -1;           ///< the bracket at the caret; -1: there is none with a partner
    int OtherX = -1, OtherY = -1; ///< its partner
    [[nodiscard]] bool Found() const { return Y >= 0; }
    bool operator==(const TBracketMatch&) const = default;
};

/// The bracket before the caret counts first, then the one behind it. Asked at every keystroke, the search
/// gives up after 500 rows or 32 K characters, so that a megabyte stays fast.
[[nodiscard]] TBracketMatch MatchBracket(TMemoState& memo);
