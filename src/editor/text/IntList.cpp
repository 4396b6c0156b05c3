#include "editor/text/IntList.h"

#include "base/Exceptions.h"

#include <algorithm>

void TIntList::CheckIndex(int index, int end) {
    if (index < 0 || index >= end)
        throw Exception(string("List index out of bounds (%1)").arg(index));
}

int TIntList::Add(Integer value) {
    FItems.push_back(value);
    return Count() - 1;
}

void TIntList::Insert(int index, Integer value) {
    CheckIndex(index, Count() + 1);
    FItems.insert(FItems.begin() + index, value);
}

void TIntList::Insert(int index, const std::vector<Integer>& values) {
    CheckIndex(index, Count() + 1);
    FItems.insert(FItems.begin() + index, values.begin(), values.end());
}

void TIntList::Delete(int index, int count) {
    CheckIndex(index, Count());
    FItems.erase(FItems.begin() + index, FItems.begin() + std::min(index + count, Count()));
}

Integer TIntList::GetInteger(int index) const {
    CheckIndex(index, Count());
    return FItems[size_t(index)];
}

void TIntList::SetInteger(int index, Integer value) {
    CheckIndex(index, Count());
    FItems[size_t(index)] = value;
}

int TIntList::IndexOf(Integer value) const {
    const auto at = std::lower_bound(FItems.begin(), FItems.end(), value);
    return at != FItems.end() && *at == value ? int(at - FItems.begin()) : -1;
}
