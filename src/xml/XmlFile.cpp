#include "xml/XmlFile.h"

#include "base/Paths.h"
#include "xml/XmlParser.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

string Quoted(const string& fileName) {
    return u'"' + fileName + u'"';
}

/// Opens a regular file. Opening a FIFO or a device would wait, or reading it never end.
class TInputFile {
public:
    explicit TInputFile(const string& fileName)
        : FName(fileName),
          FDescriptor(::open(PathBytes(fileName).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (FDescriptor < 0)
            throw EFileError(QStringLiteral("open"), fileName, errno);
    }
    TInputFile(const TInputFile&) = delete;
    TInputFile& operator=(const TInputFile&) = delete;
    ~TInputFile() { ::close(FDescriptor); }

    [[nodiscard]] QByteArray ReadAll() const {
        QByteArray bytes(Size() + 1, Qt::Uninitialized); // one more than it has, to see it grow
        qsizetype used = 0;
        while (const qsizetype got = Read(bytes.data() + used, bytes.size() - used)) {
            used += got;
            CheckXmlSize(used, Quoted(FName));
            if (used == bytes.size())
                bytes.resize(used * 2);
        }
        bytes.truncate(used);
        return bytes;
    }

private:
    [[nodiscard]] qsizetype Size() const {
        struct stat status {};
        if (::fstat(FDescriptor, &status) != 0)
            throw EFileError(QStringLiteral("open"), FName, errno);
        if (!S_ISREG(status.st_mode))
            throw EFileError(QStringLiteral("Cannot open \"%1\": it is not a file").arg(FName), EINVAL);
        CheckXmlSize(qsizetype(status.st_size), Quoted(FName));
        return qsizetype(status.st_size);
    }
    [[nodiscard]] qsizetype Read(char* data, qsizetype size) const {
        ssize_t got = 0;
        do
            got = ::read(FDescriptor, data, size_t(size));
        while (got < 0 && errno == EINTR);
        if (got < 0)
            throw EFileError(QStringLiteral("read"), FName, errno);
        return got;
    }

    string FName;
    int FDescriptor;
};

} // namespace

QByteArray ReadXmlFile(const string& fileName) {
    return TInputFile(fileName).ReadAll();
}

void WriteXmlFile(const string& fileName, const QByteArray& bytes) {
    PrepareXmlFile(fileName, bytes)->PublishReplacing();
}

std::unique_ptr<TPartFile> PrepareXmlFile(const string& fileName, const QByteArray& bytes) {
    CheckXmlSize(bytes.size(), Quoted(fileName));
    const string behind = QFileInfo(fileName).canonicalFilePath();
    auto file = std::make_unique<TPartFile>(behind.isEmpty() ? fileName : behind);
    file->TakeModeOf(fileName);
    file->Write(bytes.constData(), size_t(bytes.size()));
    file->Flush();
    return file;
}
