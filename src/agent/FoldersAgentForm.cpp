#include "agent/FoldersAgentForm.h"

#include "agent/AgentPicture.h"
#include "agent/FoldersThread.h"
#include "agent/RunLog.h"
#include "agent/Subfolders.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "base/Printable.h"
#include "base/Settings.h"
#include "platform/AppInstances.h"
#include "platform/MessageBox.h"
#include "platform/OpenPath.h"
#include "platform/ServiceNotice.h"
#include "scripting/AskForPassword.h"
#include "watch/FolderWatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdlib>

#include <algorithm>
#include <numeric>

std::atomic<TfrmFoldersAgent*> frmFoldersAgent = nullptr;

namespace {

constexpr int FrameSize = 16;
constexpr size_t FailedItem = 1;
constexpr size_t PauseItem = 2;
constexpr qint64 NoticeEvery = 30'000; // ms: many failures make one notice

string FailedCaption(qint64 count) {
    return QStringLiteral("Failed (%1)").arg(count);
}

string PauseCaption(bool paused) {
    return paused ? QStringLiteral("Resume") : QStringLiteral("Pause");
}

qint64 SumOf(const QMap<string, qint64>& counts) {
    return std::accumulate(counts.begin(), counts.end(), qint64(0));
}

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
    : TComponent(nullptr),
      FCaption(QStringLiteral("Watched Folders Agent")), OpenLog1{QStringLiteral("Open log"),
                                                                  [this] { OpenLog1Click(); }},
      Failed1{FailedCaption(0), [this] { Failed1Click(); }, /*Enabled=*/false},
      Pause1{PauseCaption(/*paused=*/false), [this] { Pause1Click(); }},
      Exit1{QStringLiteral("Exit"), [this] { Exit1Click(); }}, PopupMenu1{{OpenLog1, Failed1, Pause1, Exit1}},
      ImageList1(FrameSize, FrameSize), TrayIcon1(nullptr), FHost(std::move(host)), FPauses(StateFolder()),
      FWindow([this](TMessage& message) { WndProc(message); }, QLatin1String(WindowClass)) {
    FCaptions = {Failed1.Caption, Pause1.Caption};
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
    TrayIcon1.OnClick = [this] { IconClick(); };
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
    FConfigPath = path;
    FLedger = std::make_unique<TAgentLedger>(settings);
    FReasonFiles = settings.ReasonFiles;
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
    FWatchedFoldersThread = std::make_unique<TWatchedFoldersThread>(path,
                                                                    TRunHost{FHost.Clock, FHost.Files, *this,
                                                                             FStatus, StateFolder(), &FPauses,
                                                                             FLedger.get(), FReasonFiles},
                                                                    settings);
    // The folders thread tells by itself that it lives, but while it is at work on a file.
    if (const qint64 wait = ServiceNotice().WatchdogMs(); wait > 0 && settings.Workers.Count == 0) {
        QObject::connect(&FSignsOfLife, &QTimer::timeout, this, [this] {
            if (FStatus.Working())
                ServiceNotice().Alive();
        });
        FSignsOfLife.start(int(wait / 2));
    }
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
    ServiceNotice().Alive();
    ShowMenu();
    const string failures = FailureNotice();
    const auto troubles = FStatus.Troubles();
    if (troubles == FTroubles && failures.isEmpty())
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
    if (!failures.isEmpty())
        fresh += failures;
    TrayIcon1.SetTrouble(all.join(u'\n'), fresh.join(u'\n'));
}

void TfrmFoldersAgent::ShowMenu() {
    TrayIcon1.SetNote(FStatus.HasNews() ? Printable(FStatus.Summary()) : string());
    const qint64 failed = SumOf(FStatus.Failures());
    const QStringList captions = {FailedCaption(failed), PauseCaption(FPauses.AllPaused())};
    if (captions == FCaptions)
        return;
    FCaptions = captions;
    TrayIcon1.SetItem(FailedItem, captions[0], failed > 0);
    TrayIcon1.SetItem(PauseItem, captions[1], true);
}

/// What failed since the last notice; empty where that is nothing, or too recent.
string TfrmFoldersAgent::FailureNotice() {
    const QMap<string, qint64> failures = FStatus.Failures();
    const qint64 now = FHost.Clock.Steady();
    if (failures == FFailuresTold || (FNoticeAt != 0 && now - FNoticeAt < NoticeEvery))
        return {};
    QStringList folders;
    for (auto it = failures.begin(); it != failures.end(); ++it)
        if (it.value() > FFailuresTold.value(it.key()))
            folders += it.key();
    const qint64 count = SumOf(failures) - SumOf(FFailuresTold);
    FFailuresTold = failures;
    if (folders.isEmpty())
        return {};
    FNoticeAt = now;
    const string files = count == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(count);
    return folders.size() == 1 ? QStringLiteral("%1 failed in \"%2\".").arg(files, Printable(folders.first()))
                               : QStringLiteral("%1 failed in %2 folders.").arg(files).arg(folders.size());
}

void TfrmFoldersAgent::OpenLog1Click() const {
    const string folder = FConfigPath + QStringLiteral("logs/");
    const string today = folder + LogFileName(FHost.Clock.Now().date());
    OpenPathHost().Open(FileExists(today) ? today : folder);
}

/// Where most have failed.
void TfrmFoldersAgent::Failed1Click() const {
    const QMap<string, qint64> failures = FStatus.Failures();
    const auto most = std::max_element(failures.begin(), failures.end());
    if (most != failures.end())
        OpenPathHost().Open(IncludeTrailingDelimiter(most.key()) + QLatin1String(ErrorFolder));
}

void TfrmFoldersAgent::IconClick() const {
    if (FStatus.Failures().isEmpty())
        OpenLog1Click();
    else
        Failed1Click();
}

void TfrmFoldersAgent::Pause1Click() {
    if (const string failure = SetPaused({}, !FPauses.AllPaused()); !failure.isEmpty())
        ShowError(failure);
}

string TfrmFoldersAgent::SetPaused(const string& folder, bool paused) {
    QStringList known;
    for (const string& name : FStatus.FolderNames())
        known += IncludeTrailingDelimiter(name);
    if (!folder.isEmpty() && !known.contains(IncludeTrailingDelimiter(folder)))
        return QStringLiteral("No folder \"%1\" is configured.").arg(folder);
    if (!folder.isEmpty() && !paused && FPauses.AllPaused())
        return QStringLiteral("All folders are paused; resume them first.");
    try {
        FPauses.Set(folder, paused);
        return {};
    } catch (const std::exception& e) {
        return MessageOf(e);
    }
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
