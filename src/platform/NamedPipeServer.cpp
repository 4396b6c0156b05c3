#include "platform/NamedPipeServer.h"

#include "platform/LocalSocket.h"

#include <QStringDecoder>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <sys/stat.h>
#include <thread>

namespace {

/// Connections that may wait at the door. Short, so that a flood of them waits in its own calls to connect
/// and not in front of everybody else.
constexpr int Backlog = 64;

} // namespace

/// One connection: what has come and not yet been taken, and what has yet to go.
class TNamedPipeServer::TClient {
public:
    explicit TClient(TDescriptor socket) : FSocket(std::move(socket)) {}

    /// A message can be taken. Not before the last reply has left: a client that doesn't read waits.
    [[nodiscard]] bool HasMessage() const { return FOut.isEmpty() && FMessageEnd >= 0; }
    [[nodiscard]] bool IsDone() const { return FBroken || (FEnded && FMessageEnd < 0 && FOut.isEmpty()); }

    [[nodiscard]] pollfd Polled() const {
        if (!FOut.isEmpty())
            return {FSocket.Number(), POLLOUT, 0};
        return {HasMessage() || FEnded ? -1 : FSocket.Number(), POLLIN, 0};
    }

    /// Does what the socket is ready for; harmless if it is not.
    void Advance() {
        if (!FOut.isEmpty())
            Flush();
        else if (FMessageEnd < 0 && !FEnded)
            Receive();
    }

    [[nodiscard]] QByteArray Take() {
        QByteArray message = FIn.left(FMessageEnd);
        FIn.remove(0, FMessageEnd + 1);
        FindMessage();
        return message;
    }

    void Send(const QByteArray& text) {
        FOut += text;
        Flush();
    }

private:
    void Receive() {
        char bytes[MessageLimit + 1];
        const ssize_t count = ::recv(FSocket.Number(), bytes, sizeof bytes - size_t(FIn.size()), 0);
        if (count > 0)
            FIn.append(bytes, count);
        else if (count == 0)
            FEnded = true;
        else if (errno != EAGAIN && errno != EINTR)
            FBroken = true;
        FindMessage();
        FBroken = FBroken || (FMessageEnd < 0 && FIn.size() > MessageLimit);
    }

    void Flush() {
        const ssize_t count = ::send(FSocket.Number(), FOut.constData(), size_t(FOut.size()), MSG_NOSIGNAL);
        if (count > 0)
            FOut.remove(0, count);
        else if (errno != EAGAIN && errno != EINTR)
            FBroken = true;
    }

    /// Empty messages mean nothing to anybody and are dropped here.
    void FindMessage() {
        const auto* first = std::find_if(FIn.cbegin(), FIn.cend(), [](char c) { return c != '\n'; });
        FIn.remove(0, first - FIn.cbegin());
        FMessageEnd = FIn.indexOf('\n');
        if (FMessageEnd < 0 && FEnded && !FIn.isEmpty())
            FMessageEnd = FIn.size();
    }

    TDescriptor FSocket;
    QByteArray FIn; ///< never more than MessageLimit + 1 bytes
    QByteArray FOut;
    qsizetype FMessageEnd = -1; ///< where the first message in FIn ends, -1 if none is whole
    bool FEnded = false;        ///< the client sends no more
    bool FBroken = false;       ///< to be let go
};

TNamedPipeServer::TNamedPipeServer(const string& pipeName, const string& serverName)
    : TNamedPipe(pipeName, serverName), FAllowedUser(::geteuid()) {}

TNamedPipeServer::~TNamedPipeServer() {
    if (!FListener)
        return;
    struct stat info {};
    const QByteArray path = Narrow(FFolder + u'/' + FName);
    if (::lstat(path.constData(), &info) == 0 && info.st_dev == FDevice && info.st_ino == FInode)
        ::unlink(path.constData());
}

void TNamedPipeServer::OpenPipe() {
    FLock = TFileLock::Try(FFolder + u'/' + FName + QStringLiteral(".lock"));
    if (!FLock)
        throw EPipeError(QStringLiteral("Another process serves the pipe \"%1\".").arg(FName));
    Bind();
}

