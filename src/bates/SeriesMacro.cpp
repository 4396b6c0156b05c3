#include "bates/SeriesMacro.h"

#include "base/GivenNumbers.h"
#include "bates/BatesNumbers.h"

#include <QRegularExpression>

namespace {

struct TMacro {
    qsizetype Begin;
    qsizetype Length;
    string Series;
    int Digits;
};

QList<TMacro> MacrosOf(const string& text) {
    QList<TMacro> macros;
    if (!text.contains(QStringLiteral("[number:"), Qt::CaseInsensitive))
        return macros;
    static const QRegularExpression form(QStringLiteral("\\[number:([^:\\[\\]]+)(?::([0-9]{1,9}))?\\]"),
                                         QRegularExpression::CaseInsensitiveOption);
    for (auto found = form.globalMatch(text); found.hasNext();) {
        const auto match = found.next();
        const int digits = match.hasCaptured(2) ? match.captured(2).toInt() : 1;
        if (IsSeriesName(match.captured(1)) && digits >= 1)
            macros.append({match.capturedStart(), match.capturedLength(), match.captured(1),
                           std::min(digits, BatesLimits::Digits)});
    }
    return macros;
}

} // namespace

QStringList SeriesMacro::SeriesOf(const QStringList& texts) {
    QStringList series;
    for (const string& text : texts)
        for (const TMacro& macro : MacrosOf(text))
            if (!series.contains(macro.Series))
                series.append(macro.Series);
    return series;
}

string SeriesMacro::Replace(const string& text, const QMap<string, qint64>& numbers) {
    string result = text;
    QList<TMacro> macros = MacrosOf(text);
    std::reverse(macros.begin(), macros.end()); // places before a replacement stay as they are
    for (const TMacro& macro : macros)
        if (const auto number = numbers.constFind(macro.Series); number != numbers.constEnd())
            result.replace(macro.Begin, macro.Length,
                           QString::number(*number).rightJustified(macro.Digits, u'0'));
    return result;
}
