#include "editor/style/Expressions.h"

#include <algorithm>
#include <array>

namespace {

bool IsWordChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'$';
}

/// Behind an operand a slash divides; behind an operator or one of these words there is none yet.
bool EndsOperand(QStringView before) {
    static constexpr std::array<QStringView, 10> Words{u"return", u"typeof", u"case",  u"in",    u"of",
                                                       u"delete", u"void",   u"throw", u"yield", u"await"};
    const QChar last = before.back();
    if (!IsWordChar(last))
        return QStringView(u")]}\"'`").contains(last);
    qsizetype start = before.size();
    while (start > 0 && IsWordChar(before[start - 1]))
        --start;
    return std::find(Words.begin(), Words.end(), before.mid(start)) == Words.end();
}

} // namespace

qsizetype ExpressionLength(QStringView line, qsizetype at) {
    if (at + 1 >= line.size() || line[at + 1] == u'/' || line[at + 1] == u'*')
        return 0;
    const QStringView before = line.left(at).trimmed();
    if (!before.isEmpty() && EndsOperand(before))
        return 0;
    bool inClass = false;
    for (qsizetype i = at + 1; i < line.size(); ++i) {
        if (line[i] == u'\\') {
            ++i;
        } else if (line[i] == u'[' || line[i] == u']') {
            inClass = line[i] == u'[';
        } else if (line[i] == u'/' && !inClass) {
            ++i;
            while (i < line.size() && IsWordChar(line[i]))
                ++i;
            return i - at;
        }
    }
    return before.isEmpty() ? 0 : line.size() - at;
}
