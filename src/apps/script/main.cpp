// morvane-script: the script editor on a file, and the check of scripts.
#include "apps/script/ScriptCommands.h"
#include "desktop/Desktop.h"

#include <QCoreApplication>

namespace {

TExitCode EditOnDesktop(const string& path) {
    const TDesktop desktop(QStringLiteral("morvane-script"));
    QCoreApplication::setApplicationName(QStringLiteral("Morvane Script Editor"));
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
