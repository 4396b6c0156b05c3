#include "work/Channel.h"

#include "base/Exceptions.h"

#include <QCborValue>
#include <QtEndian>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

namespace {

constexpr qsizetype LengthBytes = 4;
constexpr timeval Patience{10, 0};
constexpr size_t MostFiles = 3;
constexpr char FileCount[] = "files";

QByteArray Framed(const QCborMap& body) {
    QByteArray bytes(LengthBytes, Qt::Uninitialized);
    bytes += body.toCborValue().toCbor();
    qToLittleEndian(quint32(bytes.size() - LengthBytes), bytes.data());
    return bytes;
}

} // namespace

void TChannel::MakePair(TDescriptor& one, TDescriptor& other) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw EFileError(QStringLiteral("make"), QStringLiteral("socket pair"), errno);
    one = TDescriptor(ends[0]);
    other = TDescriptor(ends[1]);
    // A worker that stands still holds nobody up for ever.
    for (const int end : ends)
        (void)::setsockopt(end, SOL_SOCKET, SO_SNDTIMEO, &Patience, sizeof Patience);
}

bool TChannel::Send(const QCborMap& body, const QList<int>& files) {
    QCborMap whole = body;
    if (!files.isEmpty())
        whole[QLatin1String(FileCount)] = int(files.size());
    alignas(cmsghdr) char control[CMSG_SPACE(MostFiles * sizeof(int))] = {};
    msghdr header{};
    if (const size_t bytes = size_t(files.size()) * sizeof(int); bytes > 0) {
        header.msg_control = control;
        header.msg_controllen = CMSG_SPACE(bytes);
        cmsghdr* const rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(bytes);
        std::memcpy(CMSG_DATA(rights), files.constData(), bytes);
    }
    const std::lock_guard guard(FSending);
    return SendAll(std::exchange(FLater, {}) + Framed(whole), header);
}

/// Under the lock.
bool TChannel::SendAll(const QByteArray& bytes, msghdr header) const {
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        iovec part{const_cast<char*>(bytes.constData()) + sent, size_t(bytes.size() - sent)};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        const ssize_t now = ::sendmsg(FSocket.Number(), &header, MSG_NOSIGNAL);
        if (now < 0 && errno == EINTR)
            continue;
        if (now < 0)
            return false;
        sent += now;
        header.msg_control = nullptr; // went with the first byte
        header.msg_controllen = 0;
    }
    return true;
}

bool TChannel::Flush() {
    const std::lock_guard guard(FSending);
    return SendAll(std::exchange(FLater, {}), {});
}

void TChannel::SendLater(const QCborMap& body) {
    const std::lock_guard guard(FSending);
    FLater += Framed(body);
}

bool TChannel::Fill() {
    char portion[16 << 10];
    for (;;) {
        alignas(cmsghdr) char control[CMSG_SPACE(2 * MostFiles * sizeof(int))];
        iovec part{portion, sizeof portion};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control;
        header.msg_controllen = sizeof control;
        const ssize_t got = ::recvmsg(FSocket.Number(), &header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
        const int error = errno;
        if (got < 0 && error == EINTR)
            continue;
        if (got < 0)
            return error == EAGAIN && IsSound();
        if (got == 0)
            return false;
        FArrived.append(portion, got);
        for (cmsghdr* rights = CMSG_FIRSTHDR(&header); rights != nullptr;
             rights = CMSG_NXTHDR(&header, rights)) {
            if (rights->cmsg_level != SOL_SOCKET || rights->cmsg_type != SCM_RIGHTS)
                continue;
            const size_t count = (rights->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            for (size_t i = 0; i < count; ++i) {
                int file = -1;
                std::memcpy(&file, CMSG_DATA(rights) + i * sizeof(int), sizeof file);
                FFiles.emplace_back(file);
            }
        }
        if (!IsSound())
            return false;
        if (got < ssize_t(sizeof portion))
            return true;
    }
}

bool TChannel::IsSound() const {
    return FArrived.size() < LengthBytes || qFromLittleEndian<quint32>(FArrived.constData()) <= FMostBytes;
}

std::optional<TChannelMessage> TChannel::Next() {
    if (FArrived.size() < LengthBytes)
        return std::nullopt;
    const qsizetype length = qFromLittleEndian<quint32>(FArrived.constData());
    if (FArrived.size() < LengthBytes + length)
        return std::nullopt;
    TChannelMessage message;
    // What is no map becomes an empty one, which means nothing to anybody.
    message.Body = QCborValue::fromCbor(FArrived.mid(LengthBytes, length)).toMap();
    FArrived.remove(0, LengthBytes + length);
    qint64 files = message.Body.value(QLatin1String(FileCount)).toInteger();
    for (; files > 0 && !FFiles.empty(); --files) {
        message.Files.push_back(std::move(FFiles.front()));
        FFiles.pop_front();
    }
    return message;
}

void TChannel::WaitForMore() const {
    pollfd waited{FSocket.Number(), POLLIN, 0};
    while (::poll(&waited, 1, -1) < 0 && errno == EINTR)
        ;
}
