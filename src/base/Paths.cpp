#include "base/Paths.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"

#include <cerrno>
#include <sys/stat.h>

string IncludeTrailingDelimiter(const string& path) {
    return path.endsWith(u'/') ? path : path + u'/';
}

string ExtractFileName(const string& path) {
    return path.mid(path.lastIndexOf(u'/') + 1);
}

string ExtractFilePath(const string& path) {
    return path.left(path.lastIndexOf(u'/') + 1);
}

string WithoutExtension(const string& path) {
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > path.lastIndexOf(u'/') ? path.left(dot) : path;
}

QByteArray PathBytes(const string& path) {
    if (path.contains(QChar::Null)) // the system would take the part before it
        throw EFileError(QStringLiteral("The path \"%1\" holds a NUL character.")
                             .arg(string(path).replace(QChar::Null, QChar(0x2400))),
                         EINVAL);
    return path.toUtf8();
}

bool DirectoryExists(const string& path) {
    struct stat info {};
    return ::stat(PathBytes(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool FileExists(const string& path) {
    struct stat info {};
    return ::stat(PathBytes(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

bool NameTaken(const string& path) {
    struct stat info {};
    return ::lstat(PathBytes(path).constData(), &info) == 0;
}

void ForceDirectories(const string& path) {
    string folder = path;
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    if (folder.isEmpty() || DirectoryExists(folder))
        return;
    ForceDirectories(ExtractFilePath(folder));
    const QByteArray bytes = PathBytes(folder);
    const int made = WithFaultPoint("mkdir", [&] { return ::mkdir(bytes.constData(), 0777); });
    if (made != 0 && !(errno == EEXIST && DirectoryExists(folder)))
        throw EFileError("make the folder", folder, errno);
}

string ExpandEnvironment(const string& text) {
    constexpr qsizetype Room = 255;
    string result;
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype open = text.indexOf(u'%', at);
        const qsizetype close = open < 0 ? -1 : text.indexOf(u'%', open + 1);
        if (close < 0)
            break;
        const QByteArray name = text.mid(open + 1, close - open - 1).toLocal8Bit();
        if (!name.isEmpty() && qEnvironmentVariableIsSet(name.constData())) {
            result += text.mid(at, open - at) + qEnvironmentVariable(name.constData());
            at = close + 1;
        } else {
            // The second sign may open the next reference.
            result += text.mid(at, close - at);
            at = close;
        }
    }
    result += text.mid(at);
    return result.size() > Room ? string() : result;
}
