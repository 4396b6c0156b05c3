#include "engine/pdf/AttachedFile.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "engine/pdf/Dates.h"
#include "engine/pdf/Flate.h"
#include "engine/pdf/Metadata.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <qpdf/QPDFEFStreamObjectHelper.hh>
#include <qpdf/QPDFFileSpecObjectHelper.hh>

#include <cerrno>

namespace {

QPDFEFStreamObjectHelper NewFileStream(QPDF& pdf, const TAttachedFile& file) {
    QPDFObjectHandle data = pdf.newStream();
    data.replaceStreamData(*file.Contents, QPDFObjectHandle::newName("/FlateDecode"),
                           QPDFObjectHandle::newNull());
    data.getDict().replaceKey("/Type", QPDFObjectHandle::newName("/EmbeddedFile"));
    QPDFEFStreamObjectHelper stream(data);
    stream.setSubtype(file.MimeType.toStdString());
    stream.setCreationDate(PdfDate(file.Created));
    stream.setModDate(PdfDate(file.Modified));
    QPDFObjectHandle params = data.getDict().getKey("/Params");
    params.replaceKey("/Size", QPDFObjectHandle::newInteger(file.Size));
    params.replaceKey("/CheckSum", QPDFObjectHandle::newString(file.Checksum));
    return stream;
}

/// From its third part on PDF/A wants to know what a file is to the document (ISO 19005-3, 6.8).
void RelateToDocument(QPDF& pdf, QPDFObjectHandle spec) {
    if (PdfAPart(pdf) >= 3 && !spec.hasKey("/AFRelationship"))
        spec.replaceKey("/AFRelationship", QPDFObjectHandle::newName("/Unspecified"));
}

} // namespace

TAttachedFile ReadAttachedFile(const string& path, const string& name, const string& description,
                               const string& mimeType) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(QStringLiteral("Cannot attach \"%1\": %2").arg(path, file.errorString()), ENOENT);
    const QByteArray contents = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw EFileError(QStringLiteral("Cannot attach \"%1\": %2").arg(path, file.errorString()), EIO);
    const QFileInfo info(file);
    TAttachedFile attached;
    attached.Name = ExtractFileName(name.isEmpty() ? path : name);
    attached.Description = description;
    attached.MimeType =
        mimeType.isEmpty() ? QMimeDatabase().mimeTypeForFileNameAndData(path, contents).name() : mimeType;
    attached.Modified = info.lastModified();
    attached.Created = info.birthTime().isValid() ? info.birthTime() : attached.Modified;
    attached.Size = contents.size();
    attached.Checksum = QCryptographicHash::hash(contents, QCryptographicHash::Md5).toStdString();
    attached.Contents =
        std::make_shared<const std::string>(Deflated({contents.data(), size_t(contents.size())}));
    return attached;
}

QPDFObjectHandle NewFileSpec(QPDF& pdf, const TAttachedFile& file) {
    auto spec =
        QPDFFileSpecObjectHelper::createFileSpec(pdf, file.Name.toStdString(), NewFileStream(pdf, file));
    if (!file.Description.isEmpty())
        spec.setDescription(file.Description.toStdString());
    RelateToDocument(pdf, spec.getObjectHandle());
    return spec.getObjectHandle();
}

void ReplaceFile(QPDF& pdf, QPDFObjectHandle spec, const TAttachedFile& file) {
    QPDFObjectHandle stream = NewFileStream(pdf, file).getObjectHandle();
    QPDFObjectHandle streams = QPDFObjectHandle::newDictionary();
    streams.replaceKey("/F", stream);
    streams.replaceKey("/UF", stream);
    spec.replaceKey("/Type", QPDFObjectHandle::newName("/Filespec"));
    spec.replaceKey("/F", NewText(file.Name));
    spec.replaceKey("/UF", NewText(file.Name));
    spec.replaceKey("/EF", streams);
    for (const char* ofTheOld : {"/RF", "/Thumb", "/Unix", "/DOS", "/Mac"})
        spec.removeKey(ofTheOld);
    if (!file.Description.isEmpty())
        spec.replaceKey("/Desc", NewText(file.Description));
    RelateToDocument(pdf, spec);
}
