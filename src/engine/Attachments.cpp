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
#include <qpdf/QPDFNameTreeObjectHelper.hh>

#include <cerrno>

namespace {

/// The name that readers show of an attached file (ISO 32000-1, table 44).
string ShownName(const std::string& key, const QPDFObjectHandle& file) {
    string name = QString::fromStdString(key);
    for (const char* of : {"/UF", "/F", "/Unix", "/DOS", "/Mac"}) {
        const string told = TextOf(Entry(file, of));
        if (told.isEmpty())
            continue;
        name = told;
        break;
    }
    return ExtractFileName(name.replace(u'\\', u'/'));
}

/// Shown names by the keys of the name tree. What of it is damaged has none.
std::vector<std::pair<std::string, string>> NamesByKey(QPDF& pdf) {
    std::vector<std::pair<std::string, string>> names;
    QPDFObjectHandle tree = Entry(Entry(pdf.getRoot(), "/Names"), "/EmbeddedFiles");
    if (!tree.isDictionary())
        return names;
    try {
        for (const auto& [key, file] : QPDFNameTreeObjectHelper(tree, pdf))
            if (QPDFObjectHandle spec = file; spec.isDictionary())
                names.emplace_back(key, ShownName(key, spec));
    } catch (const std::exception&) { // a tree that the library gave up on
    }
    return names;
}

void Remove(QPDF& pdf, QPDFEmbeddedFileDocumentHelper& files, const string& name) {
    for (const auto& [key, shown] : NamesByKey(pdf))
        if (shown == name)
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
        Remove(pdf, files, change.Name);
        if (change.Contents)
            files.replaceEmbeddedFile(change.Name.toStdString(), NewFileSpec(pdf, change));
    }
    core.Changes.Attachments.clear();
}

QStringList AttachmentNames(const TPDFSource& source) {
    QStringList names;
    for (const auto& [key, shown] : NamesByKey(*source.Pdf))
        names.append(shown);
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
