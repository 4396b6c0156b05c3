#include "engine/outlines/OutlineTree.h"

#include "engine/outlines/ObjectHandle.h"
#include "engine/outlines/OutlineWriter.h"
#include "engine/pdf/Errors.h"

#include <unordered_set>

TOutlineTree::TOutlineTree(const QPDFObjectHandle& catalog) {
    FNodes.push_back(std::make_unique<TOutlineNode>());
    Root().Dict = Entry(catalog, "/Outlines");
    std::unordered_set<quint64> seen;
    std::vector<TOutlineNode*> waiting{&Root()};
    while (!waiting.empty()) {
        TOutlineNode* parent = waiting.back();
        waiting.pop_back();
        QPDFObjectHandle item = Entry(parent->Dict, "/First");
        for (; item.isDictionary() && (!item.isIndirect() || seen.insert(KeyOf(item)).second);
             item = item.getKey("/Next"))
            waiting.push_back(&Append(*parent, item));
        FDamaged = FDamaged || !item.isNull();
    }
}

TOutlineNode& TOutlineTree::Append(TOutlineNode& parent, const QPDFObjectHandle& dict) {
    TOutlineNode& node = *FNodes.emplace_back(std::make_unique<TOutlineNode>());
    node.Parent = &parent;
    node.Place = parent.Children.size();
    node.Dict = dict;
    parent.Children.push_back(&node);
    return node;
}

TOutlineNode* TOutlineTree::Find(const TPDFIndirect* item) const {
    const auto found = FByReference.find(item);
    return found == FByReference.end() ? nullptr : found->second;
}

TPDFIndirect* TOutlineTree::ReferenceTo(TOutlineNode& node) {
    if (!node.Reference) {
        node.Reference = std::make_unique<TPDFIndirect>();
        node.Reference->SetObj(NewObject(node.Dict));
        FByReference.emplace(node.Reference.get(), &node);
    }
    return node.Reference.get();
}

TPDFIndirect* TOutlineTree::ChildOf(const TOutlineNode* parent, size_t place) {
    return parent && place < parent->Children.size() ? ReferenceTo(*parent->Children[place]) : nullptr;
}

TPDFIndirect* TOutlineTree::First() {
    return ChildOf(&Root(), 0);
}

TPDFIndirect* TOutlineTree::FirstChild(const TPDFIndirect* item) {
    return ChildOf(Find(item), 0);
}

TPDFIndirect* TOutlineTree::Sibling(const TPDFIndirect* item, int step) {
    const TOutlineNode* node = Find(item);
    return node ? ChildOf(node->Parent, node->Place + size_t(step)) : nullptr; // before the first: wraps
}

TPDFIndirect* TOutlineTree::Add(const TPDFIndirect* parent, const string& title, TOutlineTarget target) {
    TOutlineNode* above = parent ? Find(parent) : &Root();
    if (!above)
        throw EPDFError(QStringLiteral("The outline item is none of this document's."));
    QPDFObjectHandle dict = QPDFObjectHandle::newDictionary();
    dict.replaceKey("/Title", NewText(title));
    TOutlineNode& node = Append(*above, dict);
    node.Target = target;
    for (; above && !above->Changed; above = above->Parent)
        above->Changed = true;
    if (std::exchange(FDamaged, false))
        for (const auto& any : FNodes)
            any->Changed = true;
    return ReferenceTo(node);
}

void TOutlineTree::Write(QPDF& pdf, const TZQPDFPages& pages) {
    if (Root().Changed)
        TOutlineWriter(pdf, pages, FNodes).Write();
}

void TOutlineTree::GoOverTo(TOutlineTree fresh, const TSuccessor& successor) {
    for (const auto& node : FNodes) {
        TOutlineNode* next = node->Reference ? successor(*node) : nullptr;
        if (!next)
            continue;
        next->Reference = std::move(node->Reference);
        next->Reference->SetObj(NewObject(next->Dict));
        fresh.FByReference.emplace(next->Reference.get(), next);
    }
    *this = std::move(fresh);
}

void TOutlineTree::Refresh(const QPDFObjectHandle& catalog) {
    TOutlineTree fresh(catalog);
    std::unordered_map<quint64, TOutlineNode*> byObject;
    for (const auto& node : fresh.FNodes)
        if (node->Dict.isIndirect())
            byObject.emplace(KeyOf(node->Dict), node.get());
    GoOverTo(std::move(fresh), [&](const TOutlineNode& node) {
        const auto found = byObject.find(KeyOf(node.Dict));
        return found == byObject.end() ? nullptr : found->second;
    });
}

void TOutlineTree::Rebind(const QPDFObjectHandle& catalog) {
    TOutlineTree fresh(catalog);
    std::unordered_map<const TOutlineNode*, TOutlineNode*> successors{{&Root(), &fresh.Root()}};
    for (const auto& node : FNodes) { // parents come before their children
        TOutlineNode* next = successors[node.get()];
        if (!next || next->Children.size() != node->Children.size())
            continue;
        for (size_t i = 0; i < node->Children.size(); ++i)
            successors[node->Children[i]] = next->Children[i];
    }
    GoOverTo(std::move(fresh), [&](const TOutlineNode& node) { return successors[&node]; });
}
