#include "editor/place/BracketMatch.h"

#include "editor/place/MemoState.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int MostRows = 500;
constexpr int MostCharacters = 32 * 1024;

struct TBracket {
    int X;
    bool Opens;
};

/// Which pair a character belongs to, and its side.
int PairOf(QChar c, bool& opens) {
    constexpr QStringView Open = u"([{";
    constexpr QStringView Close = u")]}";
    opens = Open.contains(c);
    return int(opens ? Open.indexOf(c) : Close.indexOf(c));
}

class TBracketSearch {
public:
    explicit TBracketSearch(TMemoState& memo) : FMemo(memo) {}

    [[nodiscard]] TBracketMatch From(int x, int y) {
        const string line = FMemo.LineText(y);
        bool opens = false;
        FPair = x >= 0 && x < line.size() ? PairOf(line[x], opens) : -1;
        if (FPair < 0 || !Affords(y))
            return {};
        std::vector<TBracket> row = BracketsOf(y);
        const auto at =
            std::find_if(row.begin(), row.end(), [x](const TBracket& bracket) { return bracket.X == x; });
        if (at == row.end())
            return {}; // in a string or a comment
        FFound = {x, y, -1, -1};
        FDepth = 0;
        const bool found =
            opens ? Walk(at, row.end(), y, /*opens=*/true) || Down(y + 1)
                  : Walk(std::make_reverse_iterator(at + 1), row.rend(), y, /*opens=*/false) || Up(y - 1);
        return found ? FFound : TBracketMatch();
    }

private:
    [[nodiscard]] bool Affords(int row) {
        FCharacters += FMemo.LineLength(row);
        return FRows++ < MostRows && FCharacters <= MostCharacters;
    }

    /// The brackets of the pair in a row that are code.
    [[nodiscard]] std::vector<TBracket> BracketsOf(int row) {
        std::vector<TBracket> brackets;
        int column = 0;
        for (const TStyleRun& run : FMemo.RunsOf(row)) {
            const bool code = !run.State.isComment && !run.State.isBracket;
            for (int i = 0; code && i < run.Text.size(); ++i) {
                bool opens = false;
                if (PairOf(run.Text[i], opens) == FPair)
                    brackets.push_back({column + i, opens});
            }
            column += int(run.Text.size());
        }
        return brackets;
    }

    /// Goes along the brackets of a row; true at the partner. `opens`: the side that nests deeper.
    template <class I> bool Walk(I from, I to, int row, bool opens) {
        for (I at = from; at != to; ++at) {
            FDepth += at->Opens == opens ? 1 : -1;
            if (FDepth > 0)
                continue;
            FFound.OtherX = at->X;
            FFound.OtherY = row;
            return true;
        }
        return false;
    }

    bool Down(int row) {
        for (; row < FMemo.Lines().Count() && Affords(row); ++row) {
            const std::vector<TBracket> brackets = BracketsOf(row);
            if (Walk(brackets.begin(), brackets.end(), row, /*opens=*/true))
                return true;
        }
        return false;
    }

    /// In pieces, each asked for from top to bottom: that is the cheap order.
    bool Up(int row) {
        constexpr int Piece = 32;
        while (row >= 0) {
            int first = row;
            while (first > 0 && row - first < Piece - 1)
                --first;
            std::vector<std::vector<TBracket>> brackets;
            for (int at = first; at <= row; ++at)
                brackets.push_back(Affords(at) ? BracketsOf(at) : std::vector<TBracket>());
            if (FRows > MostRows || FCharacters > MostCharacters)
                return false;
            for (; row >= first; --row) {
                const std::vector<TBracket>& here = brackets[size_t(row - first)];
                if (Walk(here.rbegin(), here.rend(), row, /*opens=*/false))
                    return true;
            }
        }
        return false;
    }

    TMemoState& FMemo;
    TBracketMatch FFound;
    int FPair = -1;
    int FDepth = 0;
    int FRows = 0;
    int FCharacters = 0;
};

} // namespace

TBracketMatch MatchBracket(TMemoState& memo) {
    const int x = memo.Caret().X();
    const int y = memo.Caret().Y();
    const TBracketMatch before = TBracketSearch(memo).From(x - 1, y);
    return before.Found() ? before : TBracketSearch(memo).From(x, y);
}
