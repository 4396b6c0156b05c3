#include "engine/Attachments.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "engine/InfoWriter.h"
#include "engine/content/FormContent.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <qpdf/QPDFEmbeddedFileDocumentHelper.hh>

#include <cerrno>

namespace {

string ShownName(const std::string& key, QPDFFileSpecObjectHelper& file) {
    const std::string name = file.getFilename();
    return ExtractFileName(QString::fromStdString(name.empty() ? key : name).replace(u'\\', u'/'));
}

void Remove(QPDFEmbeddedFileDocumentHelper& files, const string& name) {
    std::vector<std::string> keys;
    for (const auto& [key, file] : files.getEmbeddedFiles())
        if (ShownName(key, *file) == name)
            keys.push_back(key);
    for (const std::string& key : keys)
        files.removeEmbeddedFile(key);
}

} // namespace

QPDFObjectHandle NewFileSpec(QPDF& pdf, const TAttachmentChange& change) {
    QPDFObjectHandle data = pdf.newStream();
    data.replaceStreamData(*change.Contents, QPDFObjectHandle::newName("/FlateDecode"),
                           QPDFObjectHandle::newNull());
    data.getDict().replaceKey("/Type", QPDFObjectHandle::newName("/EmbeddedFile"));
    QPDFEFStreamObjectHelper stream(data);
    stream.setSubtype(change.MimeType.toStdString());
    stream.setCreationDate(PdfDate(change.Created));
    stream.setModDate(PdfDate(change.Modified));
    QPDFObjectHandle params = data.getDict().getKey("/Params");
    params.replaceKey("/Size", QPDFObjectHandle::newInteger(change.Size));
    params.replaceKey("/CheckSum", QPDFObjectHandle::newString(change.Checksum));
    auto spec = QPDFFileSpecObjectHelper::createFileSpec(pdf, change.Name.toStdString(), stream);
    if (!change.Description.isEmpty())
        spec.setDescription(change.Description.toStdString());
    return spec.getObjectHandle();
}

void ApplyAttachments(TDocumentCore& core) {
    if (core.Changes.Attachments.empty())
        return;
    QPDF& pdf = *core.Source->Pdf;
    QPDFEmbeddedFileDocumentHelper files(pdf);
    for (const TAttachmentChange& change : core.Changes.Attachments) {
        Remove(files, change.Name);
        if (change.Contents)
            files.replaceEmbeddedFile(change.Name.toStdString(), NewFileSpec(pdf, change));
    }
    core.Changes.Attachments.clear();
}

QStringList AttachmentNames(const TPDFSource& source) {
    QStringList names;
    if (!Entry(Entry(source.Pdf->getRoot(), "/Names"), "/EmbeddedFiles").isDictionary())
        return names;
    for (const auto& [key, file] : QPDFEmbeddedFileDocumentHelper(*source.Pdf).getEmbeddedFiles())
        names.append(ShownName(key, *file));
    return names;
}

TAttachmentChange ReadAttachment(const string& path, const string& name, const string& description,
                                 const string& mimeType) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(QStringLiteral("Cannot attach \"%1\": %2").arg(path, file.errorString()), ENOENT);
    const QByteArray contents = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw EFileError(QStringLiteral("Cannot attach \"%1\": %2").arg(path, file.errorString()), EIO);
    const QFileInfo info(file);
    TAttachmentChange change;
    change.Name = ExtractFileName(name.isEmpty() ? path : name);
    change.Description = description;
    change.MimeType =
        mimeType.isEmpty() ? QMimeDatabase().mimeTypeForFileNameAndData(path, contents).name() : mimeType;
    change.Modified = info.lastModified();
    change.Created = info.birthTime().isValid() ? info.birthTime() : change.Modified;
    change.Size = contents.size();
    change.Checksum = QCryptographicHash::hash(contents, QCryptographicHash::Md5).toStdString();
    change.Contents =
        std::make_shared<const std::string>(Deflated({contents.data(), size_t(contents.size())}));
    return change;
}
