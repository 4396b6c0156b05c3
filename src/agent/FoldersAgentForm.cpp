#include "agent/FoldersAgentForm.h"

#include "agent/AgentPicture.h"
#include "agent/FoldersThread.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "base/Printable.h"
#include "base/Settings.h"
#include "platform/AppInstances.h"
#include "platform/MessageBox.h"
#include "platform/ServiceNotice.h"
#include "scripting/AskForPassword.h"
#include "watch/FolderWatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdlib>

#include <algorithm>

std::atomic<TfrmFoldersAgent*> frmFoldersAgent = nullptr;

namespace {

constexpr int FrameSize = 16;

/// With a delimiter at its end; empty if there is no such folder. The root is none: it is what is left of a
/// reference to an empty variable.
string ConfigurationPath(const string& configured) {
    const string path = ExpandEnvironment(IncludeTrailingDelimiter(configured));
    return path != u'/' && DirectoryExists(path) ? path : string();
}

void ShowError(const string& text) {
    [[maybe_unused]] const int answer = MessageBoxHost().Show(text, ApplicationTitle(), MB_OK | MB_ICONERROR);
}

} // namespace

TfrmFoldersAgent::TfrmFoldersAgent(TFormHost host)
    : TComponent(nullptr), FCaption(QStringLiteral("Watched Folders Agent")), Exit1{QStringLiteral("Exit"),
                                                                                    [this] { Exit1Click(); }},
      PopupMenu1{{Exit1}}, ImageList1(FrameSize, FrameSize), TrayIcon1(nullptr), FHost(host),
      FWindow([this](TMessage& message) { WndProc(message); }, QLatin1String(WindowClass)) {
    FillTrayIcon();
    frmFoldersAgent.store(this);
    try {
        FormCreate();
    } catch (const std::exception& e) {
        ShowError(MessageOf(e));
    }
}

TfrmFoldersAgent::~TfrmFoldersAgent() {
    FormDestroy();
    frmFoldersAgent.store(nullptr);
}

void TfrmFoldersAgent::FillTrayIcon() {
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        TrayIcon1.Icon.push_back(AgentPicture(size));
        TrayIcon1.AttentionIcon.push_back(AttentionPicture(size));
    }
    for (int frame = 0; frame < AgentFrames; ++frame)
        ImageList1.Add(AgentFrame(FrameSize, frame));
    TrayIcon1.Icons = &ImageList1;
    // The frames and their interval are in place, and nothing animates them: the picture stands still.
    TrayIcon1.FAnimateInterval = 500;
    TrayIcon1.PopupMenu = &PopupMenu1;
}

void TfrmFoldersAgent::FormCreate() {
    FCronJobs = std::make_unique<TObjectList<TZQCronJob>>();
    TrayIcon1.SetVisible(/*visible=*/true);
    const TEditorSettings settings = GetEditorSettings();
    const string path = ConfigurationPath(settings.ConfigurationFolder);
    if (path.isEmpty() || !DirectoryExists(path)) {
        ShowError(QStringLiteral("Configuration Path is missing or invalid. "));
        Terminate(EXIT_FAILURE); // a service starts again, and may find it by then
        return;
    }
    StartThreads(path, {.KeepDays = settings.KeepDays,
                        .FirstTick = 0,
                        .Workers = {.Count = FHost.Worker.isEmpty() ? 0 : settings.Workers,
                                    .WorkSeconds = settings.WorkSeconds,
                                    .WorkMemory = settings.WorkMemory,
                                    .Program = FHost.Worker}});
    ServiceNotice().Ready(FStatus.Summary());
    StartWatch(path);
}

void TfrmFoldersAgent::StartThreads(const string& path, const TRunSettings& settings) {
    FWatchedFoldersThread = std::make_unique<TWatchedFoldersThread>(
        path, TRunHost{FHost.Clock, FHost.Files, *this, FStatus, StateFolder()}, settings);
    FNamedPipeThread = std::make_unique<TNamedPipeThread>([] { return frmFoldersAgent.load(); }, FStatus);
}

void TfrmFoldersAgent::SetHint(const string& text) {
    TrayIcon1.SetHint(text);
    if (text != ApplicationTitle())
        ServiceNotice().SetStatus(text);
}

