// Where each test program begins: in surroundings of its own, whatever its starter had. No test depends on
// signals that a shell ignores, on a mask, a language, a time zone, a home folder or a display.
#include <QList>
#include <QTemporaryDir>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What was ignored or blocked from the start isn't any more; programs that a test starts inherit that.
void ResetSignals() {
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            ::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

/// Keeps of the environment what finds programs, and what tests, their programs and tools are told by.
void ResetEnvironment(const QTemporaryDir& home) {
    const auto stays = [](const QByteArray& name) {
        for (const char* exact : {"PATH", "TMPDIR", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR"})
            if (name == exact)
                return true;
        // A display and its key, where the test is there for it.
        if ((name == "DISPLAY" || name == "XAUTHORITY") && qEnvironmentVariableIsSet("MORVANE_REAL_INPUT"))
            return true;
        for (const char* start : {"MORVANE_", "GTEST_", "LD_", "ASAN_", "LSAN_", "UBSAN_", "TSAN_"})
            if (name.startsWith(start))
                return true;
        return false;
    };
    QList<QByteArray> gone;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (const QByteArray name = QByteArray(*entry).split('=').constFirst(); !stays(name))
            gone.append(name);
    for (const QByteArray& name : gone)
        ::unsetenv(name.constData());
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    qputenv("HOME", home.path().toLocal8Bit());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    ResetSignals();
    ResetEnvironment(home);
    ::umask(022);
    if (const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC); nothing > STDIN_FILENO) {
        ::dup2(nothing, STDIN_FILENO);
        ::close(nothing);
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
