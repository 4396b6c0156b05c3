#pragma once
// Lists of objects without duplicates: TumUniqueList, and TumObjectList, which may own its items, tells of
// changes and can be limited in size. Neither is safe between threads, but for Count().
#include "base/Text.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <vector>

/// Holds no null and no object twice. Indices count from 0.
class TumUniqueList {
public:
    TumUniqueList() = default;
    virtual ~TumUniqueList() = default;
    TumUniqueList(const TumUniqueList&) = delete;
    TumUniqueList& operator=(const TumUniqueList&) = delete;

    /// May be read from any thread, and is then a hint.
    [[nodiscard]] int Count() const { return FCount.load(std::memory_order_relaxed); }
    [[nodiscard]] QObject* operator[](int index) const { return FItems.at(size_t(index)); }
    [[nodiscard]] int IndexOf(const QObject* item) const; ///< -1 if it isn't there

    /// The new index, or -1 for null and for an item that is there already.
    virtual int Add(QObject* item);
    /// Does nothing for null and for an item that is there already.
    virtual void Insert(int index, QObject* item);
    void Delete(int index);
    /// Takes `item` out without deleting it; null if it isn't there.
    QObject* Extract(QObject* item);
    /// Deletes every entry, the oldest first.
    void Clear();

protected:
    enum class TChange { Added, Extracted, Deleted };
    /// Every change of the list arrives here, after it was made.
    virtual void Notify(QObject* /*item*/, TChange /*change*/) {}

private:
    QObject* TakeAt(int index);
    void PutAt(int index, QObject* item);

    std::vector<QObject*> FItems;
    std::atomic<int> FCount = 0; ///< the size of FItems
};

class TumObjectList;
using TumObjectListItemEvent = std::function<void(TumObjectList& sender, QObject* item)>;

enum class TOwnsObjects { No, Yes };
enum class TFreeIt { No, Yes };
enum class TExact { No, Yes };

class TumObjectList : public TumUniqueList {
public:
    using TNotifyEvent = std::function<void(TumObjectList& sender)>;

    /// `owner` is kept for the user of the list; the list does nothing with it.
    explicit TumObjectList(TOwnsObjects ownsObjects, QObject* owner = nullptr)
        : FOwnsObjects(ownsObjects), FOwner(owner) {}
    ~TumObjectList() override;

    /// Takes responsibility for `item` in any case: an owning list frees what CanAdd refuses (but not a
    /// second copy of what it holds). Returns the index at which it was added, or -1. Where the size limit
    /// then deletes older entries, the item stands further ahead than that.
    int Add(QObject* item) override;
    /// The same test and refusal; the size limit is not applied.
    void Insert(int index, QObject* item) override;
    /// The index at which the item stood, or -1.
    int Remove(QObject* item, TFreeIt freeIt);
    using TumUniqueList::Delete;
    /// For this one call the list owns its objects, or doesn't.
    void Delete(int index, TFreeIt freeIt);
    /// The first object from `startAt` on whose class is `classRef`, or inherits from it unless `exact`;
    /// -1 if there is none.
    [[nodiscard]] int FindInstanceOf(const QMetaObject& classRef, TExact exact, int startAt) const;

    /// 0 is no limit. The oldest go first, and are freed even if the list owns nothing.
    void SetMaxSize(int size);
    [[nodiscard]] int MaxSize() const { return FMaxSize; }
    [[nodiscard]] bool OwnsObjects() const { return FOwnsObjects == TOwnsObjects::Yes; }
    [[nodiscard]] QObject* Owner() const { return FOwner; }

    /// Called after the change, OnDeleted while the object still lives; none of them once the application
    /// object is being destroyed.
    TumObjectListItemEvent OnAdded;
    TumObjectListItemEvent OnDeleted;
    TNotifyEvent OnChanged;

protected:
    [[nodiscard]] virtual bool CanAdd(QObject* /*item*/) { return true; }
    virtual void Added(QObject* item);
    virtual void Deleted(QObject* item);
    virtual void Changed();
    /// Nothing calls it; room for a descendant.
    virtual void Custom() {}

    void Notify(QObject* item, TChange change) override;

private:
    [[nodiscard]] bool AcceptOrFree(QObject* item);
    void ApplyMaxSize();

    int FMaxSize = 0;
    TOwnsObjects FOwnsObjects;
    QObject* FOwner;
};
