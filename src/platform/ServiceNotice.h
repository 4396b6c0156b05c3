#pragma once
// What a process tells the service manager that started it: datagrams to the socket that $NOTIFY_SOCKET names
// (sd_notify(3) has the words). Without one nothing is sent.
#include "base/Text.h"
#include "platform/Descriptor.h"

#include <chrono>
#include <mutex>

/// Any thread may use it. Nothing is waited for, and nothing is raised.
class TServiceNotice {
public:
    /// `address` is a path, or a name behind "@" that no file has; what is neither is no socket.
    /// `watchdogMs`: how long the manager waits for a sign of life; 0: for ever.
    explicit TServiceNotice(const NarrowString& address, qint64 watchdogMs = 0);

    /// The process has begun its service.
    void Ready(const string& status);
    /// One line for people. The same again is not sent.
    void SetStatus(const string& status);
    void Stopping();
    /// The process does what it is there for. Sent as often as the manager needs it, at most.
    void Alive();
    /// 0 where nobody waits for signs of life.
    [[nodiscard]] qint64 WatchdogMs() const { return FSocket ? FWatchdogMs : 0; }
    [[nodiscard]] bool Listening() const { return bool(FSocket); }

private:
    void Send(const NarrowString& words);

    std::mutex FLock;
    NarrowString FAddress;
    TDescriptor FSocket;
    string FStatus;
    qint64 FWatchdogMs;
    std::chrono::steady_clock::time_point FToldAlive{};
};

/// The manager of this process. The first call takes the name out of the environment, so that no program that
/// this one starts speaks for it; it belongs where there are no other threads yet.
[[nodiscard]] TServiceNotice& ServiceNotice();
