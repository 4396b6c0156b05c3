#include "agent/RunLog.h"

#include "base/FaultPoint.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int FrameWidth = 256;
constexpr QLatin1String Subject("run log");

QByteArray Ascii(const string& text) {
    QByteArray line;
    line.reserve(text.size() + 2);
    for (const uint c : text.toUcs4())
        line.append(c < 0x20 || c > 0x7e ? '?' : char(c));
    return line.append("\r\n");
}

/// What has the name may be anything: only a regular file is written, and nothing is waited for.
int OpenLog(const string& fileName) {
    const QByteArray path = PathBytes(fileName);
    const int descriptor = WithFaultPoint("open log", [&] {
        return ::open(path.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
    });
    struct stat info {};
    if (descriptor < 0 || (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode)))
        return descriptor;
    ::close(descriptor);
    errno = EINVAL;
    return -1;
}

} // namespace

TRunLog::TRunLog(const string& fileName) : FFileName(fileName), FDescriptor(OpenLog(fileName)) {
    const string folder = ExtractFilePath(fileName);
    if (FDescriptor < 0 && errno == ENOENT && ::mkdir(PathBytes(folder).constData(), 0777) == 0)
        FDescriptor = OpenLog(fileName);
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
    else if (!FWritten)
        JournalSettled(Subject);
    FWritten = FWritten || written == line.size();
}

string TRunLog::Border(QChar frame) {
    return {FrameWidth, frame};
}

void TRunLog::Complain(int error) {
    // Without its name, which is another one tomorrow.
    JournalChange(Subject,
                  QStringLiteral("Cannot write the log in \"%1\": %2")
                      .arg(ExtractFilePath(FFileName), QString::fromLocal8Bit(std::strerror(error))));
}

string LogTime(const QDateTime& time, const QLocale& locale) {
    const QLocale digits = QLocale::c();
    const string month = locale.toString(time.date(), QStringLiteral("MMM"));
    return digits.toString(time, QStringLiteral("dd-")) + month +
           digits.toString(time, QStringLiteral("-yyyy HH:mm:ss"));
}

string LogFileName(const QDate& date) {
    return date.toString(QStringLiteral("yyyy.MM.dd")) + ".txt";
}

void RemoveOldLogs(const string& folder, const QDate& today, int keepDays) {
    if (keepDays <= 0)
        return;
    const QDir logs(folder);
    for (const string& name :
         logs.entryList({QStringLiteral("????.??.??.txt")}, QDir::Files | QDir::NoSymLinks)) {
        const QDate day = QDate::fromString(name.chopped(4), QStringLiteral("yyyy.MM.dd"));
        if (day.isValid() && day.daysTo(today) > keepDays)
            QFile::remove(logs.filePath(name));
    }
}
