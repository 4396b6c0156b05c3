#include "base/Exceptions.h"
#include "platform/Clock.h"
#include "platform/MessageBox.h"
#include "platform/MessagePump.h"
#include "platform/Signals.h"

#include <QCoreApplication>
#include <QTimer>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

TEST(MessageBox, WithoutADesktopTheTextGoesToTheJournalAndTheBoxIsClosed) {
    const struct {
        int Flags, Answer;
    } cases[] = {
        {MB_OK, 1},          {MB_OK | MB_ICONERROR, 1},
        {MB_OKCANCEL, 2},    {MB_ABORTRETRYIGNORE, 3},
        {MB_YESNO, 7},       {MB_YESNOCANCEL, 2},
        {MB_RETRYCANCEL, 2}, {MB_CANCELTRYCONTINUE, 2},
        {MB_YESNO | 256, 7}, {15, 1},
    };
    for (const auto& c : cases) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(MessageBoxHost().Show("Is it\nso? ", "Caption", c.Flags), c.Answer) << c.Flags;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Caption: Is it so? \n");
    }
}

TEST(MessageBox, ARegisteredHostIsAsked) {
    struct THost : TMessageBoxHost {
        int Show(const string& text, const string& caption, int flags) override {
            Shown = text + '|' + caption + '|' + QString::number(flags);
            return IDRETRY;
        }
        string Shown;
    } host;
    SetMessageBoxHost(&host);
    EXPECT_EQ(MessageBoxHost().Show("text", "caption", 16), IDRETRY);
    SetMessageBoxHost(nullptr);
    EXPECT_EQ(host.Shown, "text|caption|16");
    EXPECT_EQ(MessageBoxHost().Show("text", "", MB_OK), IDOK);
}

TEST(Signals, TerminationReachesTheEventLoopAndIsHandedBack) {
    struct sigaction former {};
    ::sigaction(SIGTERM, nullptr, &former);
    {
        TTerminationSignals signals;
        EXPECT_FALSE(signals.Take());
        for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGTERM}) {
            int argc = 1;
            char name[] = "test";
            char* argv[] = {name, nullptr};
            QCoreApplication application(argc, argv);
            TMessagePump pump;
            pump.Watch(signals.Descriptor(), [&] {
                if (signals.Take())
                    QCoreApplication::exit(number);
            });
            QTimer::singleShot(60'000, &application, &QCoreApplication::quit);
            QTimer::singleShot(0, &application, [number] {
                ::kill(::getpid(), number);
                ::kill(::getpid(), number);
            });
            EXPECT_EQ(QCoreApplication::exec(), number);
        }
        sigset_t blocked;
        ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        EXPECT_FALSE(sigismember(&blocked, SIGTERM)); // a child would inherit it
    }
    struct sigaction now {};
    ::sigaction(SIGTERM, nullptr, &now);
    EXPECT_EQ(now.sa_handler, former.sa_handler);
}

TEST(Signals, WhatWasIgnoredFromTheStartStaysIgnored) {
    ::signal(SIGHUP, SIG_IGN); // as nohup does
    {
        TTerminationSignals signals;
        ::kill(::getpid(), SIGHUP);
        EXPECT_FALSE(signals.Take());
        ::kill(::getpid(), SIGTERM);
        EXPECT_TRUE(signals.Take());
    }
    EXPECT_EQ(::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST(Signals, BrokenPipesAndFullLimitsAreErrorsOfTheCall) {
    IgnoreDisruptiveSignals();
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    EXPECT_EQ(::write(ends[1], "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    ::close(ends[1]);

    rlimit former{};
    ::getrlimit(RLIMIT_FSIZE, &former);
    const rlimit none{.rlim_cur = 0, .rlim_max = former.rlim_max};
    const int file = ::open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    ::setrlimit(RLIMIT_FSIZE, &none);
    const ssize_t written = ::write(file, "x", 1);
    const int error = errno;
    ::setrlimit(RLIMIT_FSIZE, &former);
    EXPECT_EQ(written, -1);
    EXPECT_EQ(error, EFBIG);
    ::close(file);
}

TEST(Clock, PartsBecomeADateTime) {
    const struct {
        TSystemTime Time;
        double DateTime;
    } cases[] = {
        {{1899, 12, 6, 30, 0, 0, 0, 0}, 0.0},
        {{1900, 1, 1, 1, 6, 0, 0, 0}, 2.25},
        {{1970, 1, 4, 1, 12, 0, 0, 0}, 25569.5},
        {{2026, 11, 0, 15, 23, 59, 59, 999}, 46341.0 + 86'399'999.0 / 86'400'000.0},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(SystemTimeToDateTime(c.Time), c.DateTime);
}

TEST(Clock, TheMachinesClockAgreesWithQt) {
    TClock& clock = MachineClock();
    const QDateTime before = QDateTime::currentDateTime();
    const TSystemTime now = clock.LocalTime();
    const QDateTime asQt({now.Year, now.Month, now.Day},
                         {now.Hour, now.Minute, now.Second, now.Milliseconds});
    EXPECT_LE(before, asQt);
    EXPECT_LE(asQt, QDateTime::currentDateTime());
    EXPECT_EQ(now.DayOfWeek, asQt.date().dayOfWeek() % 7);
    const Cardinal ticks = clock.TickCount();
    clock.Sleep(20);
    EXPECT_GE(clock.TickCount() - ticks, 20u);
}

} // namespace
