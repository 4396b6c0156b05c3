#include "editor/text/TextForm.h"

#include "editor/text/LineStore.h"

#include <algorithm>

namespace {

struct TFormLine {
    QStringView Text;
    QStringView End; // empty behind the last line
};

std::vector<TFormLine> LinesOf(const string& text) {
    const QStringView whole = text;
    std::vector<TFormLine> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < whole.size(); ++i) {
        if (whole[i] != u'\r' && whole[i] != u'\n')
            continue;
        const bool pair = whole[i] == u'\r' && i + 1 < whole.size() && whole[i + 1] == u'\n';
        lines.push_back({whole.mid(start, i - start), whole.mid(i, pair ? 2 : 1)});
        i += pair ? 1 : 0;
        start = i + 1;
    }
    lines.push_back({whole.mid(start), {}});
    return lines;
}

/// What most lines end with; a line feed where no line ends.
QStringView MostUsedEnd(const std::vector<TFormLine>& lines) {
    const QStringView ends[] = {u"\n", u"\r\n", u"\r"};
    const auto count = [&lines](QStringView end) {
        return std::count_if(lines.begin(), lines.end(),
                             [end](const TFormLine& line) { return line.End == end; });
    };
    return *std::max_element(std::begin(ends), std::end(ends),
                             [&count](QStringView a, QStringView b) { return count(a) < count(b); });
}

/// For each new line the old one that it is, or -1: the shortest script of insertions and deletions (Myers,
/// An O(ND) Difference Algorithm, 1986). Texts that have little in common aren't compared to the end.
class TLineMatch {
public:
    TLineMatch(const std::vector<string>& old, const std::vector<string>& now)
        : FOld(old), FNow(now), FMatch(now.size(), -1) {}

    std::vector<int> Find() {
        int head = 0;
        int oldEnd = int(FOld.size());
        int nowEnd = int(FNow.size());
        while (head < oldEnd && head < nowEnd && FOld[size_t(head)] == FNow[size_t(head)]) {
            FMatch[size_t(head)] = head;
            ++head;
        }
        while (oldEnd > head && nowEnd > head && FOld[size_t(oldEnd) - 1] == FNow[size_t(nowEnd) - 1])
            FMatch[size_t(--nowEnd)] = --oldEnd;
        Compare(head, oldEnd, nowEnd);
        return std::move(FMatch);
    }

private:
    static constexpr int MostSteps = 2000;

    void Compare(int head, int oldEnd, int nowEnd) {
        const int n = oldEnd - head;
        const int m = nowEnd - head;
        const int most = std::min(n + m, MostSteps);
        std::vector<std::vector<int>> rounds; // the farthest place on each diagonal, round by round
        std::vector<int> farthest(size_t(2 * most + 3), 0);
        for (int d = 0; d <= most; ++d) {
            rounds.push_back(farthest);
            for (int k = -d; k <= d; k += 2) {
                const auto at = [&](int diagonal) -> int& { return farthest[size_t(diagonal + most + 1)]; };
                int x = k == -d || (k != d && at(k - 1) < at(k + 1)) ? at(k + 1) : at(k - 1) + 1;
                while (x < n && x - k < m && FOld[size_t(head + x)] == FNow[size_t(head + x - k)])
                    ++x;
                at(k) = x;
                if (x >= n && x - k >= m)
                    return Trace(rounds, head, n, m, most);
            }
        }
    }

    void Trace(const std::vector<std::vector<int>>& rounds, int head, int x, int y, int most) {
        for (int d = int(rounds.size()) - 1; d >= 0; --d) {
            const auto at = [&](int diagonal) { return rounds[size_t(d)][size_t(diagonal + most + 1)]; };
            const int k = x - y;
            const int from = k == -d || (k != d && at(k - 1) < at(k + 1)) ? k + 1 : k - 1;
            const int beforeX = d == 0 ? 0 : at(from);
            const int beforeY = d == 0 ? 0 : beforeX - from;
            while (x > beforeX && y > beforeY) {
                --x;
                --y;
                FMatch[size_t(head + y)] = head + x;
            }
            x = beforeX;
            y = beforeY;
        }
    }

    const std::vector<string>& FOld;
    const std::vector<string>& FNow;
    std::vector<int> FMatch;
};

/// How many characters at the start of `raw` show as the first `shown` ones; a tab that shows in part isn't
/// one.
qsizetype RawLength(QStringView raw, qsizetype shown, int tabSize) {
    qsizetype length = 0;
    for (; length < raw.size(); ++length) {
        shown -= raw[length] == u'\t' ? tabSize : 1;
        if (shown < 0)
            break;
    }
    return length;
}

qsizetype ShownLength(QStringView raw, int tabSize) {
    return raw.size() + raw.count(u'\t') * (tabSize - 1);
}

/// An edited line, with the tabs before and behind what was changed.
string Edited(QStringView raw, const string& old, const string& now, int tabSize) {
    const qsizetype most = std::min(old.size(), now.size());
    qsizetype head = 0;
    while (head < most && old[head] == now[head])
        ++head;
    qsizetype tail = 0;
    while (tail < most - head && old[old.size() - 1 - tail] == now[now.size() - 1 - tail])
        ++tail;
    const QStringView before = raw.left(RawLength(raw, head, tabSize));
    qsizetype behind = raw.size();
    qsizetype room = tail;
    while (behind > before.size() && room >= (raw[behind - 1] == u'\t' ? tabSize : 1))
        room -= raw[--behind] == u'\t' ? tabSize : 1;
    const qsizetype from = ShownLength(before, tabSize);
    const qsizetype to = now.size() - (tail - room);
    return before.toString() + now.mid(from, to - from) + raw.mid(behind).toString();
}

/// Lines between those that stayed are taken for edits of the ones that stood there.
void PairEdited(std::vector<int>& match, std::vector<bool>& edited, int oldCount) {
    int old = 0;
    for (size_t i = 0; i < match.size();) {
        if (match[i] >= 0) {
            old = match[i++] + 1;
            continue;
        }
        size_t end = i;
        while (end < match.size() && match[end] < 0)
            ++end;
        const int oldEnd = end < match.size() ? match[end] : oldCount;
        for (; i < end && old < oldEnd; ++i, ++old) {
            match[i] = old;
            edited[i] = true;
        }
        i = end;
    }
}

} // namespace

string WithFormOf(const string& original, const string& shown, int tabSize) {
    const std::vector<TFormLine> lines = LinesOf(original);
    std::vector<string> old;
    for (const TFormLine& line : lines)
        old.push_back(TabsToBlanks(line.Text.toString(), tabSize));
    const QStringList pieces = shown.split(u'\n');
    const std::vector<string> now(pieces.begin(), pieces.end());
    std::vector<int> match = TLineMatch(old, now).Find();
    std::vector<bool> edited(now.size(), false);
    PairEdited(match, edited, int(old.size()));
    const QStringView newEnd = MostUsedEnd(lines);
    string text;
    for (size_t i = 0; i < now.size(); ++i) {
        const TFormLine* line = match[i] >= 0 ? &lines[size_t(match[i])] : nullptr;
        if (line == nullptr)
            text += now[i];
        else if (edited[i])
            text += Edited(line->Text, old[size_t(match[i])], now[i], tabSize);
        else
            text += line->Text;
        if (i + 1 == now.size())
            break;
        const QStringView end = line != nullptr && !line->End.isEmpty() ? line->End : newEnd;
        const bool joins = now[i].isEmpty() && text.endsWith(u'\r') && end.startsWith(u'\n');
        text += joins ? u"\r" : end; // the two would be one line end
    }
    return text;
}
