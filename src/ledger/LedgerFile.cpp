#include "ledger/LedgerFile.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "base/Settings.h"

#include <cerrno>
#include <sys/stat.h>

void MakeLedgerFile(const string& path) {
    const string folder = ExtractFilePath(path);
    const QByteArray folderBytes = PathBytes(folder);
    if (!DirectoryExists(folder)) {
        ForceDirectories(ExtractFilePath(folder.chopped(1)));
        if (::mkdir(folderBytes.constData(), 0700) != 0 && errno != EEXIST)
            throw EFileError(QStringLiteral("make the folder"), folder, errno);
    } else if (folder == StateFolder()) {
        (void)::chmod(folderBytes.constData(), 0700); // others may have made it
    }
    // Never opened and closed here: that would drop the locks which another connection of this process has.
    if (::mknod(PathBytes(path).constData(), S_IFREG | 0600, 0) != 0 && errno != EEXIST)
        throw EFileError(QStringLiteral("make"), path, errno);
}
