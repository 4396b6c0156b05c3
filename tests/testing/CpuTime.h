#pragma once
// How much work a test takes, which a busy machine doesn't change.
#include <ctime>

/// Processor time that this process has had, in seconds.
[[nodiscard]] inline double CpuSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}
