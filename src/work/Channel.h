#pragma once
// Messages between the agent and one of its workers: CBOR maps (RFC 8949), each behind its length, over a
// socket pair. A message may hand descriptors over.
#include "platform/Descriptor.h"

#include <sys/socket.h>

#include <QCborMap>

#include <deque>
#include <mutex>
#include <optional>

struct TChannelMessage {
    QCborMap Body;
    std::vector<TDescriptor> Files;
};

class TChannel {
public:
    /// A message of more than `mostBytes` is none.
    explicit TChannel(TDescriptor socket, quint32 mostBytes)
        : FSocket(std::move(socket)), FMostBytes(mostBytes) {}
    /// The lists of a configuration are the largest that a worker gets; what it says itself is short.
    static constexpr quint32 MostToWorker = 256U << 20;
    static constexpr quint32 MostToAgent = 4U << 20;

    /// Two that are connected with each other; neither is inherited. Raises EFileError.
    static void MakePair(TDescriptor& one, TDescriptor& other);

    [[nodiscard]] int Descriptor() const { return FSocket.Number(); }
    /// Any thread may call it. False where the other end has gone, or takes nothing for some seconds. The
    /// descriptors stay the caller's.
    [[nodiscard]] bool Send(const QCborMap& body, const QList<int>& files = {});
    /// Sends it with the next message, or by Flush(): those that belong together wake the other end once.
    void SendLater(const QCborMap& body);
    /// Sends what waits for the next message. Any thread may call it. False as Send().
    [[nodiscard]] bool Flush();
    /// Takes what has arrived, without waiting. False where the other end has gone or what it sent is no
    /// message; what had arrived whole before is there still.
    [[nodiscard]] bool Fill();
    /// The next message that has arrived whole.
    [[nodiscard]] std::optional<TChannelMessage> Next();
    /// Waits until there is something to Fill() with. For a thread that does nothing else.
    void WaitForMore() const;

private:
    [[nodiscard]] bool SendAll(const QByteArray& bytes, msghdr header) const;
    [[nodiscard]] bool IsSound() const;

    TDescriptor FSocket;
    quint32 FMostBytes;
    std::mutex FSending;
    QByteArray FLater;
    QByteArray FArrived;
    std::deque<TDescriptor> FFiles;
};
