#include "base/SourceFile.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/Journal.h"
#include "base/NewName.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "base/UniqueName.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

int OpenRegular(const TFolder& folder, const string& name, struct stat& info) {
    const QByteArray bytes = PathBytes(name);
    const int descriptor = WithFaultPoint("open source", [&] {
        return ::openat(folder.Descriptor(), bytes.constData(),
                        O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    });
    if (descriptor < 0)
        throw EFileError(QStringLiteral("open"), folder.Path() + name, errno);
    if (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode))
        return descriptor;
    ::close(descriptor);
    throw EFileError(QStringLiteral("open"), folder.Path() + name, EINVAL);
}

} // namespace

TSourceFile::TSourceFile(TFolderPtr folder, const string& name) : FHome(std::move(folder)), FName(name) {
    struct stat info {};
    FDescriptor = OpenRegular(*FHome, name, info);
    FOpened = StateOf(info);
}

TSourceFile::~TSourceFile() {
    Unclaim();
    ::close(FDescriptor);
}

bool TSourceFile::LiesUnchangedIn(const TFolder& folder, const TFileState& expected) const {
    struct stat info {};
    return folder.Look(PathBytes(FName), info) && StateOf(info).SameContents(expected);
}

bool TSourceFile::IsUnchanged() const {
    struct stat info {};
    return FHome->Look(PathBytes(FName), info) && StateOf(info) == FOpened;
}

TSourceFile::TClaim TSourceFile::Claim(TClaimFolder& claims, TClaimFolder& nearby) {
    struct stat info {};
    const QByteArray name = PathBytes(FName);
    if (!FHome->Look(name, info))
        return TClaim::Gone;
    if (StateOf(info) != FOpened)
        return TClaim::Changed;
    const auto moveInto = [&](const TFolderPtr& folder) {
        FClaimed = folder;
        return WithFaultPoint("claim", [&] {
            return ::renameat(FHome->Descriptor(), name.constData(), folder->Descriptor(), name.constData());
        });
    };
    int moved = moveInto(claims.Folder());
    FCrossing = moved != 0 && errno == EXDEV;
    if (FCrossing)
        moved = moveInto(nearby.Folder());
    if (moved != 0) {
        const int error = errno;
        FClaimed.reset();
        if (error == ENOENT)
            return TClaim::Gone;
        throw EFileError(QStringLiteral("take"), Path(), error);
    }
    if (LiesUnchangedIn(*FClaimed, FOpened))
        return TClaim::Claimed;
    Unclaim(); // written to or replaced in the instant before
    return TClaim::Changed;
}

void TSourceFile::CopyTo(const TFolderPtr& target) {
    auto copy = std::make_unique<TPartFile>(target, FName);
    copy->WriteAllOf(FDescriptor);
    copy->TakeModeOf(FDescriptor);
    copy->Flush();
    FCopy = std::move(copy);
}

void TSourceFile::PrepareSettling(const TFolderPtr& target) {
    if (FCrossing)
        CopyTo(target);
}

string TSourceFile::PublishCopy() {
    // What was written to the file since it was copied would be lost with it: it is copied again.
    struct stat info {};
    if (::fstat(FDescriptor, &info) != 0 || !StateOf(info).SameContents(FOpened))
        throw EFileError(QStringLiteral("\"%1\" was written to while it was moved.").arg(Path()), EBUSY);
    PublishFree(*FCopy);
    string name = ExtractFileName(FCopy->FinalPath());
    FCopy.reset();
    const QByteArray bytes = PathBytes(FName);
    if (WithFaultPoint("unlink source",
                       [&] { return ::unlinkat(FClaimed->Descriptor(), bytes.constData(), 0); }) != 0)
        JournalLine(EFileError(QStringLiteral("remove"), FClaimed->Path() + FName, errno).Message());
    FClaimed.reset();
    return name;
}

string TSourceFile::Settle(const TFolderPtr& target) {
    string name = FName;
    int error = FCopy != nullptr ? EXDEV : EEXIST;
    while (error == EEXIST) {
        name = ExtractFileName(UniqueFileName(target->Path() + name, *target));
        error = MoveToNewName("settle", *FClaimed, PathBytes(FName), *target, PathBytes(name));
    }
    if (error == EXDEV) {
        if (FCopy == nullptr)
            CopyTo(target);
        return PublishCopy();
    }
    if (error != 0)
        throw EFileError(QStringLiteral("move"), target->Path() + name, error);
    FClaimed.reset();
    return name;
}

void TSourceFile::Unclaim() {
    FCopy.reset();
    if (FClaimed == nullptr)
        return;
    const TFolderPtr claimed = std::exchange(FClaimed, nullptr);
    try {
        (void)GiveBack(*claimed, FName, *FHome);
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e));
    }
}
