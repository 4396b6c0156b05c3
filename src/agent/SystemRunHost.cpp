#include "agent/SystemRunHost.h"

#include "base/FolderListing.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 LongWait = 600LL * 1'000'000'000;

/// Of a file that waits for so long that somebody may wonder.
string WhyItWaits(const TFolder& folder, const string& name) {
    struct stat info {};
    const QByteArray bytes = PathBytes(name);
    if (::faccessat(folder.Descriptor(), bytes.constData(), R_OK, AT_EACCESS) != 0)
        return QStringLiteral("it can't be read");
    return folder.Look(bytes, info) && info.st_size == 0
               ? QStringLiteral("it is empty")
               : QStringLiteral("somebody holds it open for writing, or still writes to it");
}

} // namespace

qint64 TSystemClock::Steady() {
    struct timespec now {};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

void TSystemClock::WaitTick() {
    std::unique_lock lock(FMutex);
    FWoken.wait_for(lock, std::chrono::seconds(1), [this] { return FAwake; });
}

void TSystemClock::Wake() {
    const std::lock_guard lock(FMutex);
    FAwake = true;
    FWoken.notify_all();
}

void TSystemFolderFiles::NoteNameless(const TFolder& folder, int count) {
    if (count == 0 || FWarned.contains(folder.Path()))
        return;
    FWarned.insert(folder.Path());
    JournalLine(QStringLiteral("\"%1\" holds files whose names are not valid UTF-8; they are left alone.")
                    .arg(folder.Path()));
}

/// Tells once of a file that waits for long.
void TSystemFolderFiles::NoteBusy(const TFolder& folder, const string& name, qint64 now, TBusySince& busy) {
    constexpr qint64 Told = -1;
    qint64 since = FWaiting.value(folder.Path()).value(name, now);
    if (since != Told && now - since >= LongWait) {
        JournalLine(QStringLiteral("\"%1\" waits: %2.").arg(folder.Path() + name, WhyItWaits(folder, name)));
        since = Told;
    }
    busy.insert(name, since);
}

QStringList TSystemFolderFiles::ReadyFiles(const TFolder& folder, qint64 now, const TQuietTime& quiet) {
    int nameless = 0;
    QStringList names = ListFiles(folder, QStringLiteral("*.pdf"), &nameless);
    NoteNameless(folder, nameless);
    TBusySince busy;
    names.removeIf([&](const string& name) {
        const bool ready = FBusy.IsReady(folder, name, now, quiet);
        if (!ready)
            NoteBusy(folder, name, now, busy);
        return !ready;
    });
    FWaiting.insert(folder.Path(), busy);
    return names;
}

bool TSystemFolderFiles::IsStillReady(const TFolder& folder, const TSourceFile& file, qint64 now,
                                      const TQuietTime& quiet) {
    return FBusy.IsReady(folder, file.Name(), file.Descriptor(), now, quiet);
}

bool TSystemFolderFiles::IsHeld(const TFolder& folder, const TSourceFile& file) {
    return FBusy.IsHeld(folder, file.Descriptor());
}
