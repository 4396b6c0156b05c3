#include "engine/pdf/Numbers.h"

#include "engine/pdf/Errors.h"

#include <cmath>

namespace {

/// As scripts and XML files write it.
string Written(Double value) {
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    constexpr int Digits = 9;
    return QString::number(value, 'g', Digits);
}

} // namespace

void RequireLength(const char* what, Double value) {
    if (!(std::abs(value) <= LongestLength))
        throw EPDFError(QStringLiteral("%1 is %2: lengths on a page are from -%3 to %3 points.")
                            .arg(QLatin1String(what), Written(value))
                            .arg(qint64(LongestLength)));
}

void RequireNumber(const char* what, Double value) {
    if (!(std::abs(value) <= LongestLength))
        throw EPDFError(QStringLiteral("%1 is %2: it must be a number from -%3 to %3.")
                            .arg(QLatin1String(what), Written(value))
                            .arg(qint64(LongestLength)));
}

void RequireNoNul(const char* what, const string& text) {
    if (text.contains(QChar::Null))
        throw EPDFError(QStringLiteral("%1 holds a NUL character.").arg(QLatin1String(what)));
}
