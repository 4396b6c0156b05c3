#include "timers/Cron.h"

namespace {

constexpr TumCronGroup AllValues = ~TumCronGroup(0);
constexpr int LastValue =
    59; // of all six fields; values that a field's part of the time can't have never match

/// Takes what stands before the first delimiter off the front of `text`: all of it where there is none.
QStringView NextToken(QStringView& text, QChar delimiter) {
    const qsizetype end = text.indexOf(delimiter);
    const QStringView token = end < 0 ? text : text.left(end);
    text = end < 0 ? QStringView() : text.mid(end + 1);
    return token;
}

struct TNumber {
    qint64 Value = 0; ///< 0 if the text isn't a number
    bool Valid = false;
};

/// A decimal integer of 32 bits, with or without a sign.
TNumber ParseNumber(QStringView text) {
    TNumber number;
    number.Value = text.toInt(&number.Valid, 10);
    return number;
}

TumCronGroup ParseItem(QStringView item) {
    QStringView range = NextToken(item, u'+');
    qint64 step = ParseNumber(item).Value;
    qint64 value = ParseNumber(NextToken(range, u'-')).Value;
    TNumber last = ParseNumber(range);
    if (!last.Valid && step != 0)
        last.Value = LastValue; // "5+10" runs to the end of the scale, "5" is the one value
    if (step == 0)
        step = 1;
    TumCronGroup group = 0;
    // A negative step leaves the scale at its lower end, where nothing can match either.
    do {
        if (value > LastValue || value < 0)
            break;
        group |= TumCronGroup(1) << value;
        value += step;
    } while (value <= last.Value);
    return group;
}

TumCronGroup ParseField(QStringView field) {
    if (field.contains(u'*'))
        return AllValues;
    TumCronGroup group = 0;
    while (!field.isEmpty())
        group |= ParseItem(NextToken(field, u',').left(TumCron::TokenLimit));
    return group;
}

} // namespace

TumCron::TumCron() {
    Init({});
}

void TumCron::Init(const string& mask) {
    QStringView rest = QStringView(mask).left(MaskLimit);
    for (auto& group : FGroups) {
        // Each group changes in one step: a field is never seen half parsed.
        const TumCronGroup parsed =
            rest.isEmpty() ? AllValues : ParseField(NextToken(rest, u' ').left(TokenLimit));
        group.store(parsed, std::memory_order_relaxed);
    }
}

TumCronGroup TumCron::Group(TumCronGroups group) const {
    return FGroups[group].load(std::memory_order_relaxed);
}

bool TumCron::IsCron(const TSystemTime& time) const {
    const auto matches = [this](TumCronGroups group, unsigned value) {
        return value < 64 && ((Group(group) >> value) & 1) != 0;
    };
    return matches(crSec, time.Second) && matches(crMin, time.Minute) && matches(crHour, time.Hour) &&
           matches(crDay, time.Day) && matches(crMonth, time.Month) && matches(crDoW, time.DayOfWeek);
}
