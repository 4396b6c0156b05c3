#include "base/ClaimFolder.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/FolderListing.h"
#include "base/Journal.h"
#include "base/NewName.h"
#include "base/Paths.h"
#include "base/RunToken.h"
#include "base/UniqueName.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr char Prefix[] = ".morvane-claim-";
constexpr time_t Forgotten = 900; // seconds

std::atomic<unsigned> Folders = 0;

bool Lock(const TFolder& folder, bool& busy) {
    const int locked =
        WithFaultPoint("flock", [&] { return ::flock(folder.Descriptor(), LOCK_EX | LOCK_NB); });
    busy = locked != 0 && errno == EWOULDBLOCK;
    return locked == 0;
}

/// Whether the folder's run may still be at work in it.
bool InUse(const TFolder& folder, const QByteArray& name) {
    const TRunState run = StateOfRun(name.mid(name.lastIndexOf('.') + 1));
    if (run == TRunState::Dead)
        return false;
    struct stat info {};
    if (run == TRunState::Unknown)
        return ::fstat(folder.Descriptor(), &info) == 0 && ::time(nullptr) - info.st_ctime < Forgotten;
    bool busy = false;
    // A run of this very host that lives holds its lock; without locks, its living alone counts.
    return !Lock(folder, busy);
}

/// A kill between the making of a second name and the end of the first leaves both.
bool HasSettled(const TFolder& claims, const QByteArray& file, const QList<TFolderPtr>& settled) {
    struct stat claimed {};
    struct stat other {};
    if (!claims.Look(file, claimed) || claimed.st_nlink < 2)
        return false;
    for (const TFolderPtr& folder : settled)
        for (const QByteArray& name : ListAll(*folder))
            if (folder->Look(name, other) && other.st_ino == claimed.st_ino && other.st_dev == claimed.st_dev)
                return true;
    return false;
}

void SweepOne(const TFolderPtr& parent, const QByteArray& name, const TFolder& home,
              const QList<TFolderPtr>& settled, QStringList& given) {
    struct stat info {};
    if (!parent->Look(name, info) || !S_ISDIR(info.st_mode) || info.st_uid != ::geteuid())
        return;
    const TFolderPtr claims = TFolder::OpenBelow(parent, QString::fromLatin1(name));
    if (InUse(*claims, name))
        return;
    for (const QByteArray& file : ListAll(*claims)) {
        if (HasSettled(*claims, file, settled))
            (void)WithFaultPoint("unlink",
                                 [&] { return ::unlinkat(claims->Descriptor(), file.constData(), 0); });
        else
            given.append(GiveBack(*claims, QString::fromUtf8(file), home));
    }
    (void)WithFaultPoint("rmdir claims",
                         [&] { return ::unlinkat(parent->Descriptor(), name.constData(), AT_REMOVEDIR); });
}

} // namespace

bool HoldsClaimed(const TFolder& parent, const QByteArray& file) {
    const QList<QByteArray> names = ListAll(parent);
    return std::any_of(names.begin(), names.end(), [&](const QByteArray& name) {
        struct stat info {};
        return name.startsWith(Prefix) && parent.Look(name + '/' + file, info);
    });
}

string GiveBack(const TFolder& claims, const string& file, const TFolder& home) {
    string name = file;
    for (;;) {
        const int error = MoveToNewName("give back", claims, PathBytes(file), home, PathBytes(name));
        if (error == 0)
            return name;
        if (error != EEXIST)
            throw EFileError(QStringLiteral("give back"), claims.Path() + file, error);
        name = ExtractFileName(UniqueFileName(home.Path() + name, home));
    }
}

TClaimFolder::~TClaimFolder() {
    if (FFolder != nullptr)
        (void)WithFaultPoint("rmdir claims", [&] {
            return ::unlinkat(FParent->Descriptor(), FName.constData(), AT_REMOVEDIR);
        });
}

const TFolderPtr& TClaimFolder::Folder() {
    while (FFolder == nullptr)
        Make();
    return FFolder;
}

/// Leaves nothing made where a sweep took the folder away before its lock stood.
void TClaimFolder::Make() {
    FName = Prefix + QByteArray::number(++Folders) + '.' + RunToken();
    const int made = WithFaultPoint(
        "mkdir claims", [&] { return ::mkdirat(FParent->Descriptor(), FName.constData(), 0700); });
    if (made != 0 && errno != EEXIST)
        throw EFileError(QStringLiteral("make a folder in"), FParent->Path(), errno);
    TFolderPtr folder = TFolder::OpenBelow(FParent, QString::fromLatin1(FName));
    bool busy = false;
    struct stat info {};
    (void)Lock(*folder, busy);
    if (!busy && ::fstat(folder->Descriptor(), &info) == 0 && info.st_nlink > 0)
        FFolder = std::move(folder);
}

QStringList SweepClaims(const TFolderPtr& parent, const TFolderPtr& home, const QList<TFolderPtr>& settled) {
    QStringList given;
    for (const QByteArray& name : ListAll(*parent)) {
        if (!name.startsWith(Prefix))
            continue;
        try {
            SweepOne(parent, name, *home, settled, given);
        } catch (const EFileError& e) {
            if (e.Error() != ENOENT) // another agent swept it at the same time
                JournalLine(e.Message());
        }
    }
    return given;
}
