#include "engine/pages/PageTree.h"
#include "engine/pages/Pages.h"
#include "engine/pdf/Errors.h"

#include <algorithm>

namespace {

void RequirePage(const TZQPDFPages& pages, int page) {
    if (page < 1 || page > pages.Count())
        throw EPDFError(QStringLiteral("Page %1 does not exist.").arg(page));
}

} // namespace

void TPDFPageTree::SetPage(int page) {
    RequirePage(FPages, page);
    FCurrent = page;
}

TPDFPageAttributes TPDFPageTree::PageAttributes(int index) const {
    return GetPageAttributes(FCurrent + index);
}

TPDFPageAttributes TPDFPageTree::GetPageAttributes(int page) const {
    RequirePage(FPages, page);
    const TPageGeometry& geometry = FPages.getItem(page - 1).Geometry();
    TPDFPageAttributes attributes;
    attributes.size[0] = Single(geometry.Crop.Width() * geometry.UserUnit);
    attributes.size[1] = Single(geometry.Crop.Height() * geometry.UserUnit);
    attributes.Rotation = geometry.Rotation;
    return attributes;
}

void TPDFPageTree::KeepInRange() {
    FCurrent = std::clamp(FCurrent, 1, std::max(FPages.Count(), 1));
}
