#pragma once
// TumThreadList: an object list behind a lock, for use between threads. Not itself a list.
#include "timers/Lists.h"

#include <memory>
#include <mutex>

class TumThreadList {
public:
    TumThreadList() = default;
    virtual ~TumThreadList();
    TumThreadList(const TumThreadList&) = delete;
    TumThreadList& operator=(const TumThreadList&) = delete;

    /// Enters the lock, which one thread may enter repeatedly, until as many calls of UnlockList.
    [[nodiscard]] TumObjectList& LockList();
    void UnlockList() { FLock.unlock(); }

    /// Each of these is lock, the list's operation, unlock.
    int Add(QObject* item);
    int Remove(QObject* item, TFreeIt freeIt);
    void Clear();
    void SetMaxSize(int size);

    /// Read without the lock: a hint to other threads.
    [[nodiscard]] int Count() const;

protected:
    /// Makes the list, once, at the first use. By default one that owns its objects and has no owner.
    [[nodiscard]] virtual std::unique_ptr<TumObjectList> CreateList() const;

private:
    std::recursive_mutex FLock;
    std::atomic<TumObjectList*> FList = nullptr; ///< owned; set once, under the lock
};

/// Holds a list's lock for a block.
class TLockedList {
public:
    explicit TLockedList(TumThreadList& list) : FThreadList(list), FList(list.LockList()) {}
    ~TLockedList() { FThreadList.UnlockList(); }
    TLockedList(const TLockedList&) = delete;
    TLockedList& operator=(const TLockedList&) = delete;

    TumObjectList* operator->() const { return &FList; }
    TumObjectList& operator*() const { return FList; }

private:
    TumThreadList& FThreadList;
    TumObjectList& FList;
};
