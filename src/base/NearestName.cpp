#include "base/NearestName.h"

#include <algorithm>
#include <vector>

namespace {

constexpr qsizetype LongestName = 200; ///< what is longer was never a name

/// Letters to change, add, take away or swap with their neighbour to make one of the other.
int Distance(const string& a, const string& b) {
    const auto same = [&](qsizetype i, qsizetype j) { return SameText(a.mid(i, 1), b.mid(j, 1)); };
    std::vector<std::vector<int>> cost(size_t(a.size() + 1), std::vector<int>(size_t(b.size() + 1)));
    const auto at = [&](qsizetype i, qsizetype j) -> int& { return cost[size_t(i)][size_t(j)]; };
    for (qsizetype i = 0; i <= a.size(); ++i)
        for (qsizetype j = 0; j <= b.size(); ++j) {
            at(i, j) = int(std::max(i, j));
            if (i == 0 || j == 0)
                continue;
            at(i, j) = std::min(
                {at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + (same(i - 1, j - 1) ? 0 : 1)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1))
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    return at(a.size(), b.size());
}

} // namespace

string NearestName(const string& name, const QStringList& candidates) {
    if (name.size() > LongestName)
        return {};
    string nearest;
    int least = std::max(1, int(name.size()) / 3) + 1;
    for (const string& candidate : candidates)
        if (const int distance = Distance(name, candidate.left(LongestName)); distance < least) {
            nearest = candidate;
            least = distance;
        }
    return nearest;
}

string DidYouMean(const string& name, const QStringList& candidates) {
    const string nearest = NearestName(name, candidates);
    return nearest.isEmpty() ? string() : QStringLiteral(", did you mean \"%1\"?").arg(nearest);
}
