#pragma once
// What was put on one page, and what stands for it in the page's dictionary.
#include "engine/layers/Layer.h"
#include "engine/layers/XObjectGroup.h"
#include "engine/pdf/Qpdf.h"

struct TPlacedGroup {
    TZQPDFXObjectGroup* Group; ///< the document's cache owns it
    TPageGeometry Geometry;
};

struct TPlacedContent {
    explicit TPlacedContent(TZQPDFPage& page) : Layers(page) {}

    TZQLayerCollection Layers;
    std::vector<TPlacedGroup> Groups;
    bool GroupsChanged = false;

    /// The page's entries without ours, taken when it was first written; what changes later is written
    /// from there. Not initialised before.
    QPDFObjectHandle Contents;
    QPDFObjectHandle Resources;
    /// Annotations of ours in the page's array.
    std::vector<QPDFObjectHandle> Annotations;

    [[nodiscard]] bool IsPending() const { return GroupsChanged || Layers.IsChanged(); }

    /// The document went over to a file that holds all this: it isn't ours to write any more.
    void Freeze() {
        Layers.Freeze();
        Groups.clear();
        GroupsChanged = false;
        Contents = Resources = QPDFObjectHandle();
        Annotations.clear();
    }
};
