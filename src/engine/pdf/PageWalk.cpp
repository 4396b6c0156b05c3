#include "engine/pdf/PageWalk.h"

#include <unordered_set>

namespace {

constexpr size_t MaxDepth = 1000; // levels of a page tree; sane ones have five

class TWalker {
public:
    TPageWalk Walk(const QPDFObjectHandle& root) {
        if (QPDFObjectHandle count = Entry(root, "/Count"); count.isInteger())
            FResult.Promised = count.getIntValue();
        Enter(root, nullptr);
        while (!FStack.empty()) {
            TNode& node = FStack.back();
            if (node.Next >= node.Count) {
                if (node.Claimed != qint64(FResult.Pages.size() - node.FirstPage))
                    FResult.Irregular = true;
                FStack.pop_back();
                continue;
            }
            const QPDFObjectHandle kid = node.Kids.getArrayItem(node.Next++);
            Visit(kid, node.Inherited);
        }
        return std::move(FResult);
    }

private:
    using TInheritedPtr = std::shared_ptr<const TInherited>;

    struct TNode {
        QPDFObjectHandle Kids;
        int Count;
        int Next;
        TInheritedPtr Inherited;
        size_t FirstPage;
        qint64 Claimed; // pages below, by its own count
    };

    /// By value: entering a node moves the stack.
    void Visit(QPDFObjectHandle kid, TInheritedPtr inherited) {
        if (!kid.isDictionary()) {
            FResult.Irregular = true;
            ++FResult.Unreadable;
            return;
        }
        const bool node = kid.hasKey("/Kids");
        if (!IsName(kid.getKey("/Type"), node ? "/Pages" : "/Page")) {
            FResult.Irregular = true;
            if (!node && IsName(kid.getKey("/Type"), "/Pages"))
                return; // a node without kids
        }
        if (node)
            Enter(kid, inherited);
        else
            AddPage(kid, std::move(inherited));
    }

    void Enter(QPDFObjectHandle node, const TInheritedPtr& inherited) {
        QPDFObjectHandle kids = Entry(node, "/Kids");
        const bool again = node.isIndirect() && !FSeen.insert(KeyOf(node)).second;
        if (again || FStack.size() >= MaxDepth)
            FResult.Broken = true;
        if (!kids.isArray() || again || FStack.size() >= MaxDepth) {
            FResult.Irregular = true;
            return;
        }
        QPDFObjectHandle count = node.getKey("/Count");
        FStack.push_back({kids, kids.getArrayNItems(), 0, Inherit(node, inherited), FResult.Pages.size(),
                          count.isInteger() ? count.getIntValue() : -1});
    }

    void AddPage(const QPDFObjectHandle& page, TInheritedPtr inherited) {
        TWalkedPage walked{page, std::move(inherited), false};
        if (!page.isIndirect()) {
            FResult.Irregular = true;
        } else if (!FSeen.insert(KeyOf(page)).second) {
            FResult.Irregular = true;
            walked.Repeated = true;
        }
        FResult.Pages.push_back(std::move(walked));
    }

    static TInheritedPtr Inherit(QPDFObjectHandle& node, const TInheritedPtr& above) {
        TInherited own = above ? *above : TInherited{};
        bool any = false;
        const auto take = [&](const char* key, QPDFObjectHandle& member) {
            if (!node.hasKey(key))
                return;
            member = node.getKey(key);
            any = true;
        };
        take("/Resources", own.Resources);
        take("/MediaBox", own.MediaBox);
        take("/CropBox", own.CropBox);
        take("/Rotate", own.Rotate);
        return any ? std::make_shared<const TInherited>(own) : above;
    }

    TPageWalk FResult;
    std::vector<TNode> FStack;
    std::unordered_set<quint64> FSeen;
};

} // namespace

TPageWalk WalkPages(QPDF& pdf) {
    QPDFObjectHandle root = Entry(pdf.getRoot(), "/Pages");
    // Some catalogs point to a node, or a page, below the tree's root.
    std::unordered_set<quint64> seen;
    bool climbed = false;
    while (Entry(root, "/Parent").isDictionary() && seen.insert(KeyOf(root)).second) {
        root = root.getKey("/Parent");
        climbed = true;
    }
    TPageWalk walk = TWalker().Walk(root);
    walk.Irregular =
        walk.Irregular || climbed || !root.isIndirect() || !IsName(Entry(root, "/Type"), "/Pages");
    return walk;
}

QPDFObjectHandle Attribute(const QPDFObjectHandle& page, const TInherited* inherited, const char* key) {
    QPDFObjectHandle own = Entry(page, key);
    if (!own.isNull() || !inherited)
        return own;
    const QPDFObjectHandle& above = qstrcmp(key, "/Resources") == 0  ? inherited->Resources
                                    : qstrcmp(key, "/MediaBox") == 0 ? inherited->MediaBox
                                    : qstrcmp(key, "/CropBox") == 0  ? inherited->CropBox
                                                                     : inherited->Rotate;
    return above.isInitialized() ? above : own;
}
