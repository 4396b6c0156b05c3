#include "engine/macros/MacroDates.h"

#include <algorithm>

namespace {

struct TToken {
    QStringView Name;
    int (*Value)(const QDateTime& time);
};

constexpr TToken Tokens[] = {
    {u"yyyy", [](const QDateTime& t) { return t.date().year(); }},
    {u"yy", [](const QDateTime& t) { return t.date().year() % 100; }},
    {u"mm", [](const QDateTime& t) { return t.date().month(); }},
    {u"dd", [](const QDateTime& t) { return t.date().day(); }},
    {u"hh", [](const QDateTime& t) { return t.time().hour(); }},
    {u"MM", [](const QDateTime& t) { return t.time().minute(); }},
    {u"ss", [](const QDateTime& t) { return t.time().second(); }},
};

const TToken* TokenAt(QStringView format) {
    for (const TToken& token : Tokens)
        if (format.startsWith(token.Name))
            return &token;
    return nullptr;
}

/// The number in `length` digits at `at`; `missing` where the text ends before it, -1 where it is none.
int NumberAt(QStringView text, qsizetype at, qsizetype length, int missing) {
    if (at >= text.size() || !text[at].isDigit())
        return missing;
    bool ok = false;
    const int number = text.mid(at, length).toInt(&ok);
    return ok && at + length <= text.size() ? number : -1;
}

} // namespace

string FormatMacroDate(const QDateTime& time, QStringView format) {
    string result;
    while (!format.isEmpty()) {
        const TToken* token = TokenAt(format);
        const qsizetype taken = token != nullptr ? token->Name.size() : 1;
        if (token != nullptr)
            result += QString::number(token->Value(time)).rightJustified(int(taken), u'0');
        else
            result += format.front();
        format = format.sliced(taken);
    }
    return result;
}

string MacroDateOfPdf(const string& date) {
    const QStringView digits = QStringView(date).sliced(date.startsWith(u"D:") ? 2 : 0);
    // All parts but the year may be missing; there is no year 0.
    const QDate day(std::max(NumberAt(digits, 0, 4, 0), 0), NumberAt(digits, 4, 2, 1),
                    NumberAt(digits, 6, 2, 1));
    const QTime time(NumberAt(digits, 8, 2, 0), NumberAt(digits, 10, 2, 0));
    if (!day.isValid() || !time.isValid())
        return date;
    return FormatMacroDate(QDateTime(day, time, Qt::UTC), u"yyyy-mm-dd hh:MM");
}
