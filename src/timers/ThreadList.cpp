#include "timers/ThreadList.h"

TumThreadList::~TumThreadList() {
    const std::lock_guard guard(FLock);
    delete FList.load();
}

std::unique_ptr<TumObjectList> TumThreadList::CreateList() const {
    return std::make_unique<TumObjectList>(TOwnsObjects::Yes);
}

TumObjectList& TumThreadList::LockList() {
    FLock.lock();
    TumObjectList* list = FList.load(std::memory_order_relaxed);
    if (!list) {
        list = CreateList().release();
        FList.store(list, std::memory_order_release);
    }
    return *list;
}

int TumThreadList::Add(QObject* item) {
    return TLockedList(*this)->Add(item);
}

int TumThreadList::Remove(QObject* item, TFreeIt freeIt) {
    return TLockedList(*this)->Remove(item, freeIt);
}

void TumThreadList::Clear() {
    TLockedList(*this)->Clear();
}

void TumThreadList::SetMaxSize(int size) {
    TLockedList(*this)->SetMaxSize(size);
}

int TumThreadList::Count() const {
    const TumObjectList* list = FList.load(std::memory_order_acquire);
    return list ? list->Count() : 0;
}
