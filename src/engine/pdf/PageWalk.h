#pragma once
// The pages of a file in their order, found by one walk through its page tree that survives loops, missing
// types and nonsense.
#include "engine/pdf/Qpdf.h"

#include <memory>
#include <vector>

/// What a page takes from the nodes above it where it has none of its own (ISO 32000-1, 7.7.3.4).
struct TInherited {
    QPDFObjectHandle Resources;
    QPDFObjectHandle MediaBox;
    QPDFObjectHandle CropBox;
    QPDFObjectHandle Rotate;
};

struct TWalkedPage {
    QPDFObjectHandle Dict;
    std::shared_ptr<const TInherited> Inherited; // null where the nodes above give nothing
    bool Repeated = false;                       // listed before; to become a page of its own
};

struct TPageWalk {
    std::vector<TWalkedPage> Pages;
    /// The tree isn't as the standard wants it, and a save makes it anew.
    bool Irregular = false;
    /// The pages that its root claims; 0 where it claims none.
    qint64 Promised = 0;
    /// Kids that are no dictionaries: what stood there is lost.
    qint64 Unreadable = 0;
    /// It has loops or is nested beyond reason: not for code that walks it by recursion.
    bool Broken = false;
};

[[nodiscard]] TPageWalk WalkPages(QPDF& pdf);

/// A page's attribute, inherited where the page has none; null where nobody has.
[[nodiscard]] QPDFObjectHandle Attribute(const QPDFObjectHandle& page, const TInherited* inherited,
                                         const char* key);
