#include "xml/XmlEscape.h"

namespace {

constexpr qsizetype EscapeLength = 7; // _xHHHH_

bool IsHexDigit(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

/// Whether _xHHHH stands at `i`: an escape but for its last underscore.
bool OpensEscape(const string& text, qsizetype i) {
    if (text[i] != u'_' || i + EscapeLength > text.size() || text[i + 1] != u'x')
        return false;
    for (qsizetype digit = i + 2; digit < i + EscapeLength - 1; ++digit)
        if (!IsHexDigit(text[digit]))
            return false;
    return true;
}

bool NeedsEscape(const string& text, qsizetype i) {
    if (IsForbiddenInXml(text, i))
        return true;
    if (!OpensEscape(text, i))
        return false;
    // The last underscore may be one of the text or the first of the next character's escape.
    const qsizetype last = i + EscapeLength - 1;
    return text[last] == u'_' || IsForbiddenInXml(text, last);
}

} // namespace

bool IsForbiddenInXml(QStringView text, qsizetype i) {
    const QChar c = text[i];
    if (c.isHighSurrogate())
        return i + 1 >= text.size() || !text[i + 1].isLowSurrogate();
    if (c.isLowSurrogate())
        return i == 0 || !text[i - 1].isHighSurrogate();
    return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c >= QChar(0xFFFE);
}

string EscapeForbidden(const string& text) {
    string escaped;
    qsizetype done = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!NeedsEscape(text, i))
            continue;
        escaped += QStringView(text).sliced(done, i - done);
        escaped += QString::asprintf("_x%04X_", unsigned(text[i].unicode()));
        done = i + 1;
    }
    return done == 0 ? text : escaped.append(QStringView(text).sliced(done));
}

string UnescapeForbidden(const string& text) {
    string plain;
    qsizetype done = 0;
    for (qsizetype i = text.indexOf(u'_'); i >= 0; i = text.indexOf(u'_', i)) {
        if (!OpensEscape(text, i) || text[i + EscapeLength - 1] != u'_') {
            ++i;
            continue;
        }
        plain += QStringView(text).sliced(done, i - done);
        plain += QChar(text.mid(i + 2, 4).toUShort(nullptr, 16));
        i = done = i + EscapeLength;
    }
    return done == 0 ? text : plain.append(QStringView(text).sliced(done));
}
