// The TLineProp side of the line store.
#include "editor/text/LineStore.h"
#include "editor/text/MemoSettings.h"

TLineProp* TAdvMemoStrings::GetLineProp(int index) const {
    TLineObject* object = Holds(index) ? Slot(index) : nullptr;
    return object ? object->AsLineProp() : nullptr;
}

std::unique_ptr<TLineProp> TAdvMemoStrings::TakeLineProp(int index) {
    TLineProp* prop = GetLineProp(index);
    if (!prop)
        return nullptr;
    SetSlot(index, nullptr);
    const size_t at = prop->FListIndex;
    std::swap(FLinesProp[at], FLinesProp.back());
    FLinesProp[at]->FListIndex = at;
    std::unique_ptr<TLineProp> taken = std::move(FLinesProp.back());
    FLinesProp.pop_back();
    return taken;
}

void TAdvMemoStrings::SetLineProp(int index, std::unique_ptr<TLineProp> prop) {
    if (!Holds(index))
        return;
    const auto old = TakeLineProp(index);
    SetSlot(index, prop.get());
    if (!prop)
        return;
    prop->FListIndex = FLinesProp.size();
    FLinesProp.push_back(std::move(prop));
}

TLineProp& TAdvMemoStrings::CreateLineProp(int index) {
    CheckIndex(index, Count());
    auto prop = std::make_unique<TLineProp>();
    prop->FObject = GetObject(index);
    if (Active() && Active()->StoreSettings().FCodeFolding && index > 0)
        PlaceFolds(index, *prop);
    SetLineProp(index, std::move(prop));
    return *GetLineProp(index);
}

void TAdvMemoStrings::PlaceFolds(int index, TLineProp& prop) const {
    const TLineProp* above = GetLineProp(index - 1);
    const TLineProp* below = GetLineProp(index + 1);
    const bool underParent = above != nullptr && above->FHasParent && above->FLastChildOfParents == 0;
    const bool underFold = above != nullptr && above->FHasChildren && above->FExpanded;
    prop.FHasParent = underParent || underFold || (below != nullptr && below->FHasParent);
}

TLineProp& TAdvMemoStrings::NeedLineProp(int index) {
    TLineProp* prop = GetLineProp(index);
    return prop ? *prop : CreateLineProp(index);
}

void TAdvMemoStrings::DestroyLineProps() {
    for (int i = 0; i < Count(); ++i) {
        if (GetLineProp(i))
            SetSlot(i, nullptr);
    }
    FLinesProp.clear();
}

bool TAdvMemoStrings::IsContinuation(int index) const {
    const TLineProp* prop = GetLineProp(index);
    return prop != nullptr && prop->Wrapped;
}

TLineModifiedState TAdvMemoStrings::ModifiedState(int index) const {
    const TLineProp* prop = GetLineProp(index);
    return prop ? prop->Modified : lmUnmodified;
}

bool TAdvMemoStrings::SetModifiedState(int index, TLineModifiedState state) {
    return Holds(index) && std::exchange(NeedLineProp(index).Modified, state) != state;
}
