#include "agent/SystemRunHost.h"

#include "base/FolderListing.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <chrono>

void TSystemClock::WaitTick() {
    std::unique_lock lock(FMutex);
    FWoken.wait_for(lock, std::chrono::seconds(1), [this] { return FAwake; });
}

void TSystemClock::Wake() {
    const std::lock_guard lock(FMutex);
    FAwake = true;
    FWoken.notify_all();
}

QStringList TSystemFolderFiles::ReadyFiles(const string& folder, qint64 now) {
    int unreadable = 0;
    QStringList names = ListFiles(folder, QStringLiteral("*.pdf"), &unreadable);
    if (unreadable > 0 && !FWarned.contains(folder)) {
        FWarned.insert(folder);
        JournalLine(QStringLiteral("\"%1\" holds files whose names are not valid UTF-8; they are left alone.")
                        .arg(folder));
    }
    const string path = IncludeTrailingDelimiter(folder);
    names.removeIf([&](const string& name) { return !FBusy.IsReady(path + name, now); });
    return names;
}
