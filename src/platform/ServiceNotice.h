#pragma once
// What a process tells the service manager that started it: datagrams to the socket that $NOTIFY_SOCKET names
// (sd_notify(3) has the words). Without one nothing is sent.
#include "base/Text.h"
#include "platform/Descriptor.h"

#include <mutex>

/// Any thread may use it. Nothing is waited for, and nothing is raised.
class TServiceNotice {
public:
    /// `address` is a path, or a name behind "@" that no file has; what is neither is no socket.
    explicit TServiceNotice(const NarrowString& address);

    /// The process has begun its service.
    void Ready(const string& status);
    /// One line for people. The same again is not sent.
    void SetStatus(const string& status);
    void Stopping();
    [[nodiscard]] bool Listening() const { return bool(FSocket); }

private:
    void Send(const NarrowString& words);

    std::mutex FLock;
    NarrowString FAddress;
    TDescriptor FSocket;
    string FStatus;
};

/// The manager of this process. The first call takes the name out of the environment, so that no program that
/// this one starts speaks for it; it belongs where there are no other threads yet.
[[nodiscard]] TServiceNotice& ServiceNotice();
