#include "platform/AppInstances.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Paths.h"
#include "platform/LocalSocket.h"
#include "platform/RuntimeFolder.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <cerrno>

namespace {

constexpr qsizetype DatagramLimit = 65'536;

NarrowString CommandLine() {
    QFile file(QStringLiteral("/proc/self/cmdline"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    NarrowString text = file.readAll();
    if (text.endsWith('\0'))
        text.chop(1);
    return text.replace('\0', '\n');
}

/// A datagram is three fields, each ended by a NUL, and the text: window class, originator, kind.
NarrowString Encode(const string& windowClassName, TWindowHandle originator, const NarrowString& text) {
    const NarrowString head = Narrow(windowClassName) + '\0' + NarrowString::number(originator) + '\0' +
                              NarrowString::number(CopyDataCommandLine) + '\0';
    return (head + text).left(DatagramLimit);
}

void PostDatagram(const NarrowString& datagram) {
    qsizetype starts[4] = {};
    for (int field = 1; field < 4; ++field) {
        const qsizetype end = datagram.indexOf('\0', starts[field - 1]);
        if (end < 0)
            return;
        starts[field] = end + 1;
    }
    const auto fieldAt = [&](int i) { return datagram.mid(starts[i], starts[i + 1] - starts[i] - 1); };
    TMessage message{.Number = WM_COPYDATA, .WParam = fieldAt(1).toULongLong()};
    message.Data = std::make_shared<TCopyData>(TCopyData{fieldAt(2).toULongLong(), datagram.mid(starts[3])});
    for (const TWindowHandle window : FindWindows(Widen(fieldAt(0))))
        PostMessage(window, message);
}

} // namespace

TAppInstances::TAppInstances(const string& identity) : FIdentity(identity), FFolder(RuntimeFolder()) {}

TAppInstances::~TAppInstances() {
    if (FChannel)
        ::unlink(TLocalAddress(FFolder, FileName(FIndex, "socket")).Path());
}

string TAppInstances::FileName(int index, const char* kind) const {
    return QStringLiteral("%1.%2.%3").arg(FIdentity).arg(index).arg(QLatin1String(kind));
}

bool TAppInstances::CheckInstance(int maxInstances) {
    for (int i = 0; FIndex < 0 && i < std::min(maxInstances, Limit); ++i) {
        FLock = TFileLock::Try(FFolder + u'/' + FileName(i, "lock"));
        if (FLock)
            FIndex = i;
    }
    if (FIndex >= 0 && !FChannel)
        OpenChannel();
    return FIndex >= 0;
}

void TAppInstances::OpenChannel() {
    // Without a channel the limit still holds, and that is what matters.
    try {
        TDescriptor channel = OpenLocalSocket(SOCK_DGRAM);
        const TLocalAddress address(FFolder, FileName(FIndex, "socket"));
        ::unlink(address.Path()); // the lock says that its maker is dead
        if (::bind(channel.Number(), address.Get(), address.Size()) != 0)
            throw EFileError(QStringLiteral("make the socket"), FileName(FIndex, "socket"), errno);
        FChannel = std::move(channel);
    } catch (const Exception& e) {
        JournalLine(e.Message());
    }
}

int TAppInstances::SendCmdLineParams(const string& windowClassName, TWindowHandle originator) const {
    const NarrowString datagram = Encode(windowClassName, originator, CommandLine());
    const TDescriptor socket = OpenLocalSocket(SOCK_DGRAM);
    int reached = 0;
    for (int i = 0; i < Limit; ++i) {
        const TLocalAddress address(FFolder, FileName(i, "socket"));
        if (i != FIndex && ::sendto(socket.Number(), datagram.constData(), size_t(datagram.size()),
                                    MSG_NOSIGNAL, address.Get(), address.Size()) >= 0)
            ++reached;
    }
    return reached;
}

void TAppInstances::SwitchTo(int /*index*/) const {}

void TAppInstances::KillInstance() {
    ::_exit(0);
}

void TAppInstances::Receive() {
    NarrowString buffer(DatagramLimit, '\0');
    while (true) {
        const ssize_t count = ::recv(FChannel.Number(), buffer.data(), size_t(buffer.size()), 0);
        if (count >= 0)
            PostDatagram(buffer.left(count));
        else if (errno != EINTR)
            return;
    }
}

std::unique_ptr<TAppInstances> JclAppInstances(const string& guid) {
    return std::make_unique<TAppInstances>(guid);
}

int ReadMessageCheck(const TMessage& message, TWindowHandle ignoredOriginator) {
    if (message.Number != WM_COPYDATA || !message.Data)
        return CopyDataNone;
    if (message.WParam != 0 && message.WParam == ignoredOriginator)
        return CopyDataNone;
    return int(message.Data->Kind);
}

void ReadMessageString(const TMessage& message, string& text) {
    text = message.Data ? Widen(message.Data->Bytes) : string();
}
