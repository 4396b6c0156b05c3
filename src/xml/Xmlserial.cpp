#include "xml/Xmlserial.h"

#include "xml/ObjectReader.h"
#include "xml/ObjectWriter.h"
#include "xml/XmlFile.h"
#include "xml/XmlMarks.h"

#include <QIODevice>
#include <QObject>

namespace {

string Quoted(const string& fileName) {
    return u'"' + fileName + u'"';
}

string RootOf(const QObject& object, const string& rootName) {
    return rootName.isEmpty() ? XmlMarks::RootName(*object.metaObject()) : rootName;
}

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

} // namespace

void XMLSerialize(const QObject& object, const string& fileName, Boolean compact, const string& rootName) {
    const QByteArray bytes =
        WriteDocument(object, RootOf(object, rootName), compact ? XmlLayout::Compact : XmlLayout::Indented);
    WriteXmlFile(fileName, bytes);
}

void XMLSerialize(const QObject& object, QIODevice& stream, const string& rootName) {
    const QByteArray bytes = WriteDocument(object, RootOf(object, rootName), XmlLayout::Indented);
    CheckXmlSize(bytes.size(), QStringLiteral("stream"));
    if (stream.write(bytes) != bytes.size())
        throw EXmlError(QStringLiteral("Cannot write to the stream: %1").arg(stream.errorString()));
}

QObject& XMLDeserialize(QObject& object, const string& fileName, const string& rootName) {
    ReadDocument(object, ParseXml(ReadXmlFile(fileName), Quoted(fileName)), RootOf(object, rootName));
    return object;
}

QObject& XMLDeserialize(QObject& object, QIODevice& stream, const string& rootName) {
    if (!stream.isReadable())
        throw EXmlError(QStringLiteral("Cannot read from the stream: it is not open for reading"));
    ReadDocument(object, ParseXml(ReadStream(stream), QStringLiteral("stream")), RootOf(object, rootName));
    return object;
}
