#include "base/Md5.h"

#include "base/Exceptions.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <cerrno>

TMD5Hash::MD5Digest TMD5Hash::MD5File(const string& fileName) {
    QFile file(fileName);
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        throw EFileError(QStringLiteral("Cannot read \"%1\": %2").arg(fileName, file.errorString()), errno);
    MD5Digest digest{};
    const QByteArray bytes = hash.result();
    std::copy(bytes.begin(), bytes.end(), digest.begin());
    return digest;
}
