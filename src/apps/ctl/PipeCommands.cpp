#include "apps/ctl/PipeCommands.h"

#include "agent/ControlPipe.h"
#include "platform/NamedPipe.h"

namespace {

/// Sends a command, if any, then "check" on the same connection: the agent takes messages in their order,
/// so its answer says that it has taken the command too, which has no answer of its own.
TOutcome Send(const string& command, const string& done, int timeoutMs) {
    try {
        TNamedPipeClient pipe{QLatin1String(ControlPipe::Name)};
        pipe.OpenPipe();
        if (!command.isEmpty())
            pipe.WritePipe(command);
        pipe.WritePipe(QLatin1String(ControlPipe::Check));
        if (pipe.Read(timeoutMs) == QLatin1String(ControlPipe::CheckReply))
            return {ExitDone, done};
        return {ExitNoAnswer, QStringLiteral("The agent does not answer.")};
    } catch (const EPipeError&) {
        return {ExitFailed, QStringLiteral("The agent is not running.")};
    }
}

} // namespace

TOutcome Check(const string& /*argument*/, int timeoutMs) {
    return Send({}, QStringLiteral("The agent is running."), timeoutMs);
}

TOutcome Refresh(const string& argument, int timeoutMs) {
    const bool folders = argument == u"folders";
    return Send(QLatin1String(folders ? ControlPipe::RefreshFolders : ControlPipe::RefreshActions), {},
                timeoutMs);
}
