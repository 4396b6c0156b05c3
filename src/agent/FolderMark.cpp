#include "agent/FolderMark.h"

#include "base/Exceptions.h"
#include "base/PartFile.h"
#include "base/RunToken.h"
#include "platform/Descriptor.h"

#include <QByteArrayList>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/magic.h>
#include <optional>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

constexpr qint64 BeatsEvery = 60'000; // ms

struct TMark {
    QUuid Key;
    QByteArray Token; // of the agent that served the folder last; empty where none says so
    string Agent;
};

/// Nothing where there is no such file.
std::optional<TMark> Read(const TFolder& folder) {
    const TDescriptor file(
        ::openat(folder.Descriptor(), FolderMarkFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT)
        return std::nullopt;
    QByteArray text(1024, Qt::Uninitialized);
    const ssize_t size = file ? ::read(file.Number(), text.data(), size_t(text.size())) : -1;
    if (size < 0)
        throw EFileError(QStringLiteral("read"), folder.Path() + QLatin1String(FolderMarkFile), errno);
    text.truncate(size);
    const QByteArrayList lines = text.split('\n');
    const TMark mark{QUuid(QLatin1String(lines.value(0).trimmed())), lines.value(1),
                     QString::fromUtf8(lines.value(2))};
    if (mark.Key.isNull())
        throw EFileError(QStringLiteral("\"%1%2\" names no folder; remove it, and the agent makes another")
                             .arg(folder.Path(), QLatin1String(FolderMarkFile)),
                         EINVAL);
    return mark;
}

QByteArray TextOf(const TMark& mark) {
    return QByteArrayList{mark.Key.toByteArray(QUuid::WithoutBraces), mark.Token, mark.Agent.toUtf8(), {}}
        .join('\n');
}

/// Where there is none yet, the one that an agent made which was faster counts.
TMark ReadOrMake(const TFolderPtr& folder) {
    std::optional<TMark> mark = Read(*folder);
    if (!mark) {
        TPartFile file(folder, QLatin1String(FolderMarkFile));
        const QByteArray text = TextOf({QUuid::createUuid(), {}, {}});
        file.Write(text.constData(), size_t(text.size()));
        (void)file.PublishNew();
        mark = Read(*folder);
    }
    if (!mark)
        throw EFileError(QStringLiteral("read"), folder->Path() + QLatin1String(FolderMarkFile), ENOENT);
    return *mark;
}

/// It is on a network, or somebody else may write to it.
bool MayBeShared(const TFolder& folder) {
    constexpr quint32 Networks[] = {NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC,
                                    SMB2_SUPER_MAGIC, FUSE_SUPER_MAGIC, V9FS_MAGIC,
                                    CEPH_SUPER_MAGIC, AFS_SUPER_MAGIC,  OCFS2_SUPER_MAGIC};
    struct stat info {};
    struct statfs system {};
    if (::fstat(folder.Descriptor(), &info) == 0 && (info.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return true;
    return ::fstatfs(folder.Descriptor(), &system) == 0 &&
           std::find(std::begin(Networks), std::end(Networks), quint32(system.f_type)) != std::end(Networks);
}

} // namespace

string FolderKeyOf(const TFolderPtr& folder) {
    return ReadOrMake(folder).Key.toString(QUuid::WithoutBraces);
}

/// Whoever has written itself over this agent's mark lives; one that is met at first is known to, or not, if
/// it is of this machine, and else shows itself within two minutes.
string THeartbeat::Look(const TFolderPtr& folder, const string& agent, qint64 now) {
    FNext = now + BeatsEvery;
    if (!MayBeShared(*folder))
        return {};
    const TMark mark = ReadOrMake(folder);
    const QByteArray token = RunToken();
    if (mark.Token == token)
        return {}; // nobody else was here, and nothing is to be written
    const TRunState state = mark.Token.isEmpty() ? TRunState::Dead : StateOfRun(mark.Token);
    const bool lives = state == TRunState::Alive || (state == TRunState::Unknown && FWritten);
    const QByteArray text = TextOf({mark.Key, token, agent});
    TPartFile file(folder, QLatin1String(FolderMarkFile));
    file.Write(text.constData(), size_t(text.size()));
    file.PublishReplacing();
    FWritten = true;
    return lives ? mark.Agent : string();
}