/// A trouble is notified once, when it comes; its text may change without another word.
void TfrmFoldersAgent::StatusTold() {
    if (ServiceNotice().Listening())
        ServiceNotice().SetStatus(FStatus.Summary());
    const auto troubles = FStatus.Troubles();
    if (troubles == FTroubles)
        return;
    QStringList all;
    QStringList fresh;
    for (const auto& trouble : troubles) {
        all += Printable(trouble.Text);
        const bool known = std::any_of(FTroubles.begin(), FTroubles.end(),
                                       [&](const auto& told) { return told.Subject == trouble.Subject; });
        if (!known)
            fresh += all.last();
    }
    FTroubles = troubles;
    TrayIcon1.SetTrouble(all.join(u'\n'), fresh.join(u'\n'));
}

void TfrmFoldersAgent::StartWatch(const string& path) {
    auto* watch = new TFolderWatch(this);
    watch->SetDirectory(path);
    watch->SetOnChange([this](TFolderWatch& sender) { FolderChanged(sender); });
    watch->SetNotifyFilters(TFolderWatch::nfLastWrite);
    watch->SetActive(/*active=*/true);
    FolderChanged(*watch); // a write between the first reading and the watch's begin would be missed
}

void TfrmFoldersAgent::FormDestroy() {
    FCronJobs.reset();
    StopThreads();
}

void TfrmFoldersAgent::StopThreads(TWindowSystem windows) {
    QElapsedTimer waited;
    waited.start();
    const auto meanwhile = [&] {
        if (windows == TWindowSystem::Alive)
            QCoreApplication::processEvents();
        if (FHost.StopLimitMs > 0 && waited.hasExpired(FHost.StopLimitMs)) {
            JournalLine(
                QStringLiteral("The work at hand doesn't end and is abandoned; its file is served again."));
            std::_Exit(EXIT_SUCCESS); // nothing of it has been published
        }
    };
    MessageBoxHost().CloseAll();
    PasswordPrompt().CancelAll();
    FStatus.SetAgent(TAgentState::Stopping);
    ServiceNotice().Stopping();
    if (FWatchedFoldersThread) {
        FWatchedFoldersThread->Terminate();
        FWatchedFoldersThread->WaitForDelivering(meanwhile);
        const std::lock_guard guard(FThreadLock);
        FWatchedFoldersThread.reset();
    }
    if (FNamedPipeThread) {
        FNamedPipeThread->Terminate();
        FNamedPipeThread->WaitForDelivering(meanwhile);
        FNamedPipeThread.reset();
    }
}

bool TfrmFoldersAgent::Raise(TFlag flag) {
    const std::lock_guard guard(FThreadLock);
    if (!FWatchedFoldersThread)
        return false;
    (FWatchedFoldersThread.get()->*flag).store(true, std::memory_order_relaxed);
    return true;
}

void TfrmFoldersAgent::FolderChanged(TFolderWatch& /*sender*/) {
    [[maybe_unused]] const bool raised = Raise(&TWatchedFoldersThread::FDirChanged);
}

// A command that comes after the folders thread has gone ends the pipe's thread, which is stopped next
// anyway.
void TfrmFoldersAgent::RefreshFolders() {
    if (!Raise(&TWatchedFoldersThread::FRefreshFolders))
        throw Exception(QStringLiteral("The agent is stopping."));
}

void TfrmFoldersAgent::RefreshActions() {
    if (!Raise(&TWatchedFoldersThread::FRefreshActions))
        throw Exception(QStringLiteral("The agent is stopping."));
}

void TfrmFoldersAgent::Terminate(int exitCode) {
    FTerminated = true; // before the event loop runs, the next call is lost
    FExitCode = exitCode;
    // Not quit(), which asks the open windows first, and any of them may refuse.
    QCoreApplication::exit(exitCode);
}

void TfrmFoldersAgent::WndProc(TMessage& message) {
    if (ReadMessageCheck(message, Handle()) != CopyDataCommandLine) {
        DefWindowProc(message);
        return;
    }
    // A second instance's command line: there are no options, so it is taken and dropped.
    string text;
    ReadMessageString(message, text);
    text = text.trimmed();
}
