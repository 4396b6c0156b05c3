#include "agent/FolderKey.h"

#include "base/Exceptions.h"
#include "base/PartFile.h"
#include "platform/Descriptor.h"

#include <QUuid>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Null where there is no such file.
std::optional<QUuid> Read(const TFolder& folder) {
    const TDescriptor file(
        ::openat(folder.Descriptor(), FolderKeyFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT)
        return std::nullopt;
    char text[64];
    const ssize_t size = file ? ::read(file.Number(), text, sizeof text) : -1;
    if (size < 0)
        throw EFileError(QStringLiteral("read"), folder.Path() + QLatin1String(FolderKeyFile), errno);
    const QUuid key(QLatin1String(text, size).trimmed());
    if (key.isNull())
        throw EFileError(QStringLiteral("\"%1%2\" names no folder; remove it, and the agent makes another")
                             .arg(folder.Path(), QLatin1String(FolderKeyFile)),
                         EINVAL);
    return key;
}

} // namespace

string FolderKeyOf(const TFolderPtr& folder) {
    std::optional<QUuid> key = Read(*folder);
    if (!key) {
        TPartFile file(folder, QLatin1String(FolderKeyFile));
        const QByteArray text = QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + '\n';
        file.Write(text.constData(), size_t(text.size()));
        (void)file.PublishNew(); // false: another agent was faster, and its key counts
        key = Read(*folder);
    }
    if (!key)
        throw EFileError(QStringLiteral("read"), folder->Path() + QLatin1String(FolderKeyFile), ENOENT);
    return key->toString(QUuid::WithoutBraces);
}
