#include "editor/edit/SmartTabs.h"

#include "editor/place/MemoState.h"

#include <algorithm>

int SmartTabIndent(const TMemoState& memo) {
    const int x = memo.Caret().X();
    for (int row = memo.Caret().Y() - 1; row >= 0; --row) {
        const string line = memo.LineText(row);
        qsizetype at = x;
        while (at < line.size() && line[at] != u' ')
            ++at;
        while (at < line.size() && line[at] == u' ')
            ++at;
        if (at < line.size())
            return int(at) - x;
    }
    return 0;
}

namespace {

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

/// The start of the word that ends left of `x`; -1 if the line has none there.
int WordStartBefore(const string& line, int x) {
    qsizetype at = std::min<qsizetype>(x - 1, line.size() - 1);
    while (at >= 0 && IsBlank(line[at]))
        --at;
    if (at < 0)
        return -1;
    while (at > 0 && !IsBlank(line[at - 1]))
        --at;
    return int(at);
}

} // namespace

int SmartBackTarget(const TMemoState& memo) {
    const int x = memo.Caret().X();
    if (memo.Caret().Y() < 2)
        return x - 1;
    for (int row = memo.Caret().Y() - 1; row >= 0; --row) {
        string line = memo.LineText(row);
        while (memo.IsContinuation(row) && row > 0)
            line.prepend(memo.LineText(--row));
        if (const int start = WordStartBefore(line, x); start >= 0)
            return start;
    }
    return x - 1;
}
