#include "agent/NamedPipeThread.h"

#include "agent/AgentStatus.h"
#include "agent/ControlPipe.h"
#include "platform/NamedPipeServer.h"

TNamedPipeThread::TNamedPipeThread(TFindTarget findTarget, const TAgentStatus& status)
    : TWorkerThread("control pipe"), FFindTarget(std::move(findTarget)), FStatus(status) {
    Start();
}

TNamedPipeThread::~TNamedPipeThread() {
    Stop();
}

void TNamedPipeThread::Execute() {
    TNamedPipeServer pipe(QLatin1String(ControlPipe::Name), QStringLiteral("."));
    pipe.OpenPipe();
    while (!Terminated()) {
        const string text = pipe.Read(ReadMs);
        if (text == QLatin1String(ControlPipe::Check))
            pipe.WritePipe(QLatin1String(ControlPipe::CheckReply));
        else if (text == QLatin1String(ControlPipe::Status))
            pipe.WritePipe(Widen(FStatus.ToJson()));
        else if (const std::optional<string> reply = HandlePause(text))
            pipe.WritePipe(*reply);
        else if (!text.isEmpty())
            HandleRefresh(text);
    }
}

/// Nothing for other commands.
std::optional<string> TNamedPipeThread::HandlePause(const string& command) const {
    const string word = command.section(u' ', 0, 0);
    const bool pause = word == QLatin1String(ControlPipe::Pause);
    if (!pause && word != QLatin1String(ControlPipe::Resume))
        return std::nullopt;
    TRefreshTarget* target = FFindTarget ? FFindTarget() : nullptr;
    if (target == nullptr)
        return QStringLiteral("The agent is starting.");
    const string failure = target->SetPaused(command.mid(word.size() + 1), pause);
    return failure.isEmpty() ? QLatin1String(ControlPipe::CheckReply) : failure;
}

void TNamedPipeThread::HandleRefresh(const string& command) {
    TRefreshTarget* target = FFindTarget ? FFindTarget() : nullptr;
    if (!target)
        return;
    if (command == QLatin1String(ControlPipe::RefreshFolders))
        target->RefreshFolders();
    else if (command == QLatin1String(ControlPipe::RefreshActions))
        target->RefreshActions();
}
