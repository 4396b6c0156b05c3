#pragma once
// The outline of a document as a tree of our own: read from the file at first use, written back at save
// where items were added. Items of the file stay the objects they are.
#include "engine/outlines/Objects.h"
#include "engine/pdf/Qpdf.h"
#include "engine/pdf/Types.h"

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

class TZQPDFPages;

/// Where a new item leads; the page is kept as itself, since its number may change before the save.
struct TOutlineTarget {
    quint64 PageId = 0;
    TPDFLinkDestKind Kind = TPDFLinkDestKind::ldXYZ;
};

struct TOutlineNode {
    TOutlineNode* Parent = nullptr; ///< null for the root
    size_t Place = 0;               ///< among the children of the parent
    std::vector<TOutlineNode*> Children;
    QPDFObjectHandle Dict;
    std::optional<TOutlineTarget> Target; ///< of an item that isn't written yet, and of no other
    bool Changed = false;                 ///< items were added to it, or somewhere below it
    std::unique_ptr<TPDFIndirect> Reference;
};

/// The root first, and parents before their children.
using TOutlineNodes = std::vector<std::unique_ptr<TOutlineNode>>;

class TOutlineTree {
public:
    /// The outline of a file by its catalog, which is null for a document without one. One with loops or
    /// items of the wrong type ends there.
    explicit TOutlineTree(const QPDFObjectHandle& catalog);

    /// Items in all.
    [[nodiscard]] int Count() const { return int(FNodes.size()) - 1; }
    /// What the walking operations answer: null where there is no such item, or where `item` is null or no
    /// item of this tree. `item` isn't looked into before that is known.
    [[nodiscard]] TPDFIndirect* First();
    [[nodiscard]] TPDFIndirect* FirstChild(const TPDFIndirect* item);
    [[nodiscard]] TPDFIndirect* Sibling(const TPDFIndirect* item, int step);
    [[nodiscard]] bool Holds(const TPDFIndirect* item) const { return FByReference.contains(item); }

    /// Adds a last item to `parent`, null for the top level. Raises EPDFError if that is no item of the tree.
    TPDFIndirect* Add(const TPDFIndirect* parent, const string& title, TOutlineTarget target);

    /// Makes the added items objects of the document's file (engine/outlines/OutlineWriter.h), whose pages
    /// they are.
    void Write(QPDF& pdf, const TZQPDFPages& pages);
    /// Follows the file after a save has taken items out.
    void Refresh(const QPDFObjectHandle& catalog);
    /// Goes over to the file just written, where the items stand as they stand here.
    void Rebind(const QPDFObjectHandle& catalog);

private:
    using TSuccessor = std::function<TOutlineNode*(const TOutlineNode&)>;

    [[nodiscard]] TOutlineNode& Root() const { return *FNodes.front(); }
    TOutlineNode& Append(TOutlineNode& parent, const QPDFObjectHandle& dict);
    [[nodiscard]] TOutlineNode* Find(const TPDFIndirect* item) const;
    [[nodiscard]] TPDFIndirect* ReferenceTo(TOutlineNode& node);
    [[nodiscard]] TPDFIndirect* ChildOf(const TOutlineNode* parent, size_t place);
    /// Puts `fresh` in the place of this tree; references whose node has no successor there go.
    void GoOverTo(TOutlineTree fresh, const TSuccessor& successor);

    TOutlineNodes FNodes;
    bool FDamaged = false; ///< the file's links are wrong somewhere; what is written replaces them all
    std::unordered_map<const TPDFIndirect*, TOutlineNode*> FByReference;
};
