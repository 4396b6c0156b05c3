#include "platform/RuntimeFolder.h"

#include "base/Exceptions.h"
#include "base/Paths.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool IsOwnFolder(const string& path) {
    struct stat info {};
    return path.startsWith(u'/') && ::stat(PathBytes(path).constData(), &info) == 0 &&
           S_ISDIR(info.st_mode) && info.st_uid == ::geteuid();
}

void MakeFallback(const string& path) {
    const QByteArray bytes = PathBytes(path);
    if (::mkdir(bytes.constData(), 0700) != 0 && errno != EEXIST)
        throw EFileError(QStringLiteral("make the folder"), path, errno);
    // Everybody may write where it stands, so what has the name may be anybody's, or a link to anything.
    struct stat info {};
    if (::lstat(bytes.constData(), &info) != 0)
        throw EFileError(QStringLiteral("use the folder"), path, errno);
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid())
        throw Exception(QStringLiteral("\"%1\" is not a folder of this user.").arg(path));
    if ((info.st_mode & 077) != 0 && ::chmod(bytes.constData(), 0700) != 0)
        throw EFileError(QStringLiteral("protect the folder"), path, errno);
}

} // namespace

string FindRuntimeFolder(const TRuntimePlaces& places) {
    for (const string& place : {places.Session, places.PerUser}) {
        if (!IsOwnFolder(place))
            continue;
        string folder = place;
        while (folder.size() > 1 && folder.endsWith(u'/'))
            folder.chop(1);
        return folder;
    }
    MakeFallback(places.Fallback);
    return places.Fallback;
}

string RuntimeFolder() {
    const string user = QString::number(::geteuid());
    return FindRuntimeFolder({qEnvironmentVariable("XDG_RUNTIME_DIR"), QStringLiteral("/run/user/") + user,
                              QStringLiteral("/tmp/morvane-") + user});
}
