#include "engine/pages/SharedResources.h"

#include "engine/decode/DecodeBudget.h"

#include <qpdf/QPDFPageObjectHelper.hh>

#include <unordered_set>

namespace {

using TKeys = std::unordered_set<quint64>;

/// Keys of the dictionaries through which a page can share resources.
void AddKeys(std::vector<quint64>& keys, const QPDFObjectHandle& resources) {
    if (resources.isIndirect())
        keys.push_back(KeyOf(resources));
    for (const char* kind : {"/XObject", "/Font", "/Pattern"})
        if (const QPDFObjectHandle dict = Entry(resources, kind); dict.isIndirect())
            keys.push_back(KeyOf(dict));
}

/// What is inherited is shared even where it isn't an object of its own: the node stands for it.
std::vector<quint64> KeysOf(const QPDFObjectHandle& page, const TInherited* inherited) {
    std::vector<quint64> keys;
    AddKeys(keys, Attribute(page, inherited, "/Resources"));
    if (inherited != nullptr && Entry(page, "/Resources").isNull())
        keys.push_back(quint64(reinterpret_cast<quintptr>(inherited)) | 1ULL << 63);
    return keys;
}

} // namespace

std::vector<bool> SharesResources(const TPDFSource& source, const std::vector<TPageObject*>& pages) {
    TKeys taken;
    for (const TPageObject* page : pages)
        taken.insert(KeyOf(page->CopiedFrom));
    TKeys used;
    for (const TWalkedPage& other : source.Walk.Pages)
        if (!taken.contains(KeyOf(other.Dict)))
            for (const quint64 key : KeysOf(other.Dict, other.Inherited.get()))
                used.insert(key);
    std::vector<bool> shares;
    for (const TPageObject* page : pages) {
        const auto keys = KeysOf(page->Dict, page->Inherited.get());
        shares.push_back(
            std::any_of(keys.begin(), keys.end(), [&](quint64 key) { return used.contains(key); }));
    }
    return shares;
}

void DropUnusedResources(const QPDFObjectHandle& page) {
    constexpr qint64 MaxStage = 64 << 20; // the library holds contents several times over
    TDecodeBudget budget(MaxStage, 4 * MaxStage);
    const TDecodeScope scope(budget);
    QPDFPageObjectHelper(page).removeUnreferencedResources();
}
