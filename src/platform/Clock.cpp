#include "platform/Clock.h"

#include <QDate>

#include <chrono>
#include <ctime>
#include <thread>

namespace {

class TMachineClock : public TClock {
public:
    Cardinal TickCount() override {
        timespec now{};
        ::clock_gettime(CLOCK_BOOTTIME, &now);
        return Cardinal(quint64(now.tv_sec) * 1000 + quint64(now.tv_nsec) / 1'000'000);
    }

    TSystemTime LocalTime() override {
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        const tm& parts = LocalParts(now.tv_sec);
        TSystemTime time;
        time.Year = quint16(parts.tm_year + 1900);
        time.Month = quint16(parts.tm_mon + 1);
        time.DayOfWeek = quint16(parts.tm_wday);
        time.Day = quint16(parts.tm_mday);
        time.Hour = quint16(parts.tm_hour);
        time.Minute = quint16(parts.tm_min);
        time.Second = quint16(parts.tm_sec);
        time.Milliseconds = quint16(now.tv_nsec / 1'000'000);
        return time;
    }

    void Sleep(int ms) override { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

private:
    /// The same until the second changes: who asks on a beat of 10 ms shouldn't look up the zone each time.
    static const tm& LocalParts(time_t second) {
        thread_local time_t last = -1;
        thread_local tm parts{};
        if (second != last) {
            ::tzset(); // localtime_r alone would never notice that the zone was changed
            ::localtime_r(&second, &parts);
            last = second;
        }
        return parts;
    }
};

} // namespace

TDateTime SystemTimeToDateTime(const TSystemTime& time) {
    const qint64 days = QDate(1899, 12, 30).daysTo(QDate(time.Year, time.Month, time.Day));
    const qint64 ms = ((qint64(time.Hour) * 60 + time.Minute) * 60 + time.Second) * 1000 + time.Milliseconds;
    return double(days) + double(ms) / 86'400'000.0;
}

TClock& MachineClock() {
    static auto& clock = *new TMachineClock; // never destroyed: the timers' thread may outlast statics
    return clock;
}
