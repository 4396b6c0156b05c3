#include "apps/script/CommandLine.h"

#include "apps/script/ScriptCommands.h"
#include "base/Exceptions.h"
#include "base/Version.h"

#include <QCommandLineParser>

#include <cstdio>

namespace {

constexpr char Help[] = R"(Usage: morvane-script FILE.js
       morvane-script --check FILE.js...
Opens a script in the editor, or looks for syntax errors in scripts.

Options:
  -c, --check              Compile the files without a window, and run nothing.
  -h, --help               Print this.
  -v, --version            Print the version.

A file that does not exist yet is made on the first save.

Exit codes: 0 done, 1 a file could not be used, or there is no desktop, 2 wrong usage,
4 faults in a script.)";

/// The command line makes no sense.
class EUsage : public Exception {
public:
    using Exception::Exception;
};

TExitCode Print(const char* text) {
    std::printf("%s\n", text);
    return ExitDone;
}

TExitCode RunParsed(QCommandLineParser& parser, const QStringList& arguments,
                    const std::function<TExitCode(const string& path)>& edit) {
    parser.addOptions({{{"c", "check"}, {}}, {{"h", "help"}, {}}, {{"v", "version"}, {}}});
    if (!parser.parse(arguments))
        throw EUsage(parser.errorText());
    if (parser.isSet("help"))
        return Print(Help);
    if (parser.isSet("version"))
        return Print(Narrow(QStringLiteral("morvane-script ") + ProgramVersion()));
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty())
        throw EUsage(QStringLiteral("A file is missing."));
    if (parser.isSet("check"))
        return CheckScripts(files);
    if (files.size() > 1)
        throw EUsage(QStringLiteral("The editor takes one file."));
    return edit(files.first());
}

} // namespace

void PrintFailure(const string& text) {
    std::fprintf(stderr, "morvane-script: %s\n", Narrow(text).constData());
}

TExitCode RunCommandLine(const QStringList& arguments,
                         const std::function<TExitCode(const string& path)>& edit) {
    QCommandLineParser parser;
    try {
        return RunParsed(parser, arguments, edit);
    } catch (const EUsage& e) {
        PrintFailure(QStringLiteral("%1 Try \"morvane-script --help\".").arg(e.Message()));
        return ExitUsage;
    } catch (const std::exception& e) {
        PrintFailure(MessageOf(e));
        return ExitFailed;
    }
}
