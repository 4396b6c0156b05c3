#include "base/Paths.h"
#include "scripting/GlobalFunctions.h"
#include "scripting/Programs.h"

#include <QProcess>
#include <QUrl>

#include <cerrno>

namespace {

// What ShellExecute answers: above 32 something was started.
constexpr quint64 Started = 42;
constexpr quint64 NotFound = 2;
constexpr quint64 AccessDenied = 5;
constexpr quint64 NoAssociation = 31;

quint64 AnswerFor(int error) {
    switch (error) {
    case 0:
        return Started;
    case ENOENT:
    case ENOTDIR:
        return NotFound;
    case EACCES:
    case EPERM:
        return AccessDenied;
    default:
        return NoAssociation;
    }
}

quint64 OpenByDesktop(const string& target, const string& directory) {
    const string opener = FindProgram(QStringLiteral("xdg-open"), {});
    if (opener.isEmpty())
        return NoAssociation;
    return AnswerFor(StartProgram(opener, {target}, directory).Error);
}

bool IsAddress(const string& target) {
    static constexpr int ShortestScheme = 2; // "a:b" is a file
    const QUrl url(target);
    return !NameTaken(target) && url.isValid() && url.scheme().size() >= ShortestScheme;
}

} // namespace

quint64 TJSGlobalFunctions::ShellExecute(qint64 /*hWnd*/, const PWideChar& Operation,
                                         const PWideChar& fileName, const PWideChar& Parameters,
                                         const PWideChar& Directory, int /*ShowCmd*/) {
    static const QStringList operations{QString(), QStringLiteral("open"), QStringLiteral("edit"),
                                        QStringLiteral("explore")};
    if (!operations.contains(Operation.toLower()))
        return NoAssociation;
    if (IsAddress(fileName))
        return OpenByDesktop(fileName, Directory);
    const string program = FindProgram(fileName, Directory);
    if (!program.isEmpty()) {
        const TStartedProgram started = StartProgram(program, QProcess::splitCommand(Parameters), Directory);
        if (started.Error != ENOEXEC) // marked as a program, as all files of some file systems are
            return AnswerFor(started.Error);
    }
    const string file = AgainstFolder(fileName, Directory);
    if (const int error = ReadError(file); error != 0)
        return AnswerFor(error);
    return OpenByDesktop(file, Directory);
}

quint32 TJSGlobalFunctions::CreateProcess(const string& cmd, quint32 /*ShowCmd*/, bool wait) {
    QStringList words = QProcess::splitCommand(cmd);
    const string program = words.isEmpty() ? QString() : FindProgram(words.takeFirst(), {}, AnyFile::Yes);
    if (program.isEmpty())
        return ENOENT;
    const TStartedProgram started = StartProgram(program, words, {});
    if (started.Error != 0)
        return quint32(started.Error);
    return wait ? quint32(WaitForProgram(started)) : 0;
}
