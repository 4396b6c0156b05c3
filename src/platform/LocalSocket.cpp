#include "platform/LocalSocket.h"

#include "base/Exceptions.h"
#include "base/Paths.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

TLocalAddress::TLocalAddress(const string& folder, const string& name) {
    FAddress.sun_family = AF_UNIX;
    const QByteArray tail = '/' + PathBytes(name);
    QByteArray path = PathBytes(folder) + tail;
    if (path.size() >= qsizetype(sizeof FAddress.sun_path)) {
        FFolder = TDescriptor(::open(PathBytes(folder).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!FFolder)
            throw EFileError(QStringLiteral("open the folder"), folder, errno);
        path = "/proc/self/fd/" + QByteArray::number(FFolder.Number()) + tail;
    }
    if (path.size() >= qsizetype(sizeof FAddress.sun_path))
        throw EFileError(QStringLiteral("use the socket"), name, ENAMETOOLONG);
    std::memcpy(FAddress.sun_path, path.constData(), size_t(path.size()));
}

TDescriptor OpenLocalSocket(int type, TBlocking blocking) {
    const int nonblock = blocking == TBlocking::Yes ? 0 : SOCK_NONBLOCK;
    TDescriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC | nonblock, 0));
    if (!socket)
        throw EFileError(QStringLiteral("make"), QStringLiteral("local socket"), errno);
    return socket;
}

uid_t PeerUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return uid_t(-1);
    return peer.uid;
}
