#include "platform/NamedPipe.h"

#include "platform/LocalSocket.h"
#include "platform/RuntimeFolder.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <sys/time.h>

namespace {

constexpr int PatienceMs = 2000;
using TSteady = std::chrono::steady_clock;

string SystemReason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

TNamedPipe::TNamedPipe(const string& pipeName, const string& serverName)
    : FName(pipeName), FFolder(RuntimeFolder()) {
    if (serverName != u'.')
        throw EPipeError(QStringLiteral("The pipe \"%1\" can't be on another machine.").arg(pipeName));
}

void TNamedPipeClient::OpenPipe() {
    const TLocalAddress address(FFolder, FName);
    TDescriptor socket = OpenLocalSocket(SOCK_STREAM, TBlocking::Yes);
    // Where many clients are at the server's door, this one takes its place in their queue.
    const timeval patience{.tv_sec = PatienceMs / 1000, .tv_usec = 0};
    ::setsockopt(socket.Number(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    while (::connect(socket.Number(), address.Get(), address.Size()) != 0)
        if (errno != EINTR)
            throw EPipeError(
                QStringLiteral("Nobody serves the pipe \"%1\": %2").arg(FName, SystemReason(errno)));
    if (PeerUser(socket.Number()) != ::geteuid())
        throw EPipeError(QStringLiteral("The pipe \"%1\" is served by another user.").arg(FName));
    FSocket = std::move(socket);
    FReceived.clear();
}

bool TNamedPipeClient::WaitReadable(int timeoutMs) const {
    pollfd polled{FSocket.Number(), POLLIN, 0};
    return ::poll(&polled, 1, timeoutMs) > 0;
}

string TNamedPipeClient::Read(int timeoutMs) {
    const auto deadline = TSteady::now() + std::chrono::milliseconds(timeoutMs);
    while (!FReceived.contains('\n')) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - TSteady::now()).count();
        if (!WaitReadable(int(std::max<long>(left, 0))))
            return {};
        char bytes[512];
        const ssize_t count = ::recv(FSocket.Number(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (count > 0)
            FReceived.append(bytes, count);
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            return {}; // the server has gone, and a reply cut short is none
    }
    const qsizetype end = FReceived.indexOf('\n');
    string text = Widen(FReceived.left(end));
    FReceived.remove(0, end + 1);
    return text;
}

void TNamedPipeClient::WritePipe(const string& text) {
    QByteArray rest = Narrow(text) + '\n';
    while (!rest.isEmpty()) {
        const ssize_t count = ::send(FSocket.Number(), rest.constData(), size_t(rest.size()), MSG_NOSIGNAL);
        if (count > 0)
            rest.remove(0, count);
        else if (errno != EINTR) // EAGAIN: the time set above is over
            throw EPipeError(
                QStringLiteral("The pipe \"%1\" takes no message: %2").arg(FName, SystemReason(errno)));
    }
}
