#include "timers/Lists.h"

#include <QCoreApplication>

#include <algorithm>

int TumUniqueList::IndexOf(const QObject* item) const {
    const auto found = std::find(FItems.begin(), FItems.end(), item);
    return found == FItems.end() ? -1 : int(found - FItems.begin());
}

void TumUniqueList::PutAt(int index, QObject* item) {
    FItems.insert(FItems.begin() + index, item);
    FCount.store(int(FItems.size()), std::memory_order_relaxed);
    Notify(item, TChange::Added);
}

QObject* TumUniqueList::TakeAt(int index) {
    QObject* item = FItems.at(size_t(index));
    FItems.erase(FItems.begin() + index);
    FCount.store(int(FItems.size()), std::memory_order_relaxed);
    return item;
}

int TumUniqueList::Add(QObject* item) {
    if (!item || IndexOf(item) >= 0)
        return -1;
    const int index = Count();
    PutAt(index, item);
    return index;
}

void TumUniqueList::Insert(int index, QObject* item) {
    if (item && IndexOf(item) < 0)
        PutAt(std::clamp(index, 0, Count()), item);
}

void TumUniqueList::Delete(int index) {
    Notify(TakeAt(index), TChange::Deleted);
}

QObject* TumUniqueList::Extract(QObject* item) {
    const int index = IndexOf(item);
    if (index < 0)
        return nullptr;
    Notify(TakeAt(index), TChange::Extracted);
    return item;
}

void TumUniqueList::Clear() {
    while (Count() > 0)
        Delete(0);
}

TumObjectList::~TumObjectList() {
    // Here, where this class's own overrides still see it; a descendant's are gone by now.
    Clear();
}

bool TumObjectList::AcceptOrFree(QObject* item) {
    if (CanAdd(item))
        return true;
    if (OwnsObjects())
        delete item;
    return false;
}

int TumObjectList::Add(QObject* item) {
    if (!AcceptOrFree(item))
        return -1;
    const int index = TumUniqueList::Add(item);
    ApplyMaxSize();
    return index;
}

void TumObjectList::Insert(int index, QObject* item) {
    if (AcceptOrFree(item))
        TumUniqueList::Insert(index, item);
}

int TumObjectList::Remove(QObject* item, TFreeIt freeIt) {
    const int index = IndexOf(item);
    if (index >= 0)
        Delete(index, freeIt);
    return index;
}

void TumObjectList::Delete(int index, TFreeIt freeIt) {
    struct TRestore {
        TOwnsObjects& Target;
        TOwnsObjects Former;
        ~TRestore() { Target = Former; }
    } restore{FOwnsObjects, FOwnsObjects};
    FOwnsObjects = freeIt == TFreeIt::Yes ? TOwnsObjects::Yes : TOwnsObjects::No;
    TumUniqueList::Delete(index);
}

int TumObjectList::FindInstanceOf(const QMetaObject& classRef, TExact exact, int startAt) const {
    for (int i = std::max(startAt, 0); i < Count(); ++i) {
        const QMetaObject* type = (*this)[i]->metaObject();
        if (exact == TExact::Yes ? type == &classRef : type->inherits(&classRef))
            return i;
    }
    return -1;
}

void TumObjectList::SetMaxSize(int size) {
    if (size == FMaxSize)
        return;
    FMaxSize = size;
    ApplyMaxSize();
}

void TumObjectList::ApplyMaxSize() {
    while (FMaxSize != 0 && Count() > FMaxSize && Count() > 0)
        Delete(0, TFreeIt::Yes);
}

void TumObjectList::Notify(QObject* item, TChange change) {
    if (change == TChange::Added)
        Added(item);
    else
        Deleted(item); // NOLINT(clang-analyzer-optin.cplusplus.VirtualCall): see the destructor
    if (change == TChange::Deleted && OwnsObjects())
        delete item;
    Changed(); // NOLINT(clang-analyzer-optin.cplusplus.VirtualCall)
}

void TumObjectList::Added(QObject* item) {
    if (OnAdded && !QCoreApplication::closingDown())
        OnAdded(*this, item);
}

void TumObjectList::Deleted(QObject* item) {
    if (OnDeleted && !QCoreApplication::closingDown())
        OnDeleted(*this, item);
}

void TumObjectList::Changed() {
    if (OnChanged && !QCoreApplication::closingDown())
        OnChanged(*this);
}
