#pragma once
// Two sides of a comparison, each run in a process of its own.
#include <QList>
#include <QProcess>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

struct TFigure {
    double Seconds = 0;
    double CpuSeconds = 0; // with the processes it started: steadier than the clock on a shared machine
    double PeakMiB = 0;    // largest process of the side
};

/// Runs one side in a process of its own, so that its peak memory is its own.
template <class TWork> TFigure Measure(TWork work) {
    const auto begin = std::chrono::steady_clock::now();
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        std::_Exit(0);
    }
    int status = 0;
    struct rusage usage {};
    ::wait4(child, &status, 0, &usage);
    if (status != 0)
        std::fprintf(stderr, "a side ended with status %d\n", status);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    const auto secondsOf = [](const timeval& time) {
        return double(time.tv_sec) + 1e-6 * double(time.tv_usec);
    };
    return {seconds.count(), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            double(usage.ru_maxrss) / 1024};
}

inline double Median(QList<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

inline void Shell(const QString& script) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("/bin/sh", {"-c", script});
    process.waitForFinished(-1);
}

/// Replaces the process by a command of the shell.
[[noreturn]] inline void Become(const QString& command) {
    ::execl("/bin/sh", "sh", "-c", command.toUtf8().constData(), nullptr);
    std::_Exit(127);
}
