#include "apps/script/ScriptCommands.h"
#include "apps/script/ScriptFile.h"
#include "base/Exceptions.h"
#include "scripting/host/Engine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

constexpr Cardinal HeapLimit = 256 << 20; // for the largest file's syntax tree

/// A place that the engine doesn't know is the file's beginning.
void PrintFault(const string& path, const TJSMessage& message) {
    std::fprintf(stderr, "%s:%d:%d: %s\n", Narrow(path).constData(), std::max(message.Line, 1),
                 std::max(message.Column, 1), Narrow(message.Text).constData());
}

TExitCode CheckScript(TJSEngine& engine, const string& path) {
    const TScriptFile file(path);
    if (!file.Exists())
        throw EFileError(QStringLiteral("open"), path, ENOENT);
    engine.OnMessage = [&path](const TJSMessage& message) { PrintFault(path, message); };
    return engine.Global().Compile(file.Text(), Narrow(path)) ? ExitDone : ExitFaults;
}

/// A file that could not be used tells less about the others than a fault does.
TExitCode Worse(TExitCode a, TExitCode b) {
    return a == ExitFailed || b == ExitFailed ? ExitFailed : std::max(a, b);
}

} // namespace

TExitCode CheckScripts(const QStringList& paths) {
    TJSEngine engine(HeapLimit);
    TExitCode worst = ExitDone;
    for (const string& path : paths) {
        try {
            worst = Worse(worst, CheckScript(engine, path));
        } catch (const Exception& e) {
            PrintFailure(e.Message());
            worst = ExitFailed;
        }
    }
    return worst;
}
