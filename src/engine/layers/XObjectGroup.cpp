#include "engine/layers/XObjectGroup.h"

#include "engine/layers/Drawing.h"

TZQPDFXObjectGroup::TZQPDFXObjectGroup(TZQPDFDocument& /*document*/, TZQPDFXObjectGroupType type)
    : FType(type) {}
TZQPDFXObjectGroup::~TZQPDFXObjectGroup() = default;

void TZQPDFXObjectGroup::Add(TZQCustomLayer* layer, int /*flags*/) {
    FLayers.emplace_back(layer);
}

void TZQPDFXObjectGroup::Draw(TDrawing& to) {
    for (const auto& layer : FLayers)
        layer->Draw(to);
}

void TZQPDFXObjectGroup::DropLayout() {
    for (const auto& layer : FLayers)
        layer->DropLayout();
}

const char* TZQPDFXObjectGroup::ArtifactSubtype() const {
    return FType == TZQPDFXObjectGroupType::Watermark ? "/Watermark" : "";
}

TZQPDFXObjectBatesStampRef::TZQPDFXObjectBatesStampRef(TZQLayerCollection* collection, const string& name,
                                                       TZQPDFXObjectGroup* group)
    : TZQCustomLayer(collection), FGroup(group) {
    FName = name;
}
