#include "apps/ctl/CommandLine.h"

#include "apps/ctl/ConfigurationCommands.h"
#include "apps/ctl/PipeCommands.h"
#include "apps/ctl/StatusCommands.h"
#include "base/Exceptions.h"
#include "base/Version.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>

namespace {

struct TCommand {
    const char* Name;
    const char*
        Arguments; ///< the words of which one must follow, separated by "|"; empty for none; or Folder
    const char* Help;
    TCommandResult (*Run)(const string& argument, const TCommandOptions& options);
};

constexpr char Folder[] = "[FOLDER]"; ///< as arguments of a command: any one path, or none

constexpr TCommand Commands[] = {
    {"init", Folder, "Make a configuration to begin with, in FOLDER.", Init},
    {"lint", Folder, "Look for faults in the configuration.", Lint},
    {"check", "", "Tell whether the agent serves its folders.", Check},
    {"status", "", "Tell how the agent and each of its folders fare.", Status},
    {"pause", Folder, "Leave FOLDER alone, or all of them.", Pause},
    {"resume", Folder, "Serve FOLDER again, or all of them.", Resume},
    {"refresh", "folders|actions", "Have the agent read a configuration file again.", Refresh},
};

constexpr char Options[] = R"(
Options:
  -q, --quiet              Print nothing; the exit code tells.
  -j, --json               Print the status as one line of JSON.
  -t, --timeout <seconds>  Wait that long for an answer, 5 by default.
  -h, --help               Print this.
  -v, --version            Print the version.

Without FOLDER, init and lint take the configuration folder of the settings. A pause outlasts the agent.

Exit codes: 0 done, 1 the agent does not run, or a file could not be used, 2 wrong usage,
3 no answer in time, 4 faults in the configuration, 5 the agent runs and serves nothing.)";

/// The command line makes no sense.
class EUsage : public Exception {
public:
    using Exception::Exception;
};

string HelpText() {
    string text =
        QStringLiteral("Usage: morvanectl [options] command\n"
                       "Makes and checks the folder watcher's configuration, and talks to this user's "
                       "agent.\n\nCommands:\n");
    for (const TCommand& command : Commands) {
        const string words = QLatin1String(command.Name) + u' ' + QLatin1String(command.Arguments);
        text += QStringLiteral("  %1 %2\n").arg(words, -24).arg(QLatin1String(command.Help));
    }
    return text + QLatin1String(Options);
}

const TCommand& FindCommand(const string& name) {
    const auto* found = std::find_if(std::begin(Commands), std::end(Commands), [&](const TCommand& command) {
        return name == QLatin1String(command.Name);
    });
    if (found == std::end(Commands))
        throw EUsage(QStringLiteral("Unknown command \"%1\".").arg(name));
    return *found;
}

/// The one word behind the command, empty if there is none. Raises EUsage if it is no word of the command.
string ArgumentOf(const TCommand& command, const QStringList& words) {
    string argument = words.mid(1).join(u' ');
    if (command.Arguments == Folder) {
        if (words.size() > 2)
            throw EUsage(QStringLiteral("The command \"%1\" takes one folder.").arg(words[0]));
        return argument;
    }
    const QStringList allowed = QString::fromLatin1(command.Arguments).split(u'|');
    if (allowed.contains(argument))
        return argument;
    const QLatin1String name(command.Name);
    throw EUsage(allowed.first().isEmpty()
                     ? QStringLiteral("The command \"%1\" takes nothing more.").arg(name)
                     : QStringLiteral("The command \"%1\" needs one of: %2.").arg(name, allowed.join(u' ')));
}

int TimeoutMsOf(const string& text) {
    bool valid = false;
    const double seconds = text.toDouble(&valid);
    if (!valid || !(seconds >= 0 && seconds <= 3600))
        throw EUsage(QStringLiteral("\"%1\" is not a number of seconds up to 3600.").arg(text));
    return int(seconds * 1000);
}

TCommandResult RunWords(const QStringList& words, const TCommandOptions& options) {
    if (words.isEmpty())
        throw EUsage(QStringLiteral("A command is missing."));
    const TCommand& command = FindCommand(words[0]);
    if (options.Json && command.Run != Status)
        throw EUsage(QStringLiteral("The command \"%1\" has no JSON.").arg(words[0]));
    return command.Run(ArgumentOf(command, words), options);
}

TCommandResult RunParsed(QCommandLineParser& parser, const QStringList& arguments) {
    parser.addOptions({{{"q", "quiet"}, {}},
                       {{"j", "json"}, {}},
                       {{"t", "timeout"}, {}, "seconds", "5"},
                       {{"h", "help"}, {}},
                       {{"v", "version"}, {}}});
    if (!parser.parse(arguments))
        throw EUsage(parser.errorText());
    if (parser.isSet("help"))
        return {ExitDone, HelpText()};
    if (parser.isSet("version"))
        return {ExitDone, QStringLiteral("morvanectl ") + ProgramVersion()};
    return RunWords(parser.positionalArguments(),
                    {TimeoutMsOf(parser.value("timeout")), parser.isSet("json")});
}

} // namespace

TExitCode RunCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    TCommandResult outcome;
    bool quiet = false;
    try {
        outcome = RunParsed(parser, arguments);
        quiet = parser.isSet("quiet");
    } catch (const EUsage& e) {
        outcome = {ExitUsage, QStringLiteral("morvanectl: %1 Try \"morvanectl --help\".").arg(e.Message())};
    } catch (const Exception& e) {
        outcome = {ExitFailed, QStringLiteral("morvanectl: %1").arg(e.Message())};
    }
    if (!outcome.Text.isEmpty() && !quiet)
        std::fprintf(outcome.Code == ExitDone ? stdout : stderr, "%s\n", Narrow(outcome.Text).constData());
    return outcome.Code;
}
