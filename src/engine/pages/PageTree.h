#pragma once
// The document's current page, and page attributes by number.
#include "base/Text.h"

class TZQPDFPages;

/// What the file says of a page, untouched by its rotation.
struct TPDFPageAttributes {
    Single size[2] = {0, 0}; ///< width and height of the unrotated crop box in points
    int Rotation = 0;        ///< 0, 90, 180 or 270
};

/// Pages counted from 1.
class TPDFPageTree {
public:
    explicit TPDFPageTree(const TZQPDFPages& pages) : FPages(pages) {}

    [[nodiscard]] int CurrentPage() const { return FCurrent; }
    /// Raises EPDFError if there is no such page.
    void SetPage(int page);
    /// Attributes of the current page; `index` counts from it and is always 0.
    [[nodiscard]] TPDFPageAttributes PageAttributes(int index) const;
    [[nodiscard]] TPDFPageAttributes GetPageAttributes(int page) const;

    /// Brings the current page back into the document after pages have gone.
    void KeepInRange();

private:
    const TZQPDFPages& FPages;
    int FCurrent = 1;
};
