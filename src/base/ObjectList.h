#pragma once
// Owning lists of objects: what leaves a list is freed, and a list can be filled without knowing its type.
#include <QObject>

#include <memory>
#include <vector>

/// What code that works over the run-time tables sees of an owning list.
class TObjectListBase : public QObject {
    Q_OBJECT
public:
    [[nodiscard]] int Count() const { return int(FItems.size()); }
    [[nodiscard]] QObject* ItemAt(int index) const { return FItems.at(size_t(index)).get(); }
    /// The class that every item is, or is derived from.
    [[nodiscard]] virtual const QMetaObject& ItemClass() const = 0;
    /// Takes `item`, which must be an ItemClass().
    void Append(std::unique_ptr<QObject> item) { FItems.push_back(std::move(item)); }
    void Delete(int index) { FItems.erase(FItems.begin() + index); }
    void Clear() { FItems.clear(); }

private:
    std::vector<std::unique_ptr<QObject>> FItems;
};

template <class T> class TObjectList : public TObjectListBase {
public:
    [[nodiscard]] const QMetaObject& ItemClass() const override { return T::staticMetaObject; }
    [[nodiscard]] T* operator[](int index) const { return static_cast<T*>(ItemAt(index)); }
    template <class TItem> TItem* Add(std::unique_ptr<TItem> item) {
        static_assert(std::is_base_of_v<T, TItem>);
        TItem* added = item.get();
        Append(std::move(item));
        return added;
    }
};
