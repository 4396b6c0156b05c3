#include "engine/save/Prune.h"

#include "engine/pdf/Destinations.h"
#include "engine/pdf/FieldTree.h"
#include "engine/save/OutlinePrune.h"
#include "engine/save/StructurePrune.h"

#include <qpdf/QPDFNameTreeObjectHelper.hh>

#include <unordered_set>

namespace {

class TPruner {
public:
    explicit TPruner(TDocumentCore& core) : FCore(core), FPdf(*core.Source->Pdf), FNames(FPdf) {
        for (const QPDFObjectHandle& page : core.DeletedPages)
            if (page.isIndirect())
                FGone.insert(KeyOf(page));
        for (const auto& item : core.Pages.Items()) // listed more than once, and deleted once
            FGone.erase(KeyOf(item->Object().Dict));
        for (const QPDFObjectHandle& page : core.DeletedPages)
            if (IsGone(page))
                FPages.push_back(page);
    }

    void Prune() {
        PruneLinks();
        PruneOutlines(FPdf, [this](const QPDFObjectHandle& item) { return LeadsToGone(item); });
        if (QPDFObjectHandle open = FPdf.getRoot().getKey("/OpenAction"); OpensGone(open))
            FPdf.getRoot().removeKey("/OpenAction");
        PruneForm();
        PruneArticles();
        Guarded("structure", [this] { PruneStructure(FPdf, FPages); });
        Guarded("named destinations", [this] { PruneNames(); });
        // Whatever else refers to them, an old tree or a private structure, finds nothing.
        for (const QPDFObjectHandle& page : FPages)
            FPdf.replaceObject(page.getObjGen(), QPDFObjectHandle::newNull());
    }

private:
    [[nodiscard]] bool IsGone(const QPDFObjectHandle& object) const {
        return object.isIndirect() && FGone.contains(KeyOf(object));
    }
    bool LeadsToGone(const QPDFObjectHandle& holder) {
        return IsGone(FNames.PageOf(TDestinations::Of(holder)));
    }
    bool OpensGone(QPDFObjectHandle open) {
        if (open.isArray())
            return IsGone(FNames.PageOf(open));
        return IsName(Entry(open, "/S"), "/GoTo") && IsGone(FNames.PageOf(open.getKey("/D")));
    }

    void PruneLinks() {
        for (const auto& item : FCore.Pages.Items()) {
            QPDFObjectHandle page = item->Object().Dict;
            QPDFObjectHandle annotations = page.getKey("/Annots");
            if (!annotations.isArray())
                continue;
            std::vector<QPDFObjectHandle> kept;
            for (const QPDFObjectHandle& annotation : annotations.getArrayAsVector())
                if (!IsName(Entry(annotation, "/Subtype"), "/Link") || !LeadsToGone(annotation))
                    kept.push_back(annotation);
            if (int(kept.size()) < annotations.getArrayNItems())
                page.replaceKey("/Annots", QPDFObjectHandle::newArray(kept));
        }
    }

    void PruneForm() {
        std::unordered_set<quint64> widgets;
        for (QPDFObjectHandle page : FPages)
            if (QPDFObjectHandle annotations = page.getKey("/Annots"); annotations.isArray())
                for (const QPDFObjectHandle& annotation : annotations.getArrayAsVector())
                    if (annotation.isIndirect())
                        widgets.insert(KeyOf(annotation));
        QPDFObjectHandle form = Entry(FPdf.getRoot(), "/AcroForm");
        if (widgets.empty() || !form.isDictionary())
            return;
        const auto gone = [&](const QPDFObjectHandle& field) { return widgets.contains(KeyOf(field)); };
        for (const char* list : {"/Fields", "/CO"})
            if (QPDFObjectHandle fields = form.getKey(list); fields.isArray())
                form.replaceKey(list, QPDFObjectHandle::newArray(PruneFields(fields, gone)));
    }

    /// Beads form a ring (ISO 32000-1, 12.4.3); it is closed over those that are gone.
    void PruneArticles() {
        QPDFObjectHandle threads = FPdf.getRoot().getKey("/Threads");
        if (!threads.isArray())
            return;
        std::vector<QPDFObjectHandle> kept;
        for (const QPDFObjectHandle& thread : threads.getArrayAsVector())
            if (CloseRing(thread))
                kept.push_back(thread);
        if (kept.empty())
            FPdf.getRoot().removeKey("/Threads");
        else
            FPdf.getRoot().replaceKey("/Threads", QPDFObjectHandle::newArray(kept));
    }

    bool CloseRing(QPDFObjectHandle thread) {
        std::vector<QPDFObjectHandle> beads;
        std::unordered_set<quint64> seen;
        bool any = false;
        for (QPDFObjectHandle bead = Entry(thread, "/F");
             bead.isDictionary() && bead.isIndirect() && seen.insert(KeyOf(bead)).second;
             bead = bead.getKey("/N")) {
            if (IsGone(bead.getKey("/P")))
                any = true;
            else
                beads.push_back(bead);
        }
        if (!any)
            return true;
        if (beads.empty())
            return false;
        for (size_t i = 0; i < beads.size(); ++i) {
            QPDFObjectHandle& next = beads[(i + 1) % beads.size()];
            beads[i].replaceKey("/N", next);
            next.replaceKey("/V", beads[i]);
        }
        beads.front().replaceKey("/T", thread);
        thread.replaceKey("/F", beads.front());
        return true;
    }

    void PruneNames() {
        QPDFObjectHandle old = Entry(FPdf.getRoot(), "/Dests");
        if (old.isDictionary())
            for (const std::string& key : old.getKeys())
                if (IsGone(FNames.PageOf(old.getKey(key))))
                    old.removeKey(key);
        QPDFObjectHandle tree = Entry(Entry(FPdf.getRoot(), "/Names"), "/Dests");
        if (!tree.isDictionary())
            return;
        QPDFNameTreeObjectHelper names(tree, FPdf);
        for (auto it = names.begin(); it != names.end();) {
            if (IsGone(FNames.PageOf(it->second)))
                it.remove();
            else
                ++it;
        }
    }

    /// The library's trees of names and numbers raise where they are damaged beyond their repair.
    template <class T> void Guarded(const char* what, T&& work) {
        try {
            work();
        } catch (const std::exception& e) {
            FCore.Warnings.Add(TWarningKind::NamesUnreadable,
                               QStringLiteral("Damaged %1: %2").arg(QLatin1StringView(what), MessageOf(e)));
        }
    }

    TDocumentCore& FCore;
    QPDF& FPdf;
    TDestinations FNames;
    std::unordered_set<quint64> FGone;
    std::vector<QPDFObjectHandle> FPages; // those of FGone
};

} // namespace

void PruneDeletedPages(TDocumentCore& core) {
    if (!core.DeletedPages.empty())
        TPruner(core).Prune();
    core.DeletedPages.clear();
}
