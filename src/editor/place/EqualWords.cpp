#include "editor/place/EqualWords.h"

#include "editor/place/MemoState.h"

namespace {

bool IsWordChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'$';
}

bool IsWhole(QStringView line, qsizetype from, qsizetype to) {
    return (from == 0 || !IsWordChar(line[from - 1])) && (to == line.size() || !IsWordChar(line[to]));
}

} // namespace

string TEqualWords::Word() const {
    const string line = FMemo.LineText(FMemo.Caret().Y());
    qsizetype from = std::min<qsizetype>(FMemo.Caret().X(), line.size());
    qsizetype to = from;
    while (from > 0 && IsWordChar(line[from - 1]))
        --from;
    while (to < line.size() && IsWordChar(line[to]))
        ++to;
    string word = line.mid(from, to - from);
    const bool other = !FMemo.Selection().IsEmpty() && FMemo.SelText() != word;
    return other || word.size() < 2 || word[0].isDigit() ? string() : word;
}

std::vector<TColumnRange> TEqualWords::ColumnsOf(int row) const {
    std::vector<TColumnRange> columns;
    const string word = Word();
    const string line = FMemo.LineText(row);
    if (word.isEmpty() || !line.contains(word))
        return columns;
    int column = 0;
    for (const TStyleRun& run : FMemo.RunsOf(row)) {
        const bool code = !run.State.isComment && !run.State.isBracket && !run.State.iskeyWord;
        for (qsizetype at = 0; code && (at = run.Text.indexOf(word, at)) >= 0; at += word.size()) {
            const int from = column + int(at);
            if (IsWhole(line, from, from + word.size()))
                columns.push_back({from, from + int(word.size())});
        }
        column += int(run.Text.size());
    }
    return columns;
}
