#include "apps/ctl/PipeCommands.h"

#include "agent/ControlPipe.h"
#include "platform/NamedPipe.h"

#include <QDir>

namespace {

/// Sends the commands on one connection and reads one reply: the agent takes messages in their order.
TPipeReply Send(const QStringList& commands, int timeoutMs) {
    try {
        TNamedPipeClient pipe{QLatin1String(ControlPipe::Name)};
        pipe.OpenPipe();
        for (const string& command : commands)
            pipe.WritePipe(command);
        TPipeReply reply{pipe.Read(timeoutMs), {}};
        if (reply.Text.isEmpty())
            reply.Failure = {ExitNoAnswer, QStringLiteral("The agent does not answer.")};
        return reply;
    } catch (const EPipeError&) {
        return {{}, TCommandResult{ExitFailed, QStringLiteral("The agent is not running.")}};
    }
}

TCommandResult SendPause(const char* command, const string& folder, const TCommandCall& call) {
    string words = QLatin1String(command);
    if (!folder.isEmpty())
        words += u' ' + QDir(folder).absolutePath();
    const TPipeReply reply = Send({words}, call.TimeoutMs);
    if (reply.Failure)
        return *reply.Failure;
    return reply.Text == QLatin1String(ControlPipe::CheckReply) ? TCommandResult{}
                                                                : TCommandResult{ExitFailed, reply.Text};
}

} // namespace

TPipeReply AskAgent(const string& command, int timeoutMs) {
    return Send({command}, timeoutMs);
}

TCommandResult Pause(const TCommandCall& call) {
    return SendPause(ControlPipe::Pause, call.Word(), call);
}

TCommandResult Resume(const TCommandCall& call) {
    return SendPause(ControlPipe::Resume, call.Word(), call);
}

TCommandResult Refresh(const TCommandCall& call) {
    const bool folders = call.Word() == u"folders";
    // A refresh has no answer of its own; that of the next command says that it was taken.
    const TPipeReply reply =
        Send({QLatin1String(folders ? ControlPipe::RefreshFolders : ControlPipe::RefreshActions),
              QLatin1String(ControlPipe::Check)},
             call.TimeoutMs);
    return reply.Failure.value_or(TCommandResult{});
}
