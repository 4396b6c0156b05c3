#include "editor/place/Words.h"

#include "editor/place/MemoState.h"

#include <algorithm>

namespace {

template <class F> void Bounds(const string& line, int x, F breaks, int& from, int& to) {
    from = to = std::clamp(x, 0, int(line.size()));
    while (from > 0 && !breaks(line[from - 1]))
        --from;
    while (to < line.size() && !breaks(line[to]))
        ++to;
}

} // namespace

void TMemoWords::WordBounds(int x, int y, int& from, int& to) const {
    Bounds(
        FMemo.LineText(y), x, [this](QChar c) { return FMemo.Rules().IsWordBreakChar(c); }, from, to);
}

string TMemoWords::TokenAtXY(int x, int y) const {
    int from = 0;
    int to = 0;
    WordBounds(x, y, from, to);
    return FMemo.LineText(y).mid(from, to - from);
}

string TMemoWords::WordAtCursor() const {
    return TokenAtXY(FMemo.Caret().X(), FMemo.Caret().Y());
}

string TMemoWords::WordTillCursor() const {
    int from = 0;
    int to = 0;
    WordBounds(FMemo.Caret().X(), FMemo.Caret().Y(), from, to);
    return FMemo.LineText(FMemo.Caret().Y()).mid(from, std::max(0, FMemo.Caret().X() - from));
}

string TMemoWords::FullWordAtCursor() const {
    const string line = FMemo.LineText(FMemo.Caret().Y()).left(FMemo.Caret().X());
    qsizetype from = line.size();
    while (from > 0 && (line[from - 1] == u'.' || !FMemo.Rules().IsWordBreakChar(line[from - 1])))
        --from;
    return line.mid(from);
}

string TMemoWords::Delimiters() const {
    return FMemo.Settings.FWordBreaks.isEmpty() ? FMemo.Rules().Tables().Delimiters
                                                : FMemo.Settings.FWordBreaks;
}

int TMemoWords::TextFromPos(int x, int y) const {
    int offset = x;
    for (int row = 0; row < std::min(y, FMemo.Lines().Count()); ++row)
        offset += FMemo.LineLength(row) + (FMemo.IsContinuation(row + 1) ? 0 : 1);
    return offset;
}

void TMemoWords::PosFromText(int offset, int& x, int& y) const {
    x = std::max(0, offset);
    const int last = std::max(0, FMemo.Lines().Count() - 1);
    for (y = 0; y < last; ++y) {
        const int length = FMemo.LineLength(y);
        // A place between two pieces of a wrapped line is the start of the second.
        const bool continues = FMemo.IsContinuation(y + 1);
        if (continues ? x < length : x <= length)
            return;
        x -= length + (continues ? 0 : 1);
    }
    x = std::min(x, FMemo.LineLength(y));
}
