#include "engine/pdf/FieldTree.h"

#include <unordered_set>

namespace {

constexpr int MaxDepth = 100; // levels of fields, the limit of libqpdf itself

class TFieldPruner {
public:
    explicit TFieldPruner(const TWidgetTest& gone) : FGone(gone) {}

    std::vector<QPDFObjectHandle> Prune(QPDFObjectHandle fields, int depth) {
        std::vector<QPDFObjectHandle> kept;
        if (!fields.isArray())
            return kept;
        for (const QPDFObjectHandle& field : fields.getArrayAsVector())
            if (Keep(field, depth))
                kept.push_back(field);
        return kept;
    }

private:
    bool Keep(QPDFObjectHandle field, int depth) {
        if (!field.isDictionary() || depth > MaxDepth)
            return true;
        if (field.isIndirect() && !FSeen.insert(KeyOf(field)).second)
            return true;
        QPDFObjectHandle kids = field.getKey("/Kids");
        if (!kids.isArray() || kids.getArrayNItems() == 0)
            return !FGone(field);
        std::vector<QPDFObjectHandle> kept = Prune(kids, depth + 1);
        if (int(kept.size()) == kids.getArrayNItems())
            return true;
        field.replaceKey("/Kids", QPDFObjectHandle::newArray(kept));
        return !kept.empty();
    }

    const TWidgetTest& FGone;
    std::unordered_set<quint64> FSeen;
};

} // namespace

std::vector<QPDFObjectHandle> PruneFields(const QPDFObjectHandle& fields, const TWidgetTest& gone) {
    return TFieldPruner(gone).Prune(fields, 0);
}
