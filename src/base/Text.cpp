#include "base/Text.h"

#include <algorithm>

namespace {
char16_t FoldAscii(QChar c) {
    const char16_t u = c.unicode();
    return u >= u'a' && u <= u'z' ? char16_t(u - (u'a' - u'A')) : u;
}
} // namespace

int CompareText(QStringView a, QStringView b) {
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const int difference = int(FoldAscii(a[i])) - int(FoldAscii(b[i]));
        if (difference != 0)
            return difference;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}
