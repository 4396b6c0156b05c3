#pragma once
// TIntList: a list of signed 32-bit integers, such as line numbers, lengths or columns.
#include "base/Text.h"

#include <vector>

class TIntList {
public:
    TIntList() = default;
    TIntList(std::initializer_list<Integer> values) : FItems(values) {}

    /// Returns the index of the new last item.
    int Add(Integer value);
    /// `index` is 0 to Count, as everywhere below 0 to Count - 1; others raise Exception.
    void Insert(int index, Integer value);
    void Insert(int index, const std::vector<Integer>& values);
    void Delete(int index, int count = 1);
    void Clear() { FItems.clear(); }
    void Reserve(int count) { FItems.reserve(size_t(count)); }

    [[nodiscard]] int Count() const { return int(FItems.size()); }
    [[nodiscard]] Integer GetInteger(int index) const;
    void SetInteger(int index, Integer value);
    [[nodiscard]] Integer operator[](int index) const { return GetInteger(index); }

    /// The index of `value`, or -1. A binary search on purpose: the lists that are searched (wrapped rows)
    /// are built in ascending order. In a list that isn't ascending it may miss a value.
    [[nodiscard]] int IndexOf(Integer value) const;

private:
    static void CheckIndex(int index, int end);

    std::vector<Integer> FItems;
};
