#include "bates/BatesNumbers.h"

#include "bates/CommaText.h"

#include <algorithm>
#include <optional>

namespace {

constexpr int OpeningLength = 4; // "<BN:"

enum Part { FormatPart, DigitsPart, StartPart, AlternatePart, CurrentPart };

std::optional<Integer> IntegerAt(const QStringList& parts, Part part) {
    bool ok = false;
    const Integer number = parts.value(part).toInt(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

string Decimal(Integer n, Integer digits) {
    const int width = std::clamp(digits, 0, BatesLimits::Digits);
    const string padded = QString::number(n < 0 ? -qint64(n) : qint64(n)).rightJustified(width, u'0');
    return n < 0 ? u'-' + padded : padded;
}

/// Bijective base 26: z is followed by aa.
string Letters(Integer n) {
    string letters;
    for (; n > 0; n = (n - 1) / 26)
        letters.prepend(QChar(u'a' + (n - 1) % 26));
    return letters;
}

string Roman(Integer n) {
    struct TNumeral {
        Integer Value;
        QStringView Text;
    };
    static constexpr TNumeral Numerals[] = {
        {1000, u"M"}, {900, u"CM"}, {500, u"D"}, {400, u"CD"}, {100, u"C"}, {90, u"XC"}, {50, u"L"},
        {40, u"XL"},  {10, u"X"},   {9, u"IX"},  {5, u"V"},    {4, u"IV"},  {1, u"I"},
    };
    if (n > BatesLimits::Roman)
        return QString::number(n);
    string roman;
    for (const TNumeral& numeral : Numerals)
        for (; n >= numeral.Value; n -= numeral.Value)
            roman += numeral.Text;
    return roman;
}

/// A to Z only: other letters keep their length.
string UpperCase(string text) {
    for (QChar& c : text)
        if (c >= u'a' && c <= u'z')
            c = QChar(c.unicode() - u'a' + u'A');
    return text;
}

} // namespace

namespace BatesNumbers {

TBates Parse(const string& text) {
    string list = text.mid(OpeningLength);
    list.replace(u':', u',').replace(QStringLiteral(">="), QStringLiteral(","));
    const QStringList parts = FromCommaText(list);
    TBates bates;
    bates.Format = IntegerAt(parts, FormatPart).value_or(bates.Format);
    bates.Digits = IntegerAt(parts, DigitsPart).value_or(bates.Digits);
    bates.Start = IntegerAt(parts, StartPart).value_or(bates.Start);
    bates.Alternate = parts.value(AlternatePart) == u"1";
    bates.CurNum = IntegerAt(parts, CurrentPart).value_or(bates.Start);
    return bates;
}

void Format(const TBates& bates, Integer n, string& result) {
    switch (bates.Format) {
    case 1:
        result = Letters(n);
        break;
    case 2:
        result = Letters(n).toUpper();
        break;
    case 3:
        result = Roman(n).toLower();
        break;
    case 4:
        result += Roman(n);
        break;
    default:
        result = Decimal(n, bates.Digits);
    }
}

QStringList MacrosOf(const string& text) {
    const string upper = UpperCase(text);
    QStringList macros;
    for (qsizetype end = 0;;) {
        const qsizetype begin = upper.indexOf(QStringLiteral("<BN:"), end);
        end = begin < 0 ? -1 : upper.indexOf(u'>', begin) + 1;
        if (end <= 0)
            return macros;
        macros.append(upper.sliced(begin, end - begin));
    }
}

bool IsValid(const string& macro) {
    string list = macro.mid(OpeningLength);
    list.chop(1);
    const QStringList parts = FromCommaText(list.replace(u':', u','));
    return parts.size() == 4 && parts[FormatPart].size() == 1 && parts[FormatPart] >= u"0" &&
           parts[FormatPart] <= u"4" && IntegerAt(parts, DigitsPart) && IntegerAt(parts, StartPart) &&
           (parts[AlternatePart] == u"0" || parts[AlternatePart] == u"1");
}

} // namespace BatesNumbers
