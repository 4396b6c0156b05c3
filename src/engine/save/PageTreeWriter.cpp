#include "engine/save/PageTreeWriter.h"

#include "engine/import/PageImport.h"
#include "engine/save/PageLabels.h"
#include "engine/save/Prune.h"

namespace {

constexpr size_t KidsPerNode = 64; // keeps arrays short and any page three or four steps from the root

QPDFObjectHandle NewBox(const TPageBox& box) {
    return QPDFObjectHandle::newArray(QPDFObjectHandle::Rectangle(box.x0, box.y0, box.x1, box.y1));
}

QPDFObjectHandle NewBlank(QPDF& pdf, const TPageBox& box) {
    QPDFObjectHandle page = QPDFObjectHandle::newDictionary();
    page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    page.replaceKey("/MediaBox", NewBox(box));
    page.replaceKey("/Resources", QPDFObjectHandle::newDictionary());
    return pdf.makeIndirectObject(page);
}

/// Gives the page as its own what it had from the nodes above it, which go.
void PushDown(TPageObject& page) {
    if (!page.Inherited)
        return;
    for (const char* key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"})
        if (!page.Dict.hasKey(key))
            if (QPDFObjectHandle value = page.Attribute(key); !value.isNull())
                page.Dict.replaceKey(key, value);
    page.Inherited.reset();
}

void MakeOwn(TPageObject& page, const QPDFObjectHandle& dict) {
    page.Origin = TPageOrigin::Own;
    page.Dict = dict;
    page.Inherited.reset();
    page.Source.reset();
}

/// Gives `node` the kids from `first` on up to `last`, in as many levels as that takes.
class TTreeBuilder {
public:
    TTreeBuilder(QPDF& pdf, const std::vector<QPDFObjectHandle>& pages) : FPdf(pdf), FPages(pages) {}

    void Fill(QPDFObjectHandle node, size_t first, size_t last) {
        size_t span = 1; // pages below each kid
        while (span * KidsPerNode < last - first)
            span *= KidsPerNode;
        std::vector<QPDFObjectHandle> kids;
        for (size_t at = first; at < last; at += span) {
            QPDFObjectHandle kid = FPages[at];
            if (span > 1) {
                kid = FPdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
                Fill(kid, at, std::min(at + span, last));
            }
            kid.replaceKey("/Parent", node);
            kids.push_back(kid);
        }
        node.replaceKey("/Type", QPDFObjectHandle::newName("/Pages"));
        node.replaceKey("/Kids", QPDFObjectHandle::newArray(kids));
        node.replaceKey("/Count", QPDFObjectHandle::newInteger(qint64(last - first)));
    }

private:
    QPDF& FPdf;
    const std::vector<QPDFObjectHandle>& FPages;
};

/// The root keeps its object, since others may refer to it; what it passed on to pages is theirs now.
QPDFObjectHandle TreeRoot(QPDF& pdf) {
    QPDFObjectHandle root = Entry(pdf.getRoot(), "/Pages");
    while (Entry(root, "/Parent").isDictionary() && root.isIndirect()) {
        QPDFObjectHandle parent = root.getKey("/Parent");
        root.removeKey("/Parent"); // and so a loop ends
        root = parent;
    }
    if (!root.isDictionary() || !root.isIndirect() || IsName(root.getKey("/Type"), "/Page"))
        root = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
    for (const char* key : {"/Parent", "/Resources", "/MediaBox", "/CropBox", "/Rotate"})
        root.removeKey(key);
    pdf.getRoot().replaceKey("/Pages", root);
    return root;
}

void MakePages(TDocumentCore& core) {
    QPDF& pdf = *core.Source->Pdf;
    for (const auto& item : core.Pages.Items()) {
        TPageObject& page = item->Object();
        if (page.Origin == TPageOrigin::Blank)
            MakeOwn(page, NewBlank(pdf, page.BlankBox));
        else if (page.Origin == TPageOrigin::Own && !page.Dict.isIndirect())
            page.Dict = pdf.makeIndirectObject(page.Dict);
        if (page.Origin == TPageOrigin::Own)
            PushDown(page);
    }
}

void RebuildTree(TDocumentCore& core) {
    QPDF& pdf = *core.Source->Pdf;
    std::vector<QPDFObjectHandle> pages;
    pages.reserve(size_t(core.Pages.Count()));
    for (const auto& item : core.Pages.Items())
        pages.push_back(item->Object().Dict);
    for (QPDFObjectHandle& page : pages)
        page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    TTreeBuilder(pdf, pages).Fill(TreeRoot(pdf), 0, pages.size());
    pdf.updateAllPagesCache();
}

/// The walk's list is what imports from this document and its own bookkeeping go by.
void RefreshWalk(TDocumentCore& core) {
    TPageWalk& walk = core.Source->Walk;
    walk.Pages.clear();
    walk.Irregular = false;
    for (const auto& item : core.Pages.Items()) {
        item->Object().FileIndex = int(walk.Pages.size());
        walk.Pages.push_back({item->Object().Dict, nullptr, false});
    }
}

void ApplyChanges(TPageObject& page) {
    if (page.NewRotation)
        page.Dict.replaceKey("/Rotate", QPDFObjectHandle::newInteger(*page.NewRotation));
    if (page.NewCrop)
        page.Dict.replaceKey("/CropBox", NewBox(*page.NewCrop));
    page.NewRotation.reset();
    page.NewCrop.reset();
}

void WriteOutlines(TDocumentCore& core) {
    if (core.Outlines)
        core.Outlines->Write(*core.Source->Pdf, core.Pages);
}

} // namespace

void ApplyPages(TDocumentCore& core) {
    if (core.StructureChanged || core.Source->Walk.Irregular) {
        const TPageLabels labels(core);
        TPageImport imported(core);
        MakePages(core);
        imported.MakeCopies();
        RebuildTree(core);
        imported.JoinForms();
        WriteOutlines(core); // before the items that lead to deleted pages go, and with them empty headings
        PruneDeletedPages(core);
        labels.Write(core);
        RefreshWalk(core);
        core.StructureChanged = false;
    } else {
        WriteOutlines(core);
    }
    if (core.Outlines)
        core.Outlines->Refresh(core.Root());
    for (const auto& item : core.Pages.Items())
        ApplyChanges(item->Object());
}
