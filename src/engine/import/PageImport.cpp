#include "engine/import/PageImport.h"

#include "engine/import/FormImport.h"
#include "engine/import/ObjectCopier.h"
#include "engine/import/OptionalContent.h"
#include "engine/pages/SharedResources.h"
#include "engine/pdf/Destinations.h"

/// Pages that were imported by one call.
struct TPageImport::TBatch {
    TBatch(QPDF& target, const TPDFSourcePtr& source) : Copier(target, source), Names(*source->Pdf) {}

    TObjectCopier Copier;
    TDestinations Names;
    std::vector<TPageObject*> Pages;
    std::vector<TImportedWidgets> Widgets;
};

namespace {

/// What leads into parts of the source that are not copied: its tree, articles and structure.
bool StaysBehind(const std::string& key) {
    return key == "/Parent" || key == "/B" || key == "/StructParents" || key == "/Annots";
}

void CopyEntries(TObjectCopier& copier, const TPageObject& page, QPDFObjectHandle copy) {
    QPDFObjectHandle dict = page.Dict;
    for (auto& [key, value] : dict.getDictAsMap())
        if (!StaysBehind(key))
            copy.replaceKey(key, copier.Copy(value));
    for (const char* key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"})
        if (!copy.hasKey(key))
            if (QPDFObjectHandle value = page.Attribute(key); !value.isNull())
                copy.replaceKey(key, copier.Copy(value));
}

/// Names mean nothing, or another thing, in the document that the link comes to.
void MakeExplicit(const QPDFObjectHandle& from, QPDFObjectHandle copy, TObjectCopier& copier,
                  TDestinations& destinations) {
    QPDFObjectHandle name = TDestinations::Of(from);
    if (copier.SameFile() || (!name.isName() && !name.isString()))
        return;
    QPDFObjectHandle target = copier.Copy(destinations.Explicit(name));
    copy.removeKey("/Dest");
    if (!copy.getKey("/A").isNull())
        copy.replaceKey("/A", copy.getKey("/A").shallowCopy());
    QPDFObjectHandle holder = copy.getKey("/A").isDictionary() ? copy.getKey("/A") : copy;
    holder.replaceKey(holder.isSameObjectAs(copy) ? "/Dest" : "/D", target);
}

/// Copies the annotations of one page, each of which belongs to that page alone.
class TAnnotationCopier {
public:
    TAnnotationCopier(TObjectCopier& copier, TDestinations& destinations, QPDF& pdf)
        : FCopier(copier), FDestinations(destinations), FPdf(pdf) {}

    /// All but the widgets, which are given back.
    std::vector<QPDFObjectHandle> Copy(const TPageObject& page, QPDFObjectHandle copy) {
        std::vector<QPDFObjectHandle> widgets;
        std::vector<QPDFObjectHandle> copies;
        QPDFObjectHandle array = Entry(page.Dict, "/Annots");
        if (!array.isArray())
            return widgets;
        for (QPDFObjectHandle annotation : array.getArrayAsVector()) {
            if (IsName(Entry(annotation, "/Subtype"), "/Widget"))
                widgets.push_back(annotation);
            else if (annotation.isDictionary())
                copies.push_back(Allocate(annotation));
        }
        const size_t listed = FAllocated.size();
        for (size_t i = 0; i < listed; ++i) // a popup need not be in the array
            if (QPDFObjectHandle popup = FAllocated[i].first.getKey("/Popup");
                popup.isIndirect() && popup.isDictionary())
                static_cast<void>(Allocate(popup));
        for (auto& [from, to] : FAllocated)
            Fill(from, to);
        if (!copies.empty())
            copy.replaceKey("/Annots", QPDFObjectHandle::newArray(copies));
        return widgets;
    }

private:
    QPDFObjectHandle Allocate(const QPDFObjectHandle& annotation) {
        const auto known = FByObject.find(KeyOf(annotation));
        if (annotation.isIndirect() && known != FByObject.end())
            return known->second;
        QPDFObjectHandle copy = FPdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
        FAllocated.emplace_back(annotation, copy);
        if (annotation.isIndirect()) {
            FByObject.emplace(KeyOf(annotation), copy);
            FCopier.MapLocal(annotation.getObjGen(), copy);
        }
        return copy;
    }

    void Fill(QPDFObjectHandle from, QPDFObjectHandle to) {
        for (auto& [key, value] : from.getDictAsMap())
            if (key != "/StructParent")
                to.replaceKey(key, FCopier.Copy(value));
        MakeExplicit(from, to, FCopier, FDestinations);
    }

    TObjectCopier& FCopier;
    TDestinations& FDestinations;
    QPDF& FPdf;
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> FAllocated; // annotation, its copy
    std::unordered_map<quint64, QPDFObjectHandle> FByObject;
};

} // namespace

TPageImport::TPageImport(TDocumentCore& core) : FCore(core) {
    std::map<std::pair<const TPDFSource*, int>, TBatch*> known;
    for (const auto& item : core.Pages.Items()) {
        TPageObject& page = item->Object();
        if (page.Origin != TPageOrigin::Copy)
            continue;
        TBatch*& batch = known[{page.Source.get(), page.Batch}];
        if (!batch) {
            FBatches.push_back(std::make_unique<TBatch>(*core.Source->Pdf, page.Source));
            batch = FBatches.back().get();
        }
        batch->Pages.push_back(&page);
    }
}

TPageImport::~TPageImport() = default;

void TPageImport::MakeCopies() {
    QPDF& pdf = *FCore.Source->Pdf;
    for (const auto& batch : FBatches) {
        const std::vector<bool> shared = SharesResources(*batch->Copier.Source(), batch->Pages);
        std::vector<QPDFObjectHandle> copies;
        for (const TPageObject* page : batch->Pages) {
            copies.push_back(pdf.makeIndirectObject(QPDFObjectHandle::newDictionary()));
            batch->Copier.MapPage(page->CopiedFrom, copies.back());
        }
        for (size_t i = 0; i < copies.size(); ++i) {
            TPageObject& page = *batch->Pages[i];
            batch->Copier.MapLocal(page.CopiedFrom, copies[i]);
            CopyEntries(batch->Copier, page, copies[i]);
            TImportedWidgets widgets{copies[i], page.CopiedFrom, {}};
            widgets.Widgets = TAnnotationCopier(batch->Copier, batch->Names, pdf).Copy(page, copies[i]);
            batch->Widgets.push_back(std::move(widgets));
            batch->Copier.Finish();
            batch->Copier.ClearLocal();
            if (shared[i])
                DropUnusedResources(copies[i]);
            page.Origin = TPageOrigin::Own;
            page.Dict = copies[i];
            page.Inherited.reset();
            page.Source.reset();
        }
        JoinOptionalContent(batch->Copier, pdf);
        if (!batch->Copier.SameFile())
            FCore.Source->Kept.push_back(batch->Copier.Source());
    }
}

void TPageImport::JoinForms() {
    for (const auto& batch : FBatches)
        ImportForms(FCore, *batch->Copier.Source(), batch->Widgets);
}
