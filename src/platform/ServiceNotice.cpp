#include "platform/ServiceNotice.h"

#include "base/Printable.h"

#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

TServiceNotice::TServiceNotice(const NarrowString& address, qint64 watchdogMs)
    : FAddress(address), FWatchdogMs(watchdogMs) {
    const bool named = address.startsWith('/') || (address.startsWith('@') && address.size() > 1);
    if (named && size_t(address.size()) < sizeof(sockaddr_un::sun_path))
        FSocket = TDescriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

void TServiceNotice::Ready(const string& status) {
    const std::lock_guard guard(FLock);
    FStatus = string(status); // moved: an old one is freed here, where checkers of threads see it
    Send("READY=1\nSTATUS=" + Narrow(Printable(status)));
}

void TServiceNotice::SetStatus(const string& status) {
    const std::lock_guard guard(FLock);
    if (status == FStatus)
        return;
    FStatus = string(status); // moved: an old one is freed here, where checkers of threads see it
    Send("STATUS=" + Narrow(Printable(status)));
}

void TServiceNotice::Stopping() {
    const std::lock_guard guard(FLock);
    Send("STOPPING=1");
}

void TServiceNotice::Alive() {
    constexpr int Margin = 3; // what is late twice is still in time
    const std::lock_guard guard(FLock);
    const auto now = std::chrono::steady_clock::now();
    if (FWatchdogMs <= 0 || now - FToldAlive < std::chrono::milliseconds(FWatchdogMs / Margin))
        return;
    FToldAlive = now;
    Send("WATCHDOG=1");
}

void TServiceNotice::Send(const NarrowString& words) {
    if (!FSocket)
        return;
    sockaddr_un to{};
    to.sun_family = AF_UNIX;
    std::memcpy(to.sun_path, FAddress.constData(), size_t(FAddress.size()));
    if (FAddress.startsWith('@'))
        to.sun_path[0] = '\0';
    const auto size = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(FAddress.size()));
    [[maybe_unused]] const ssize_t sent =
        ::sendto(FSocket.Number(), words.constData(), size_t(words.size()), MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&to), size);
}

namespace {

/// As sd_watchdog_enabled(3) reads it: microseconds, for this process.
qint64 TakeWatchdogMs() {
    const qint64 microseconds = qgetenv("WATCHDOG_USEC").toLongLong();
    const NarrowString process = qgetenv("WATCHDOG_PID");
    qunsetenv("WATCHDOG_USEC");
    qunsetenv("WATCHDOG_PID");
    return process.isEmpty() || process.toLongLong() == ::getpid() ? microseconds / 1000 : 0;
}

} // namespace

TServiceNotice& ServiceNotice() {
    static auto& notice = []() -> TServiceNotice& {
        const NarrowString address = qgetenv("NOTIFY_SOCKET");
        qunsetenv("NOTIFY_SOCKET");
        return *new TServiceNotice(address, TakeWatchdogMs()); // threads may outlast statics
    }();
    return notice;
}
