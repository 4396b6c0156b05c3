// morvane-script: the script editor on a file, and the check of scripts.
#include "apps/script/ScriptCommands.h"
#include "desktop/Desktop.h"
#include "platform/Signals.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>

namespace {

/// Asked to end from outside, the editor closes as its window's button does it: with a question about
/// changes.
class TPoliteEnd {
public:
    TPoliteEnd() : FArrival(FSignals.Descriptor(), QSocketNotifier::Read) {
        QObject::connect(&FArrival, &QSocketNotifier::activated, &FArrival, [this] {
            QEvent quit(QEvent::Quit);
            if (FSignals.Take())
                QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
        });
    }

private:
    TTerminationSignals FSignals;
    QSocketNotifier FArrival;
};

TExitCode EditOnDesktop(const string& path) {
    const TDesktop desktop(QStringLiteral("morvane-script"));
    QCoreApplication::setApplicationName(QStringLiteral("Morvane Script Editor"));
    const TPoliteEnd end;
    if (desktop.IsThere())
        return EditScript(path);
    PrintFailure(QStringLiteral("There is no desktop to open the editor on; --check needs none."));
    return ExitFailed;
}

} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    return RunCommandLine(arguments, EditOnDesktop);
}
