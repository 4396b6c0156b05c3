#include "apps/ctl/CommandLine.h"

#include "apps/ctl/ConfigurationCommands.h"
#include "apps/ctl/LedgerCommands.h"
#include "apps/ctl/PipeCommands.h"
#include "apps/ctl/StatusCommands.h"
#include "base/Version.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>

namespace {

struct TCommand {
    const char* Name;
    /// The words of which one must follow, separated by "|"; empty for none; or Folder or Files
    const char* Arguments;
    const char* Help;
    TCommandResult (*Run)(const TCommandCall& call);
    void (*AddOptions)(QCommandLineParser& parser) = nullptr; ///< of its own
    bool Json = false;
};

// As arguments of a command:
constexpr char Folder[] = "[FOLDER]";        // any one path, or none
constexpr char Files[] = "[FILE...]";        // any number of paths
constexpr char NumbersWords[] = "[WHAT...]"; // what the command itself looks at

constexpr TCommand Commands[] = {
    {"init", Folder, "Make a configuration to begin with, in FOLDER.", Init},
    {"lint", Folder, "Look for faults in the configuration.", Lint},
    {"check", "", "Tell whether the agent serves its folders.", Check},
    {"status", "", "Tell how the agent and each of its folders fare.", Status, nullptr, true},
    {"pause", Folder, "Leave FOLDER alone, or all of them.", Pause},
    {"resume", Folder, "Serve FOLDER again, or all of them.", Resume},
    {"refresh", "folders|actions", "Have the agent read a configuration file again.", Refresh},
    {"history", "", "Tell what became of files.", History, AddHistoryOptions, true},
    {"failed", "", "Tell which files failed, and why.", FailedFiles, AddFailedOptions, true},
    {"retry", Files, "Have failed files worked on again.", Retry, AddRetryOptions, true},
    {"numbers", NumbersWords, "List series of numbers, audit one, or set its next.", Numbers, nullptr, true},
    {"metrics", "", "Print numbers for a monitoring system.", Metrics, AddMetricsOptions},
};

constexpr char Options[] = R"(
Options:
  -q, --quiet              Print nothing; the exit code tells.
  -j, --json               Print JSON, where the command has any.
  -t, --timeout <seconds>  Wait that long for an answer, 5 by default.
  -h, --help               Print this, or behind a command its own options.
  -v, --version            Print the version.

Without FOLDER, init and lint take the configuration folder of the settings. A pause outlasts the agent.

Exit codes: 0 done, 1 the agent does not run, or a file could not be used, 2 wrong usage,
3 no answer in time, 4 faults in the configuration, 5 the agent runs and serves nothing.)";

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

/// Raises EUsage where a command doesn't take the words behind it.
void CheckWords(const TCommand& command, const QStringList& words) {
    const string argument = words.join(u' ');
    if (command.Arguments == Files || command.Arguments == NumbersWords)
        return;
    if (command.Arguments == Folder) {
        if (words.size() > 1)
            throw EUsage(
                QStringLiteral("The command \"%1\" takes one folder.").arg(QLatin1String(command.Name)));
        return;
    }
    const QStringList allowed = QString::fromLatin1(command.Arguments).split(u'|');
    if (allowed.contains(argument))
        return;
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

void AddCommonOptions(QCommandLineParser& parser) {
    parser.addOptions({{{"q", "quiet"}, "Print nothing; the exit code tells."},
                       {{"j", "json"}, "Print JSON, for programs."},
                       {{"t", "timeout"}, "Wait that long for the agent's answer.", "seconds", "5"},
                       {{"h", "help"}, "Print this."},
                       {{"v", "version"}, "Print the version."}});
}

/// Words that aren't options, with what options take left out; options of commands aren't known yet.
string FirstWord(const QStringList& arguments) {
    QCommandLineParser parser;
    AddCommonOptions(parser);
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    (void)parser.parse(arguments);
    return parser.positionalArguments().value(0);
}

string OwnHelpText(const TCommand& command, const QCommandLineParser& parser) {
    string text = parser.helpText();
    // The first line is the library's, which knows no commands.
    return QStringLiteral("Usage: morvanectl %1 [options] %2\n%3\n")
               .arg(QLatin1String(command.Name), QLatin1String(command.Arguments),
                    QLatin1String(command.Help)) +
           text.mid(text.indexOf(u'\n')).trimmed();
}

TCommandResult RunParsed(QCommandLineParser& parser, const QStringList& arguments) {
    const string name = FirstWord(arguments);
    const TCommand* command = name.isEmpty() ? nullptr : &FindCommand(name);
    AddCommonOptions(parser);
    if (command != nullptr && command->AddOptions != nullptr)
        command->AddOptions(parser);
    if (!parser.parse(arguments))
        throw EUsage(parser.errorText());
    if (parser.isSet("help"))
        return {ExitDone, command != nullptr && command->AddOptions != nullptr ? OwnHelpText(*command, parser)
                                                                               : HelpText()};
    if (parser.isSet("version"))
        return {ExitDone, QStringLiteral("morvanectl ") + ProgramVersion()};
    if (command == nullptr)
        throw EUsage(QStringLiteral("A command is missing."));
    if (parser.isSet("json") && !command->Json)
        throw EUsage(QStringLiteral("The command \"%1\" has no JSON.").arg(name));
    const QStringList words = parser.positionalArguments().mid(1);
    CheckWords(*command, words);
    return command->Run({words, TimeoutMsOf(parser.value("timeout")), parser.isSet("json"), parser});
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
