#include "engine/save/Attachments.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "engine/content/FormContent.h"
#include "engine/pdf/EmbeddedFileTree.h"
#include "engine/pdf/Metadata.h"
#include "engine/save/InfoWriter.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <qpdf/QPDFEFStreamObjectHelper.hh>
#include <qpdf/QPDFFileSpecObjectHelper.hh>

#include <cerrno>
#include <map>
#include <set>

namespace {

/// The name that readers show of an attached file (ISO 32000-1, table 44).
string ShownName(const TEmbeddedFile& file) {
    string name = TextOf(QPDFObjectHandle::newString(file.Key));
    for (const char* of : {"/UF", "/F", "/Unix", "/DOS", "/Mac"}) {
        const string told = TextOf(Entry(file.Spec, of));
        if (told.isEmpty())
            continue;
        name = told;
        break;
    }
    return ExtractFileName(name.replace(u'\\', u'/'));
}

QPDFEFStreamObjectHelper NewFileStream(QPDF& pdf, const TAttachmentChange& change) {
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
    return stream;
}

/// From its third part on PDF/A wants to know what a file is to the document (ISO 19005-3, 6.8).
void RelateToDocument(QPDF& pdf, QPDFObjectHandle spec) {
    if (PdfAPart(pdf) >= 3 && !spec.hasKey("/AFRelationship"))
        spec.replaceKey("/AFRelationship", QPDFObjectHandle::newName("/Unspecified"));
}

/// The files that belong to the document as a whole (ISO 32000-2, 14.13.2).
std::vector<QPDFObjectHandle> AssociatedFiles(QPDF& pdf) {
    QPDFObjectHandle files = Entry(pdf.getRoot(), "/AF");
    return files.isArray() ? files.getArrayAsVector() : std::vector<QPDFObjectHandle>();
}

/// New contents for the Filespec dictionary, which keeps what else it says and what else refers to it.
void Replace(QPDF& pdf, QPDFObjectHandle spec, const TAttachmentChange& change) {
    QPDFObjectHandle stream = NewFileStream(pdf, change).getObjectHandle();
    QPDFObjectHandle streams = QPDFObjectHandle::newDictionary();
    streams.replaceKey("/F", stream);
    streams.replaceKey("/UF", stream);
    spec.replaceKey("/Type", QPDFObjectHandle::newName("/Filespec"));
    spec.replaceKey("/F", NewText(change.Name));
    spec.replaceKey("/UF", NewText(change.Name));
    spec.replaceKey("/EF", streams);
    for (const char* ofTheOld : {"/RF", "/Thumb", "/Unix", "/DOS", "/Mac"})
        spec.removeKey(ofTheOld);
    if (!change.Description.isEmpty())
        spec.replaceKey("/Desc", NewText(change.Description));
    RelateToDocument(pdf, spec);
}

/// The document no longer has the file.
void Forget(QPDF& pdf, const QPDFObjectHandle& spec) {
    std::vector<QPDFObjectHandle> files = AssociatedFiles(pdf);
    if (std::erase_if(files, [&](const QPDFObjectHandle& file) { return file.isSameObjectAs(spec); }) == 0)
        return;
    if (files.empty())
        pdf.getRoot().removeKey("/AF");
    else
        pdf.getRoot().replaceKey("/AF", QPDFObjectHandle::newArray(files));
}

TEmbeddedFile Add(QPDF& pdf, const TAttachmentChange& change) {
    const QPDFObjectHandle spec = NewFileSpec(pdf, change);
    if (PdfAPart(pdf) >= 3) {
        std::vector<QPDFObjectHandle> files = AssociatedFiles(pdf);
        files.push_back(spec);
        pdf.getRoot().replaceKey("/AF", QPDFObjectHandle::newArray(files));
    }
    return {NewText(change.Name).getStringValue(), spec};
}

} // namespace

QPDFObjectHandle NewFileSpec(QPDF& pdf, const TAttachmentChange& change) {
    auto spec =
        QPDFFileSpecObjectHelper::createFileSpec(pdf, change.Name.toStdString(), NewFileStream(pdf, change));
    if (!change.Description.isEmpty())
        spec.setDescription(change.Description.toStdString());
    RelateToDocument(pdf, spec.getObjectHandle());
    return spec.getObjectHandle();
}

void ApplyAttachments(TDocumentCore& core) {
    if (core.Changes.Attachments.empty())
        return;
    QPDF& pdf = *core.Source->Pdf;
    std::map<string, const TAttachmentChange*> wanted; // the last change of a name counts
    for (const TAttachmentChange& change : core.Changes.Attachments)
        wanted[change.Name] = &change;
    std::set<string> present;
    std::vector<TEmbeddedFile> files;
    for (TEmbeddedFile& file : ReadEmbeddedFiles(pdf)) {
        const string shown = ShownName(file);
        const auto change = wanted.find(shown);
        const bool isFirst = present.insert(shown).second;
        if (file.Key.empty())
            file.Key = NewText(shown).getStringValue();
        if (change == wanted.end()) {
            files.push_back(std::move(file));
        } else if (change->second->Contents && isFirst) {
            Replace(pdf, file.Spec, *change->second);
            files.push_back(std::move(file));
        } else {
            Forget(pdf, file.Spec);
        }
    }
    for (const auto& [name, change] : wanted)
        if (change->Contents && !present.contains(name))
            files.push_back(Add(pdf, *change));
    WriteEmbeddedFiles(pdf, std::move(files));
    core.RequireVersion(4);
    core.Changes.Attachments.clear();
}

QStringList AttachmentNames(const TPDFSource& source) {
    QStringList names;
    for (const TEmbeddedFile& file : ReadEmbeddedFiles(*source.Pdf))
        names.append(ShownName(file));
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
