#pragma once
// The time of day and the tick count, behind an interface that tests drive by hand.
#include "base/Text.h"

/// Days since 1899-12-30, local time; the fraction is the time of day.
using TDateTime = double;

/// A local time in its parts.
struct TSystemTime {
    quint16 Year = 0;
    quint16 Month = 0;     ///< 1 to 12
    quint16 DayOfWeek = 0; ///< 0 is Sunday
    quint16 Day = 0;       ///< 1 to 31
    quint16 Hour = 0;
    quint16 Minute = 0;
    quint16 Second = 0;
    quint16 Milliseconds = 0;

    bool operator==(const TSystemTime&) const = default;
};

[[nodiscard]] TDateTime SystemTimeToDateTime(const TSystemTime& time);

class TClock {
public:
    virtual ~TClock() = default;
    /// Milliseconds since the machine started, time asleep included; wraps after 49.7 days.
    [[nodiscard]] virtual Cardinal TickCount() = 0;
    [[nodiscard]] virtual TSystemTime LocalTime() = 0;
    /// Holds the calling thread for that many milliseconds.
    virtual void Sleep(int ms) = 0;
};

/// The machine's clock.
[[nodiscard]] TClock& MachineClock();
