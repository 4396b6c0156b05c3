#pragma once
// Groups: several layers that go on pages together, as one form XObject that isn't part of the page's own
// text: stamps with page numbers, headers and footers, watermarks. They are marked as pagination artifacts
// (ISO 32000-1, 14.8.2.2), so that reading aloud and text in reading order pass them by.
#include "engine/layers/Layer.h"

#include <memory>

class TZQPDFDocument;

enum class TZQPDFXObjectGroupType : quint8 { Plain = 0, Watermark = 1, BatesStamp = 2 };

class TZQPDFXObjectGroup {
public:
    TZQPDFXObjectGroup(TZQPDFDocument& document, TZQPDFXObjectGroupType type);
    virtual ~TZQPDFXObjectGroup();

    [[nodiscard]] TZQPDFXObjectGroupType Type() const { return FType; }
    /// The group owns the layer from here on. `flags` is always 0.
    virtual void Add(TZQCustomLayer* layer, int flags);
    [[nodiscard]] int Count() const { return int(FLayers.size()); }
    [[nodiscard]] TZQCustomLayer& GetItem(int index) const { return *FLayers.at(size_t(index)); }

    /// Whether it lies under what the page showed before.
    [[nodiscard]] bool IsBehind() const { return FBehind; }
    void SetBehind(bool behind) { FBehind = behind; }

    /// The pages that updateWatermark puts it on; empty for all.
    [[nodiscard]] const string& PageRange() const { return FPageRange; }
    void SetPageRange(const string& range) { FPageRange = range; }

    /// Draws the layers on a page of that size.
    virtual void Draw(TDrawing& to);
    void DropLayout();
    /// The subtype of the artifact, as "/Header"; empty if none fits.
    [[nodiscard]] virtual const char* ArtifactSubtype() const;

private:
    TZQPDFXObjectGroupType FType;
    bool FBehind = false;
    string FPageRange;
    std::vector<std::unique_ptr<TZQCustomLayer>> FLayers;
};

/// The groups of a document, which it owns.
class TZQPDFXObjectsCache {
public:
    /// Takes the group.
    void Add(TZQPDFXObjectGroup* group) { FGroups.emplace_back(group); }
    [[nodiscard]] int Count() const { return int(FGroups.size()); }
    [[nodiscard]] TZQPDFXObjectGroup& GetItem(int index) const { return *FGroups.at(size_t(index)); }

private:
    std::vector<std::unique_ptr<TZQPDFXObjectGroup>> FGroups;
};

/// The place of a stamp among the layers of a page. It shows the group's contents to whoever lists the
/// layers and draws nothing itself: the page draws the group.
class TZQPDFXObjectBatesStampRef : public TZQCustomLayer {
    Q_OBJECT
public:
    TZQPDFXObjectBatesStampRef(TZQLayerCollection* collection, const string& name, TZQPDFXObjectGroup* group);
    [[nodiscard]] TZQPDFXObjectGroup* Group() const { return FGroup; }

private:
    TZQPDFXObjectGroup* FGroup;
};