void TNamedPipeServer::Bind() {
    const TLocalAddress address(FFolder, FName);
    // The lock tells nearly always; a server whose lock file was swept away still answers its door.
    const TDescriptor probe = OpenLocalSocket(SOCK_STREAM);
    if (::connect(probe.Number(), address.Get(), address.Size()) == 0 || errno == EAGAIN)
        throw EPipeError(QStringLiteral("Another process serves the pipe \"%1\".").arg(FName));
    ::unlink(address.Path());

    TDescriptor listener = OpenLocalSocket(SOCK_STREAM);
    struct stat info {};
    // Nobody can connect before listen(), so the mode is in place in time.
    if (::bind(listener.Number(), address.Get(), address.Size()) != 0 || ::chmod(address.Path(), 0600) != 0 ||
        ::lstat(address.Path(), &info) != 0 || ::listen(listener.Number(), Backlog) != 0)
        throw EPipeError(QStringLiteral("Cannot make the pipe \"%1\": %2")
                             .arg(FName, QString::fromLocal8Bit(std::strerror(errno))));
    FDevice = info.st_dev;
    FInode = info.st_ino;
    FListener = std::move(listener);
}

string TNamedPipeServer::Read(int timeoutMs) {
    using TSteady = std::chrono::steady_clock;
    const auto deadline = TSteady::now() + std::chrono::milliseconds(timeoutMs);
    FCurrent = nullptr;
    int wait = 0; // at first only a look, so that a client with many messages ready doesn't shut others out
    while (true) {
        Serve(wait);
        if (string message = TakeMessage(); !message.isEmpty())
            return message;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - TSteady::now()).count();
        if (left <= 0)
            return {};
        wait = int(left);
    }
}

string TNamedPipeServer::TakeMessage() {
    const auto next = std::find_if(FClients.begin(), FClients.end(),
                                   [](const auto& client) { return client->HasMessage(); });
    if (next == FClients.end())
        return {};
    FCurrent = next->get();
    std::rotate(next, next + 1, FClients.end());
    // A byte order mark is text like any other: commands are compared exactly.
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decode(FCurrent->Take());
}

void TNamedPipeServer::WritePipe(const string& text) {
    if (FCurrent)
        FCurrent->Send(Narrow(text) + '\n');
}

void TNamedPipeServer::Serve(int timeoutMs) {
    RemoveDone();
    std::vector<pollfd> polled{{FListener.Number(), POLLIN, 0}};
    for (const auto& client : FClients)
        polled.push_back(client->Polled());
    if (::poll(polled.data(), polled.size(), timeoutMs) <= 0)
        return;
    for (size_t i = 0; i < FClients.size(); ++i)
        if (polled[i + 1].revents != 0)
            FClients[i]->Advance();
    if (polled[0].revents != 0)
        Accept();
}

void TNamedPipeServer::Accept() {
    constexpr int Batch = 32; // then those who are connected come first again
    for (int i = 0; i < Batch; ++i) {
        TDescriptor socket(::accept4(FListener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket) {
            if (errno == ECONNABORTED || errno == EINTR)
                continue;
            // Out of descriptors, the listener stays ready: without a pause this thread would spin.
            if (errno != EAGAIN && !MakeRoom())
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            return;
        }
        if (PeerUser(socket.Number()) != FAllowedUser)
            continue;
        if (FClients.size() >= ClientLimit && !MakeRoom())
            continue;
        FClients.push_back(std::make_unique<TClient>(std::move(socket)));
        FClients.back()->Advance(); // most clients have sent by now, and can't be taken for silent ones
    }
}

void TNamedPipeServer::RemoveDone() {
    std::erase_if(FClients, [](const auto& client) { return client->IsDone(); });
}

bool TNamedPipeServer::MakeRoom() {
    const size_t before = FClients.size();
    RemoveDone();
    if (FClients.size() < before)
        return true;
    const auto silent = std::find_if(FClients.begin(), FClients.end(),
                                     [](const auto& client) { return !client->HasMessage(); });
    if (silent == FClients.end())
        return false;
    FClients.erase(silent);
    return true;
}
