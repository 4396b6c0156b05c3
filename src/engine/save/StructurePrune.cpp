#include "engine/save/StructurePrune.h"

#include <qpdf/QPDFNumberTreeObjectHelper.hh>

#include <unordered_set>

namespace {

constexpr int MaxDepth = 500; // deeper elements are left as they are

class TStructurePruner {
public:
    explicit TStructurePruner(const std::vector<QPDFObjectHandle>& gone) {
        for (const QPDFObjectHandle& page : gone)
            FGone.insert(KeyOf(page));
    }

    /// False if the element had content and has none left. `page` is the one that its kids are on.
    bool Keep(QPDFObjectHandle element, bool pageGone, int depth) {
        if (depth > MaxDepth || (element.isIndirect() && !FSeen.insert(KeyOf(element)).second))
            return true;
        if (QPDFObjectHandle own = element.getKey("/Pg"); own.isDictionary()) {
            pageGone = IsGone(own);
            if (pageGone)
                element.removeKey("/Pg");
        }
        QPDFObjectHandle kids = element.getKey("/K");
        if (kids.isNull())
            return true;
        std::vector<QPDFObjectHandle> kept;
        const std::vector<QPDFObjectHandle> all =
            kids.isArray() ? kids.getArrayAsVector() : std::vector<QPDFObjectHandle>{kids};
        for (const QPDFObjectHandle& kid : all)
            if (KeepKid(kid, pageGone, depth))
                kept.push_back(kid);
        if (kept.size() == all.size())
            return true;
        element.replaceKey("/K", QPDFObjectHandle::newArray(kept));
        return !kept.empty();
    }

private:
    [[nodiscard]] bool IsGone(const QPDFObjectHandle& page) const {
        return page.isIndirect() && FGone.contains(KeyOf(page));
    }

    /// A kid is the number of marked content, a reference to content or an object, or an element.
    bool KeepKid(QPDFObjectHandle kid, bool pageGone, int depth) {
        if (!kid.isDictionary())
            return !(kid.isInteger() && pageGone);
        if (!IsName(kid.getKey("/Type"), "/MCR") && !IsName(kid.getKey("/Type"), "/OBJR"))
            return Keep(kid, pageGone, depth + 1);
        QPDFObjectHandle page = kid.getKey("/Pg");
        return !(page.isDictionary() ? IsGone(page) : pageGone);
    }

    std::unordered_set<quint64> FGone;
    std::unordered_set<quint64> FSeen;
};

std::vector<qint64> ParentKeys(const std::vector<QPDFObjectHandle>& pages) {
    std::vector<qint64> keys;
    const auto add = [&](QPDFObjectHandle key) {
        if (key.isInteger())
            keys.push_back(key.getIntValue());
    };
    for (const QPDFObjectHandle& page : pages) {
        add(Entry(page, "/StructParents"));
        QPDFObjectHandle annotations = Entry(page, "/Annots");
        if (annotations.isArray())
            for (const QPDFObjectHandle& annotation : annotations.getArrayAsVector())
                add(Entry(annotation, "/StructParent"));
    }
    return keys;
}

} // namespace

void PruneStructure(QPDF& pdf, const std::vector<QPDFObjectHandle>& gone) {
    QPDFObjectHandle root = Entry(pdf.getRoot(), "/StructTreeRoot");
    if (!root.isDictionary())
        return;
    if (!TStructurePruner(gone).Keep(root, false, 0))
        root.removeKey("/K");
    QPDFObjectHandle tree = root.getKey("/ParentTree");
    if (!tree.isDictionary())
        return;
    QPDFNumberTreeObjectHelper parents(tree, pdf);
    for (const qint64 key : ParentKeys(gone))
        parents.remove(key);
}
