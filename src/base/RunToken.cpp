#include "base/RunToken.h"

#include <QCryptographicHash>
#include <QFile>
#include <QList>
#include <QtEndian>

#include <cerrno>
#include <csignal>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int HashLength = 5;
constexpr int Parts = 5;

QByteArray Contents(const char* path) {
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

QByteArray Short(const QByteArray& text) {
    const QByteArray hash = QCryptographicHash::hash(text, QCryptographicHash::Md5);
    return QByteArray::number(qFromBigEndian<quint64>(hash.constData()), 36).right(HashLength);
}

QByteArray HostName() {
    char name[256] = {};
    (void)::gethostname(name, sizeof name - 1);
    return name;
}

QByteArray ProcessNamespace() {
    struct stat info {};
    return ::stat("/proc/self/ns/pid", &info) == 0 ? QByteArray::number(quint64(info.st_ino)) : QByteArray();
}

/// In ticks since the boot; empty for a process that isn't there. The name before it may hold blanks and
/// parentheses, so fields are counted from the last parenthesis (proc(5), /proc/pid/stat, field 22).
QByteArray StartOf(const QByteArray& process) {
    const QByteArray line = Contents(QByteArray("/proc/" + process + "/stat").constData());
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return fields.value(19);
}

/// Host, boot and namespace: they are the same for all of a process's life, and for its children's.
const QByteArray& Place() {
    static const QByteArray place = Short(HostName() + Contents("/etc/machine-id")) + '-' +
                                    Short(Contents("/proc/sys/kernel/random/boot_id")) + '-' +
                                    Short(ProcessNamespace());
    return place;
}

QByteArray MakeToken() {
    const QByteArray process = QByteArray::number(::getpid());
    return Place() + '-' + process + '-' + StartOf(process);
}

} // namespace

QByteArray RunToken() {
    static std::mutex lock;
    static pid_t owner = 0; // a forked child is another run
    static QByteArray token;
    const std::lock_guard guard(lock);
    if (owner != ::getpid()) {
        owner = ::getpid();
        token = MakeToken();
    }
    return token;
}

TRunState StateOfRun(const QByteArray& token) {
    const QList<QByteArray> theirs = token.split('-');
    const QList<QByteArray> ours = Place().split('-');
    if (theirs.size() != Parts || theirs[0] != ours[0])
        return TRunState::Unknown;
    if (theirs[1] != ours[1])
        return TRunState::Dead; // before this host's last start
    if (theirs[2] != ours[2])
        return TRunState::Unknown;
    bool isNumber = false;
    const pid_t process = theirs[3].toInt(&isNumber);
    if (!isNumber || process <= 0)
        return TRunState::Unknown;
    if (::kill(process, 0) != 0 && errno == ESRCH)
        return TRunState::Dead;
    const QByteArray start = StartOf(theirs[3]);
    return start.isEmpty() || start == theirs[4] ? TRunState::Alive : TRunState::Dead;
}
