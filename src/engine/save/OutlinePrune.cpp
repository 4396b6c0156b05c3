#include "engine/save/OutlinePrune.h"

#include <unordered_set>

namespace {

constexpr int MaxDepth = 200; // deeper items are left as they are

class TOutlinePruner {
public:
    explicit TOutlinePruner(const std::function<bool(const QPDFObjectHandle&)>& leadsToGone)
        : FLeadsToGone(leadsToGone) {}

    /// Prunes below `parent` and gives the number of items that are shown below it when it is open.
    int Prune(QPDFObjectHandle parent, int depth) {
        std::vector<QPDFObjectHandle> kept;
        int shown = 0;
        for (QPDFObjectHandle item = parent.getKey("/First");
             item.isDictionary() && item.isIndirect() && FSeen.insert(KeyOf(item)).second;
             item = item.getKey("/Next")) {
            const int below = item.hasKey("/First") && depth < MaxDepth ? Prune(item, depth + 1) : 0;
            if (FLeadsToGone(item)) {
                if (!item.hasKey("/First"))
                    continue;
                item.removeKey("/Dest");
                item.removeKey("/A");
            }
            kept.push_back(item);
            shown += 1 + (IsOpen(item) ? below : 0);
        }
        Link(parent, kept);
        SetCount(parent, shown);
        return shown;
    }

private:
    static bool IsOpen(QPDFObjectHandle item) {
        QPDFObjectHandle count = item.getKey("/Count");
        return count.isInteger() && count.getIntValue() > 0;
    }

    static void Link(QPDFObjectHandle parent, std::vector<QPDFObjectHandle>& items) {
        const auto set = [](QPDFObjectHandle& item, const char* key, QPDFObjectHandle* to) {
            if (to)
                item.replaceKey(key, *to);
            else
                item.removeKey(key);
        };
        set(parent, "/First", items.empty() ? nullptr : &items.front());
        set(parent, "/Last", items.empty() ? nullptr : &items.back());
        for (size_t i = 0; i < items.size(); ++i) {
            set(items[i], "/Prev", i == 0 ? nullptr : &items[i - 1]);
            set(items[i], "/Next", i + 1 == items.size() ? nullptr : &items[i + 1]);
        }
    }

    /// A closed item keeps a negative count.
    static void SetCount(QPDFObjectHandle parent, int shown) {
        QPDFObjectHandle count = parent.getKey("/Count");
        const bool closed = count.isInteger() && count.getIntValue() < 0;
        if (shown == 0)
            parent.removeKey("/Count");
        else if (count.isInteger())
            parent.replaceKey("/Count", QPDFObjectHandle::newInteger(closed ? -shown : shown));
    }

    const std::function<bool(const QPDFObjectHandle&)>& FLeadsToGone;
    std::unordered_set<quint64> FSeen;
};

} // namespace

void PruneOutlines(QPDF& pdf, const std::function<bool(const QPDFObjectHandle&)>& leadsToGone) {
    QPDFObjectHandle outlines = Entry(pdf.getRoot(), "/Outlines");
    if (outlines.isDictionary() && outlines.hasKey("/First"))
        TOutlinePruner(leadsToGone).Prune(outlines, 0);
}
