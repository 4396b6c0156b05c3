#include "watch/FolderWatch.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "watch/WatchThread.h"

#include <utility>

namespace {

void RequireDirectory(const string& directory) {
    if (!DirectoryExists(directory))
        throw Exception(QStringLiteral("Invalid Directory: ") + directory);
}

} // namespace

Cardinal ChangeFiltersOf(TFolderWatch::TNotifyFilters filters) {
    static constexpr std::pair<TFolderWatch::TNotifyFilter, TChangeFilter> Table[] = {
        {TFolderWatch::nfFilename, FILE_NOTIFY_CHANGE_FILE_NAME},
        {TFolderWatch::nfDirname, FILE_NOTIFY_CHANGE_DIR_NAME},
        {TFolderWatch::nfAttrib, FILE_NOTIFY_CHANGE_ATTRIBUTES},
        {TFolderWatch::nfSize, FILE_NOTIFY_CHANGE_SIZE},
        {TFolderWatch::nfLastWrite, FILE_NOTIFY_CHANGE_LAST_WRITE},
        {TFolderWatch::nfSecurity, FILE_NOTIFY_CHANGE_SECURITY},
    };
    Cardinal flags = 0;
    for (const auto& [filter, flag] : Table)
        if (filters.testFlag(filter))
            flags |= flag;
    return flags;
}

TFolderWatch::TFolderWatch(TComponent* owner, TDesigning designing)
    : TComponent(owner), fDesigning(designing) {
    if (fDesigning == TDesigning::No)
        fWindow = std::make_unique<THiddenWindow>([this](TMessage& message) { WndProc(message); });
}

TFolderWatch::~TFolderWatch() = default;

void TFolderWatch::SetDirectory(const string& directory) {
    if (directory.isEmpty()) {
        SetActive(/*active=*/false);
        fDirectory.clear();
        return;
    }
    string wanted = IncludeTrailingDelimiter(directory);
    if (wanted == fDirectory)
        return;
    if (fDesigning == TDesigning::No)
        RequireDirectory(wanted);
    fDirectory = std::move(wanted);
    if (fWatchThread)
        fWatchThread->SetDirectory(fDirectory);
}

void TFolderWatch::SetNotifyFilters(TNotifyFilters filters) {
    if (filters == fNotifyFilters)
        return;
    fNotifyFilters = filters;
    Restart();
}

void TFolderWatch::SetWatchSubDirs(bool watchSubDirs) {
    if (watchSubDirs == fWatchSubDirs)
        return;
    fWatchSubDirs = watchSubDirs;
    Restart();
}

void TFolderWatch::Restart() {
    if (!fWatchThread)
        return;
    SetActive(/*active=*/false);
    SetActive(/*active=*/true);
}

void TFolderWatch::SetActive(bool active) {
    if (active == fActive)
        return;
    if (active && fDesigning == TDesigning::No)
        StartThread();
    else if (!active)
        fWatchThread.reset();
    fActive = active;
}

void TFolderWatch::StartThread() {
    RequireDirectory(fDirectory);
    fWatchThread =
        std::make_unique<TWatchThread>(TWatchOrder{.Owner = fWindow->Handle(),
                                                   .Directory = fDirectory,
                                                   .Subtree = fWatchSubDirs ? TSubtree::Yes : TSubtree::No,
                                                   .Filters = ChangeFiltersOf(fNotifyFilters)});
}

void TFolderWatch::WndProc(TMessage& message) {
    if (message.Number != WM_FOLDER_CHANGED) {
        DefWindowProc(message);
        return;
    }
    if (fOnChangeEvent) {
        const TNotifyEvent event = fOnChangeEvent; // it may set another, or destroy this component
        event(*this);
    }
}
