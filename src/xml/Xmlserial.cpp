#include "xml/Xmlserial.h"

#include "base/PartFile.h"
#include "base/Paths.h"
#include "xml/ObjectReader.h"
#include "xml/ObjectWriter.h"
#include "xml/XmlMarks.h"

#include <QFileInfo>
#include <QIODevice>
#include <QObject>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

string Quoted(const string& fileName) {
    return u'"' + fileName + u'"';
}

string RootOf(const QObject& object, const string& rootName) {
    return rootName.isEmpty() ? XmlMarks::RootName(*object.metaObject()) : rootName;
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

QByteArray ReadStream(QIODevice& stream) {
    QByteArray bytes;
    while (bytes.size() <= XmlLimits::FileBytes) {
        const QByteArray part = stream.read(1 << 20);
        if (part.isEmpty())
            break;
        bytes += part;
    }
    return bytes;
}

/// A file behind a symbolic link is replaced where it lies, and the new one keeps the old one's mode: the
/// passwords of some actions stand in it.
void Publish(const string& fileName, const QByteArray& bytes) {
    const string behind = QFileInfo(fileName).canonicalFilePath();
    TPartFile file(behind.isEmpty() ? fileName : behind);
    file.TakeModeOf(fileName);
    file.Write(bytes.constData(), size_t(bytes.size()));
    file.PublishReplacing();
}

} // namespace

void XMLSerialize(const QObject& object, const string& fileName, Boolean compact, const string& rootName) {
    const QByteArray bytes =
        WriteDocument(object, RootOf(object, rootName), compact ? XmlLayout::Compact : XmlLayout::Indented);
    CheckXmlSize(bytes.size(), Quoted(fileName));
    Publish(fileName, bytes);
}

void XMLSerialize(const QObject& object, QIODevice& stream, const string& rootName) {
    const QByteArray bytes = WriteDocument(object, RootOf(object, rootName), XmlLayout::Indented);
    CheckXmlSize(bytes.size(), QStringLiteral("stream"));
    if (stream.write(bytes) != bytes.size())
        throw EXmlError(QStringLiteral("Cannot write to the stream: %1").arg(stream.errorString()));
}

QObject& XMLDeserialize(QObject& object, const string& fileName, const string& rootName) {
    ReadDocument(object, ParseXml(TInputFile(fileName).ReadAll(), Quoted(fileName)),
                 RootOf(object, rootName));
    return object;
}

QObject& XMLDeserialize(QObject& object, QIODevice& stream, const string& rootName) {
    if (!stream.isReadable())
        throw EXmlError(QStringLiteral("Cannot read from the stream: it is not open for reading"));
    ReadDocument(object, ParseXml(ReadStream(stream), QStringLiteral("stream")), RootOf(object, rootName));
    return object;
}
