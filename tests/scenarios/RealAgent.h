#pragma once
// The real program, as a user starts it.
#include "testing/Workspace.h"

#include <QElapsedTimer>

#include <functional>
#include <unistd.h>

/// The agent as a user starts it, but for its settings.
class TRealAgent {
public:
    /// Whether it is started with the display that the test itself has.
    enum class TDisplay { None, OfTest };

    explicit TRealAgent(const string& settings, TDisplay display = TDisplay::None,
                        const string& program = MORVANE_AGENT) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("WAYLAND_DISPLAY");
        environment.remove("QT_QPA_PLATFORM");
        if (display == TDisplay::None)
            environment.remove("DISPLAY");
        environment.insert("XDG_CONFIG_HOME", settings);
        environment.insert("XDG_STATE_HOME", settings + "/state");
        environment.insert("XDG_RUNTIME_DIR", settings);
        FProcess.setProcessEnvironment(environment);
        FProcess.start(program, QStringList());
        EXPECT_TRUE(FProcess.waitForStarted(60'000));
    }
    ~TRealAgent() { Kill(); }
    void Kill() {
        FProcess.kill();
        FProcess.waitForFinished(60'000);
    }
    /// The processes that work for it now.
    [[nodiscard]] QList<pid_t> Workers() const {
        QList<pid_t> workers;
        const string children = QStringLiteral("/proc/%1/task").arg(FProcess.processId());
        for (const string& thread : QDir(children).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QFile file(children + u'/' + thread + QStringLiteral("/children"));
            if (file.open(QIODevice::ReadOnly))
                for (const QByteArray& child : file.readAll().simplified().split(' '))
                    if (!child.isEmpty())
                        workers.append(child.toInt());
        }
        return workers;
    }
    QProcess FProcess;
};

/// Looks every few milliseconds until it is so; false after a minute.
inline bool Eventually(const std::function<bool()>& isSo) {
    QElapsedTimer timer;
    timer.start();
    while (!isSo()) {
        if (timer.elapsed() > 60'000)
            return false;
        ::usleep(2000);
    }
    return true;
}
