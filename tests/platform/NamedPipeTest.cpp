#include "platform/LocalSocket.h"
#include "platform/NamedPipeServer.h"
#include "testing/RuntimeFolder.h"

#include <QDir>
#include <QFileInfo>

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <mutex>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>

using testing::ElementsAre;

namespace {

const QString PipeName = QStringLiteral("test_pipe");

constexpr int Patience = 60'000; // milliseconds; a busy machine gets anything done in that time

/// A server that answers "ping" with "PONG" and remembers everything else.
class TServing {
public:
    explicit TServing(uid_t user = ::geteuid()) {
        FServer.SetAllowedUser(user);
        FServer.OpenPipe();
        FThread = std::thread([this] { Run(); });
    }
    ~TServing() {
        FStop = true;
        FThread.join();
    }
    std::vector<QString> Others() {
        const std::lock_guard guard(FLock);
        return FOthers;
    }

private:
    void Run() {
        while (!FStop) {
            const QString text = FServer.Read(20);
            if (text == "ping") {
                FServer.WritePipe("PONG");
            } else if (!text.isEmpty()) {
                const std::lock_guard guard(FLock);
                FOthers.push_back(text);
            }
        }
    }

    TNamedPipeServer FServer{PipeName, "."};
    std::atomic<bool> FStop = false;
    std::mutex FLock;
    std::vector<QString> FOthers;
    std::thread FThread;
};

/// A connection without manners.
class TRawClient {
public:
    explicit TRawClient(const QString& folder) : FSocket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const TLocalAddress address(folder, PipeName);
        FConnected = ::connect(FSocket.Number(), address.Get(), address.Size()) == 0;
    }
    bool Connected() const { return FConnected; }
    void Send(const QByteArray& bytes) const {
        ::send(FSocket.Number(), bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
    }
    /// False once the server has let go.
    bool Flood(const QByteArray& bytes) const {
        return ::send(FSocket.Number(), bytes.constData(), size_t(bytes.size()),
                      MSG_NOSIGNAL | MSG_DONTWAIT) >= 0 ||
               errno == EAGAIN;
    }
    void EndSending() const { ::shutdown(FSocket.Number(), SHUT_WR); }
    /// What comes until the server closes, or until a minute has brought nothing.
    QByteArray ReadAll() const {
        QByteArray all;
        char bytes[4096];
        pollfd polled{FSocket.Number(), POLLIN, 0};
        while (::poll(&polled, 1, Patience) > 0) {
            const ssize_t count = ::recv(FSocket.Number(), bytes, sizeof bytes, 0);
            if (count <= 0)
                return all;
            all.append(bytes, count);
        }
        return all + "<open>";
    }

private:
    TDescriptor FSocket;
    bool FConnected = false;
};

class NamedPipeTest : public TRuntimeFolderTest {
protected:
    /// Whether a well-behaved client has its answer.
    static bool Ask() {
        TNamedPipeClient client(PipeName);
        client.OpenPipe();
        client.WritePipe("ping");
        return client.Read(Patience) == "PONG";
    }
};

TEST_F(NamedPipeTest, MessagesEndAtALineFeedOrAtTheEndOfTheStream) {
    struct TCase {
        QByteArray Sent, Reply;
        std::vector<QString> Others;
    };
    const TCase cases[] = {
        {"ping\n", "PONG\n", {}},
        {"ping", "PONG\n", {}},
        {"ping\n\n\nping", "PONG\nPONG\n", {}},
        {"Ping\n ping\nping \nping\r\n", "", {"Ping", " ping", "ping ", "ping\r"}},
        {"\xEF\xBB\xBFping", "", {QChar(0xFEFF) + QString("ping")}},
        {QByteArray("ping\0\n", 6), "", {QString("ping") + QChar(0)}},
        {"\xC3\xA4\xFF", "", {QString("\u00e4\ufffd")}},
        {"\n\n", "", {}},
        {QByteArray(4096, 'x') + "\nping\n", "PONG\n", {QString(4096, 'x')}},
        {"ping\n" + QByteArray(4097, 'x') + "\nping\n", "PONG\n", {}},
    };
    for (const TCase& c : cases) {
        TServing server;
        const TRawClient client(FFolder.path());
        client.Send(c.Sent);
        client.EndSending();
        EXPECT_EQ(client.ReadAll(), c.Reply) << c.Sent.left(40).toStdString();
        EXPECT_EQ(server.Others(), c.Others) << c.Sent.left(40).toStdString();
    }
}

TEST_F(NamedPipeTest, AMessageMayArriveByTheByteAndAConnectionStaysForMore) {
    TServing server;
    const TRawClient client(FFolder.path());
    for (const char byte : QByteArray("ping\npi")) {
        client.Send(QByteArray(1, byte));
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    client.Send("ng\n");
    client.EndSending();
    EXPECT_EQ(client.ReadAll(), "PONG\nPONG\n");
}

TEST_F(NamedPipeTest, SilentSlowAndFloodingClientsKeepNobodyWaiting) {
    TServing server;
    std::vector<TRawClient> silent;
    for (size_t i = 0; i < TNamedPipeServer::ClientLimit * 2; ++i) {
        silent.emplace_back(FFolder.path());
        silent.back().Send(i % 2 ? "half a mess" : "");
    }
    std::atomic<bool> stop = false;
    std::vector<std::thread> nuisances;
    // Floods of questions whose answers nobody reads, of noise, and of empty messages; connections that
    // come and go.
    for (const QByteArray& noise : {QByteArray("ping\n").repeated(200), QByteArray("noise\n").repeated(200),
                                    QByteArray(4000, '\n'), QByteArray(4000, 'x')})
        nuisances.emplace_back([&, noise] {
            while (!stop) {
                const TRawClient client(FFolder.path());
                for (int i = 0; i < 1000 && !stop && client.Flood(noise); ++i)
                    std::this_thread::yield();
            }
        });
    nuisances.emplace_back([&] {
        while (!stop)
            const TRawClient client(FFolder.path());
    });
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(Ask());
    stop = true;
    for (auto& nuisance : nuisances)
        nuisance.join();
}

TEST_F(NamedPipeTest, TheSilentClientMakesRoomAndTheServersShareIsBounded) {
    TNamedPipeServer server(PipeName, ".");
    server.OpenPipe();
    const TRawClient speaker(FFolder.path());
    speaker.Send("hello\n");
    std::vector<TRawClient> silent;
    for (size_t i = 0; i < TNamedPipeServer::ClientLimit + 10; ++i) {
        silent.emplace_back(FFolder.path());
        if (i == 0)
            EXPECT_EQ(server.Read(Patience), "hello");
        else
            EXPECT_EQ(server.Read(0), "");
    }
    EXPECT_EQ(server.ClientCount(), TNamedPipeServer::ClientLimit);
    EXPECT_EQ(silent[0].ReadAll(), ""); // the first ones were let go, the last ones not
    silent.back().Send("late\n");
    EXPECT_EQ(server.Read(Patience), "late");
}

TEST_F(NamedPipeTest, RunningOutOfDescriptorsIsSurvived) {
    TServing server;
    ASSERT_TRUE(Ask());
    rlimit former{};
    ::getrlimit(RLIMIT_NOFILE, &former);
    const rlimit tight{.rlim_cur = 64, .rlim_max = former.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &tight);
    std::vector<TRawClient> clients;
    for (int i = 0; i < 64; ++i)
        clients.emplace_back(FFolder.path());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    clients.erase(clients.begin(), clients.begin() + 8);
    ::setrlimit(RLIMIT_NOFILE, &former);
    EXPECT_TRUE(Ask());
}

TEST_F(NamedPipeTest, ProcessesOfOtherUsersAreRefused) {
    {
        const TServing strangersOnly(::geteuid() + 1);
        const TRawClient client(FFolder.path());
        client.Send("ping\n");
        EXPECT_EQ(client.ReadAll(), "");
    }
    const TServing server;
    struct stat info {};
    ASSERT_EQ(::stat(Path(PipeName).toUtf8().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
    if (::geteuid() != 0)
        return; // only root can become another user
    ::chmod(FFolder.path().toUtf8().constData(), 0777);
    ::chmod(Path(PipeName).toUtf8().constData(), 0777);
    const pid_t child = ::fork();
    if (child == 0) {
        ::syscall(SYS_setresuid, 65534, 65534, 65534);
        const TRawClient client(FFolder.path());
        client.Send("ping\n");
        ::_exit(client.Connected() && client.ReadAll().isEmpty() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(Ask());
}

TEST_F(NamedPipeTest, AStaleSocketIsReplacedAndALiveOneIsNotStolen) {
    const pid_t child = ::fork();
    if (child == 0) {
        auto* crashing = new TNamedPipeServer(PipeName, ".");
        crashing->OpenPipe();
        ::_exit(0); // leaves socket and lock file behind
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(QFileInfo::exists(Path(PipeName)));
    EXPECT_THROW(TNamedPipeClient(PipeName).OpenPipe(), EPipeError);
    {
        TServing server;
        ASSERT_TRUE(Ask());
        EXPECT_THROW(TNamedPipeServer(PipeName, ".").OpenPipe(), EPipeError);
        EXPECT_TRUE(Ask());
        QFile::remove(Path(PipeName + ".lock")); // as a sweeper of old files may do
        EXPECT_THROW(TNamedPipeServer(PipeName, ".").OpenPipe(), EPipeError);
        EXPECT_TRUE(Ask());
    }
    EXPECT_FALSE(QFileInfo::exists(Path(PipeName)));
    const TServing again;
    EXPECT_TRUE(Ask());
}

TEST_F(NamedPipeTest, WhatElseHasTheNameAtTheEndIsLeftAlone) {
    {
        const TServing server;
        QFile::remove(Path(PipeName));
        QFile other(Path(PipeName));
        ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    }
    EXPECT_TRUE(QFileInfo::exists(Path(PipeName)));
}

TEST_F(NamedPipeTest, AFolderWithALongPathAndOnlyThisMachineWillDo) {
    const QString deep = Path(QString(150, 'd'));
    ASSERT_TRUE(QDir().mkpath(deep));
    qputenv("XDG_RUNTIME_DIR", deep.toUtf8());
    const TServing server;
    EXPECT_TRUE(Ask());
    EXPECT_TRUE(QFileInfo::exists(deep + '/' + PipeName));
    EXPECT_THROW(TNamedPipeServer(PipeName, "elsewhere"), EPipeError);
}

} // namespace
