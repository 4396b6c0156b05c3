#include "engine/outlines/OutlineWriter.h"

#include "engine/pages/PageObject.h"
#include "engine/pages/Pages.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace {

QPDFObjectHandle NewNumber(Double value) {
    constexpr int Decimals = 4;
    return value == std::floor(value) ? QPDFObjectHandle::newInteger(qint64(value))
                                      : QPDFObjectHandle::newReal(value, Decimals);
}

/// An explicit destination (ISO 32000-1, table 151) at the top left corner of the page as it is displayed.
QPDFObjectHandle NewDestination(const QPDFObjectHandle& page, const TPageGeometry& geometry,
                                TPDFLinkDestKind kind) {
    const TPageBox corner = geometry.ToUserSpace(0, 0, 0, 0);
    const TPageBox& box = geometry.Crop;
    const auto array = [&](const char* name, const std::vector<QPDFObjectHandle>& numbers = {}) {
        std::vector<QPDFObjectHandle> items{page, QPDFObjectHandle::newName(name)};
        items.insert(items.end(), numbers.begin(), numbers.end());
        return QPDFObjectHandle::newArray(items);
    };
    switch (kind) {
    case TPDFLinkDestKind::ldXYZ:
        return array("/XYZ", {NewNumber(corner.x0), NewNumber(corner.y0), QPDFObjectHandle::newNull()});
    case TPDFLinkDestKind::ldFitH:
        return array("/FitH", {NewNumber(corner.y0)});
    case TPDFLinkDestKind::ldFitV:
        return array("/FitV", {NewNumber(corner.x0)});
    case TPDFLinkDestKind::ldFitR:
        return array("/FitR", {NewNumber(box.x0), NewNumber(box.y0), NewNumber(box.x1), NewNumber(box.y1)});
    case TPDFLinkDestKind::ldFitB:
        return array("/FitB");
    case TPDFLinkDestKind::ldFitBH:
        return array("/FitBH", {NewNumber(corner.y0)});
    case TPDFLinkDestKind::ldFitBV:
        return array("/FitBV", {NewNumber(corner.x0)});
    case TPDFLinkDestKind::ldFit:
        break;
    }
    return array("/Fit");
}

void Set(QPDFObjectHandle dict, const char* key, const TOutlineNode* to) {
    if (to)
        dict.replaceKey(key, to->Dict);
    else
        dict.removeKey(key);
}

qint64 CountOf(const TOutlineNode& node) {
    QPDFObjectHandle count = Entry(node.Dict, "/Count");
    return count.isInteger() ? count.getIntValue() : 0;
}

} // namespace

TOutlineWriter::TOutlineWriter(QPDF& pdf, const TZQPDFPages& pages, const TOutlineNodes& nodes)
    : FPdf(pdf), FNodes(nodes) {
    for (const auto& page : pages.Items())
        FPages.emplace(page->Id(), page.get());
}

void TOutlineWriter::Write() {
    LeaveOut();
    if (FNodes.front()->Children.empty())
        return;
    MakeObjects();
    Link();
    Count();
    for (const auto& node : FNodes)
        node->Changed = false;
}

/// Children come behind their parents, so that from the back a heading is met when it has lost them.
void TOutlineWriter::LeaveOut() {
    std::unordered_set<const TOutlineNode*> gone;
    for (auto item = FNodes.rbegin(); item != FNodes.rend(); ++item) {
        TOutlineNode& node = **item;
        if (node.Changed)
            std::erase_if(node.Children, [&](const TOutlineNode* child) { return gone.contains(child); });
        if (node.Target && !FPages.contains(node.Target->PageId) && node.Children.empty())
            gone.insert(&node);
    }
}

void TOutlineWriter::MakeObjects() {
    MakeRoot();
    for (const auto& parent : FNodes) {
        if (!parent->Changed)
            continue;
        for (TOutlineNode* node : parent->Children) {
            if (!node->Dict.isIndirect())
                node->Dict = FPdf.makeIndirectObject(node->Dict);
            if (!node->Target)
                continue;
            if (const QPDFObjectHandle dest = DestinationOf(*node->Target); dest.isInitialized())
                node->Dict.replaceKey("/Dest", dest);
            node->Target.reset();
        }
    }
}

void TOutlineWriter::MakeRoot() {
    QPDFObjectHandle& root = FNodes.front()->Dict;
    if (!root.isDictionary()) {
        root = QPDFObjectHandle::newDictionary();
        root.replaceKey("/Type", QPDFObjectHandle::newName("/Outlines"));
    }
    if (!root.isIndirect())
        root = FPdf.makeIndirectObject(root);
    FPdf.getRoot().replaceKey("/Outlines", root);
}

QPDFObjectHandle TOutlineWriter::DestinationOf(const TOutlineTarget& target) const {
    const auto page = FPages.find(target.PageId);
    if (page == FPages.end())
        return {};
    return NewDestination(page->second->Object().Dict, page->second->Geometry(), target.Kind);
}

void TOutlineWriter::Link() {
    for (const auto& parent : FNodes) {
        if (!parent->Changed)
            continue;
        const auto& items = parent->Children;
        Set(parent->Dict, "/First", items.empty() ? nullptr : items.front());
        Set(parent->Dict, "/Last", items.empty() ? nullptr : items.back());
        for (size_t i = 0; i < items.size(); ++i) {
            Set(items[i]->Dict, "/Parent", parent.get());
            Set(items[i]->Dict, "/Prev", i == 0 ? nullptr : items[i - 1]);
            Set(items[i]->Dict, "/Next", i + 1 == items.size() ? nullptr : items[i + 1]);
        }
    }
}

/// The number of items shown below, negative where the item is closed. An item that gets its first ones is
/// open.
void TOutlineWriter::Count() {
    std::unordered_map<const TOutlineNode*, qint64> shown;
    for (auto item = FNodes.rbegin(); item != FNodes.rend(); ++item) {
        const TOutlineNode& node = **item;
        qint64& count = shown[&node];
        for (const TOutlineNode* child : node.Children)
            count += 1 + (CountOf(*child) > 0 ? shown[child] : 0);
        if (!node.Changed)
            continue;
        const bool closed = node.Parent != nullptr && CountOf(node) < 0;
        QPDFObjectHandle dict = node.Dict;
        if (count > 0)
            dict.replaceKey("/Count", QPDFObjectHandle::newInteger(closed ? -count : count));
        else
            dict.removeKey("/Count");
    }
}
