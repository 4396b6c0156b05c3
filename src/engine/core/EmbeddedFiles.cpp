#include "engine/core/EmbeddedFiles.h"

#include "base/Paths.h"
#include "engine/core/DocumentCore.h"
#include "engine/pdf/EmbeddedFileTree.h"

struct TPDFEmbeddedFiles::TChanges {
    std::vector<TAttachedFile> Items;
};

namespace {

void Replay(QStringList& names, const std::vector<TAttachedFile>& changes) {
    for (const TAttachedFile& change : changes) {
        names.removeAll(change.Name);
        if (change.Contents)
            names.append(change.Name);
    }
}

} // namespace

TPDFEmbeddedFiles::TPDFEmbeddedFiles(TDocumentCore& core)
    : FCore(core), FPending(std::make_unique<TChanges>()) {}
TPDFEmbeddedFiles::~TPDFEmbeddedFiles() = default;

QStringList TPDFEmbeddedFiles::Names() const {
    QStringList names;
    if (FCore.Source)
        for (const TEmbeddedFile& file : ReadEmbeddedFiles(*FCore.Source->Pdf))
            names.append(ShownName(file));
    Replay(names, FCore.Changes.Attachments);
    Replay(names, FPending->Items);
    names.sort();
    return names;
}

bool TPDFEmbeddedFiles::Exists(const string& name) const {
    return Names().contains(ExtractFileName(name));
}

void TPDFEmbeddedFiles::Delete(const string& name) {
    TAttachedFile change;
    change.Name = ExtractFileName(name);
    FPending->Items.push_back(std::move(change));
}

void TPDFEmbeddedFiles::Add(const string& path, const string& shownName, const string& description,
                            const string& mimeType) {
    FPending->Items.push_back(ReadAttachedFile(path, shownName, description, mimeType));
}

void TPDFEmbeddedFiles::Update() {
    if (FPending->Items.empty())
        return;
    auto& confirmed = FCore.Changes.Attachments;
    confirmed.insert(confirmed.end(), std::make_move_iterator(FPending->Items.begin()),
                     std::make_move_iterator(FPending->Items.end()));
    FPending->Items.clear();
    if (FCore.Locks == 0)
        FCore.Modified = true;
}
