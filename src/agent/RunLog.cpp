#include "agent/RunLog.h"

#include "base/FaultPoint.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <QLocale>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int FrameWidth = 256;

QByteArray Ascii(const string& text) {
    QByteArray line;
    line.reserve(text.size() + 2);
    for (const uint c : text.toUcs4())
        line.append(c > 0x7e || c == '\r' || c == '\n' ? '?' : char(c));
    return line.append("\r\n");
}

} // namespace

TRunLog::TRunLog(const string& fileName) : FFileName(fileName) {
    const QByteArray path = PathBytes(fileName);
    FDescriptor = WithFaultPoint("open log", [&] {
        return ::open(path.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    });
    if (FDescriptor < 0)
        Complain(errno);
}

TRunLog::~TRunLog() {
    if (FDescriptor >= 0)
        ::close(FDescriptor);
}

void TRunLog::Line(const string& text) {
    if (FDescriptor < 0)
        return;
    // One write a line: two agents, or a line that meets a full disk, don't leave halves between others.
    const QByteArray line = Ascii(text);
    const ssize_t written = WithFaultPoint(
        "write log", [&] { return ::write(FDescriptor, line.constData(), size_t(line.size())); });
    if (written != line.size())
        Complain(written < 0 ? errno : ENOSPC);
}

string TRunLog::Border(QChar frame) {
    return string(FrameWidth, frame);
}

void TRunLog::Complain(int error) {
    JournalLine(QStringLiteral("Cannot write the log \"%1\": %2")
                    .arg(FFileName, QString::fromLocal8Bit(std::strerror(error))));
}

string LogTime(const QDateTime& time) {
    return QLocale::system().toString(time, QStringLiteral("dd-MMM-yyyy HH:mm:ss"));
}

string LogFileName(const QDate& date) {
    return date.toString(QStringLiteral("yyyy.MM.dd")) + ".txt";
}
