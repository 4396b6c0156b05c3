#include "timers/Cron.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace {

TSystemTime Parts(const QDateTime& time) {
    TSystemTime parts;
    parts.Year = quint16(time.date().year());
    parts.Month = quint16(time.date().month());
    parts.DayOfWeek = quint16(time.date().dayOfWeek() % 7);
    parts.Day = quint16(time.date().day());
    parts.Hour = quint16(time.time().hour());
    parts.Minute = quint16(time.time().minute());
    parts.Second = quint16(time.time().second());
    return parts;
}

TumCronGroup Bits(std::initializer_list<int> values) {
    TumCronGroup bits = 0;
    for (const int value : values)
        bits |= TumCronGroup(1) << value;
    return bits;
}

constexpr TumCronGroup All = ~TumCronGroup(0);

TEST(Cron, OneFieldSelectsTheseValues) {
    const struct {
        const char* Field;
        TumCronGroup Values;
    } cases[] = {
        {"5", Bits({5})},
        {"0,30", Bits({0, 30})},
        {"8-11", Bits({8, 9, 10, 11})},
        {"0+15", Bits({0, 15, 30, 45})},
        {"5+10", Bits({5, 15, 25, 35, 45, 55})},
        {"5-26+10", Bits({5, 15, 25})},
        {"1-5,7,50+5", Bits({1, 2, 3, 4, 5, 7, 50, 55})},
        {"7-3", Bits({7})}, // the first value always counts
        {"5+0", Bits({5})},
        {"5-+20", Bits({5, 25, 45})}, // no last value but a step: to the end of the scale
        {"1--3", Bits({1})},
        {"58-63", Bits({58, 59})},
        {"60", 0},
        {"99999999999", Bits({0})}, // no number, as the next two
        {"x", Bits({0})},
        {"5-x", Bits({5})},
        {"59+2147483647", Bits({59})},
        {"5+-5", Bits({5, 0})}, // downwards, to the scale's lower end
        {"3+1+1", Bits({3})},
        {",4", Bits({0, 4})},
        {"*", All},
        {"*+5", All},
        {"3,*", All},
    };
    for (const auto& c : cases) {
        TumCron cron;
        cron.Init(c.Field);
        EXPECT_EQ(cron.Group(crSec), c.Values) << c.Field;
        EXPECT_EQ(cron.Group(crMin), All) << c.Field;
    }
}

TEST(Cron, FieldsAreTakenByTheBlank) {
    const QString longItem = QString(70, '0') + '7'; // cut to 63 digits, all of them 0
    const struct {
        QString Mask;
        TumCronGroup Second, Minute, Hour;
    } cases[] = {
        {"", All, All, All},
        {"1", Bits({1}), All, All},
        {"1 ", Bits({1}), All, All},
        {"1  2", Bits({1}), 0, Bits({2})},
        {" 1", 0, Bits({1}), All},
        {"1 2 3 4 5 6 7 8", Bits({1}), Bits({2}), Bits({3})},
        {longItem + " 2", Bits({0}), Bits({2}), All},
        {QString("1,").repeated(31) + "2,3 4", Bits({1, 2}), Bits({4}), All},
        {"1 " + QString(252, 'x') + "3 5", Bits({1}), Bits({0}), All}, // the mask is cut to 255
    };
    for (const auto& c : cases) {
        TumCron cron;
        cron.Init(c.Mask);
        EXPECT_EQ(cron.Group(crSec), c.Second) << c.Mask.toStdString();
        EXPECT_EQ(cron.Group(crMin), c.Minute) << c.Mask.toStdString();
        EXPECT_EQ(cron.Group(crHour), c.Hour) << c.Mask.toStdString();
    }
}

TEST(Cron, MasksFireAtTheseTimes) {
    const struct {
        const char* Mask;
        const char* From; ///< the first second of the day
        int Fires;        ///< times within that day
    } cases[] = {
        {"* * * * * *", "2026-11-16", 86400}, {"0 * * * * *", "2026-11-16", 1440},
        {"0 0 8 * * 1-5", "2026-11-16", 1},   {"0 0 8 * * 1-5", "2026-11-15", 0},
        {"0 0+15 * * * *", "2026-11-16", 96}, {"0 0 12", "2026-11-16", 1},
        {"0 0 0 31 2 *", "2026-03-31", 0},    {"0 0 0+1", "2026-11-16", 24},
        {"0 0 0 15 11 1", "2026-11-15", 0}, // a Sunday: day and day of week must both match
        {"0 0 0 15 11 0", "2026-11-15", 1},
    };
    for (const auto& c : cases) {
        TumCron cron;
        cron.Init(c.Mask);
        const QDateTime start = QDate::fromString(c.From, Qt::ISODate).startOfDay(Qt::UTC);
        int fires = 0;
        for (int second = 0; second < 86400; ++second)
            fires += cron.IsCron(Parts(start.addSecs(second)));
        EXPECT_EQ(fires, c.Fires) << c.Mask << " on " << c.From;
    }
}

} // namespace
