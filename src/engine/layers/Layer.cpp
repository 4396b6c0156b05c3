#include "engine/layers/Layer.h"

#include "engine/pages/Pages.h"
#include "engine/pdf/Numbers.h"

#include <algorithm>

TZQCustomLayer::TZQCustomLayer(TZQLayerCollection* collection)
    : TComponent(nullptr), FCollection(collection) {
    if (FCollection == nullptr)
        return;
    FGeometry = FCollection->Page().Geometry();
    FCollection->Add(*this);
}

TZQCustomLayer::~TZQCustomLayer() {
    if (FCollection != nullptr)
        FCollection->Remove(*this);
}

void TZQCustomLayer::MoveTo(Single x, Single y) {
    RequireLength("X", Double(x));
    RequireLength("Y", Double(y));
    FX = x;
    FY = y;
    if (FCollection != nullptr)
        FGeometry = FCollection->Page().Geometry();
    Changed();
}

void TZQCustomLayer::SetBounds(const TGPRectF& bounds) {
    SetWidth(bounds.Width);
    SetHeight(bounds.Height);
    MoveTo(bounds.X, bounds.Y);
}

void TZQCustomLayer::SetWidth(Single width) {
    RequireLength("Width", Double(width));
    FWidth = width;
    Changed();
}

void TZQCustomLayer::SetHeight(Single height) {
    RequireLength("Height", Double(height));
    FHeight = height;
    Changed();
}

void TZQCustomLayer::Changed() {
    if (FCollection != nullptr)
        FCollection->FChanged = true;
}

TZQLayerCollection::~TZQLayerCollection() {
    while (!FItems.empty()) {
        TZQCustomLayer* last = FItems.back();
        last->FCollection = nullptr;
        FItems.pop_back();
        delete last;
    }
}

void TZQLayerCollection::Add(TZQCustomLayer& layer) {
    FItems.push_back(&layer);
    FChanged = true;
}

void TZQLayerCollection::Remove(TZQCustomLayer& layer) {
    const auto place = std::find(FItems.begin(), FItems.end(), &layer);
    if (place - FItems.begin() < FFrozen)
        --FFrozen;
    FItems.erase(place);
    FChanged = true;
}

void TZQLayerCollection::Freeze() {
    FFrozen = Count();
    FChanged = false;
}
