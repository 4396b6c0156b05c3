#include "engine/save/Attachments.h"

#include "engine/pdf/EmbeddedFileTree.h"
#include "engine/pdf/Metadata.h"

#include <map>
#include <set>

namespace {

/// The files that belong to the document as a whole (ISO 32000-2, 14.13.2).
std::vector<QPDFObjectHandle> AssociatedFiles(QPDF& pdf) {
    QPDFObjectHandle files = Entry(pdf.getRoot(), "/AF");
    return files.isArray() ? files.getArrayAsVector() : std::vector<QPDFObjectHandle>();
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

TEmbeddedFile Add(QPDF& pdf, const TAttachedFile& change) {
    const QPDFObjectHandle spec = NewFileSpec(pdf, change);
    if (PdfAPart(pdf) >= 3) {
        std::vector<QPDFObjectHandle> files = AssociatedFiles(pdf);
        files.push_back(spec);
        pdf.getRoot().replaceKey("/AF", QPDFObjectHandle::newArray(files));
    }
    return {NewText(change.Name).getStringValue(), spec};
}

} // namespace

void ApplyAttachments(TDocumentCore& core) {
    if (core.Changes.Attachments.empty())
        return;
    QPDF& pdf = *core.Source->Pdf;
    std::map<string, const TAttachedFile*> wanted; // the last change of a name counts
    for (const TAttachedFile& change : core.Changes.Attachments)
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
            ReplaceFile(pdf, file.Spec, *change->second);
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
