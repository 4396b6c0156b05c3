// The outline operations of a document.
#include "engine/core/DocumentCore.h"
#include "engine/document/Document.h"

namespace {

TOutlineTree& TreeOf(TDocumentCore& core) {
    if (!core.Outlines)
        core.Outlines = std::make_unique<TOutlineTree>(core.Root());
    return *core.Outlines;
}

} // namespace

TPDFIndirect* TZQPDFDocument::FirstOutline() {
    return TreeOf(Core()).First();
}

TPDFIndirect* TZQPDFDocument::FirstChildOutline(const TPDFIndirect* item) {
    return TreeOf(Core()).FirstChild(item);
}

TPDFIndirect* TZQPDFDocument::NextOutline(const TPDFIndirect* item) {
    return TreeOf(Core()).Sibling(item, +1);
}

TPDFIndirect* TZQPDFDocument::PrevOutline(const TPDFIndirect* item) {
    return TreeOf(Core()).Sibling(item, -1);
}

int TZQPDFDocument::OutlineCount() {
    return TreeOf(Core()).Count();
}

TPDFIndirect* TZQPDFDocument::NewOutline(TPDFIndirect* parent, const NarrowString& text, int page,
                                         TPDFLinkDestKind dest) {
    if (page < 1 || page > GetPageCount())
        throw EPDFError(QStringLiteral("Page %1 does not exist.").arg(page));
    TPDFIndirect* item =
        TreeOf(Core()).Add(parent, Widen(text), {.PageId = Pages().getItem(page - 1).Id(), .Kind = dest});
    Changed();
    return item;
}

bool TZQPDFDocument::OwnsReference(const TPDFIndirect* reference) const {
    return Core().Outlines && Core().Outlines->Holds(reference);
}
