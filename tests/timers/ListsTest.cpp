#include "base/Component.h"
#include "timers/ThreadList.h"

#include <QCoreApplication>
#include <QPointer>

#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;

namespace {

/// An object whose life can be watched.
struct TItem : QPointer<QObject> {
    TItem() : QPointer<QObject>(new QObject) {}
    bool Lives() const { return !isNull(); }
};

/// Tells of everything that a list says, by name.
class TToldList : public TumObjectList {
public:
    explicit TToldList(TOwnsObjects owns) : TumObjectList(owns) {
        OnAdded = [this](TumObjectList&, QObject* item) { Tell("added", item); };
        OnDeleted = [this](TumObjectList&, QObject* item) { Tell("deleted", item); };
        OnChanged = [this](TumObjectList& list) { Told += QString(" changed:%1").arg(list.Count()); };
    }
    ~TToldList() override { OnAdded = OnDeleted = nullptr, OnChanged = nullptr; }
    QString Told;

private:
    void Tell(const char* what, QObject* item) { Told += QString(" %1:%2").arg(what, item->objectName()); }
};

QObject* Named(const char* name) {
    auto* item = new QObject;
    item->setObjectName(name);
    return item;
}

TEST(ObjectList, HoldsNothingTwiceAndNoNull) {
    TumObjectList list(TOwnsObjects::Yes);
    const TItem item;
    EXPECT_EQ(list.Add(nullptr), -1);
    EXPECT_EQ(list.Add(item), 0);
    EXPECT_EQ(list.Add(item), -1);
    list.Insert(0, item);
    list.Insert(0, nullptr);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_TRUE(item.Lives());
    const TItem first;
    list.Insert(0, first);
    EXPECT_EQ(list[0], first);
    EXPECT_EQ(list.IndexOf(item), 1);
    EXPECT_EQ(list.Extract(item), item);
    EXPECT_EQ(list.Extract(item), nullptr);
    EXPECT_TRUE(item.Lives());
    delete item;
}

TEST(ObjectList, FreesByOwnershipUnlessToldOtherwise) {
    for (const TOwnsObjects owns : {TOwnsObjects::No, TOwnsObjects::Yes}) {
        TumObjectList list(owns);
        const TItem removed, freed, deleted, cleared;
        for (QObject* item : {removed.data(), freed.data(), deleted.data(), cleared.data()})
            list.Add(item);
        EXPECT_EQ(list.Remove(removed, TFreeIt::No), 0);
        EXPECT_EQ(list.Remove(removed, TFreeIt::Yes), -1);
        EXPECT_TRUE(removed.Lives());
        list.Delete(0, TFreeIt::Yes);
        EXPECT_FALSE(freed.Lives());
        EXPECT_EQ(list.OwnsObjects(), owns == TOwnsObjects::Yes); // as before
        list.Delete(0);
        EXPECT_EQ(deleted.Lives(), owns == TOwnsObjects::No);
        list.Clear();
        EXPECT_EQ(cleared.Lives(), owns == TOwnsObjects::No);
        for (const TItem* item : {&removed, &deleted, &cleared})
            delete item->data();
    }
}

TEST(ObjectList, TheOldestLeaveAFullListAndAreFreedEvenByOneThatOwnsNothing) {
    TumObjectList list(TOwnsObjects::No);
    list.SetMaxSize(3);
    const TItem items[5];
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(list.Add(items[i]), i);
    EXPECT_EQ(list.Add(items[3]), 3); // where it was added, before the oldest went
    EXPECT_EQ(list.IndexOf(items[3]), 2);
    EXPECT_FALSE(items[0].Lives());
    list.Insert(0, items[4]); // no limit here
    EXPECT_EQ(list.Count(), 4);
    list.SetMaxSize(3); // no change, so it isn't applied
    EXPECT_EQ(list.Count(), 4);
    list.SetMaxSize(1);
    EXPECT_EQ(list[0], items[3]);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_FALSE(items[4].Lives());
    delete items[3];
}

TEST(ObjectList, ARefusedObjectIsFreedByAnOwningList) {
    struct TRefusing : TumObjectList {
        using TumObjectList::TumObjectList;
        bool CanAdd(QObject*) override { return false; }
    };
    for (const TOwnsObjects owns : {TOwnsObjects::No, TOwnsObjects::Yes}) {
        TRefusing list(owns);
        const TItem added, inserted;
        EXPECT_EQ(list.Add(added), -1);
        EXPECT_EQ(list.Add(nullptr), -1);
        list.Insert(0, inserted);
        EXPECT_EQ(list.Count(), 0);
        EXPECT_EQ(added.Lives(), owns == TOwnsObjects::No);
        EXPECT_EQ(inserted.Lives(), owns == TOwnsObjects::No);
        delete added;
        delete inserted;
    }
}

TEST(ObjectList, TellsOfEachChangeWhileTheObjectLives) {
    TToldList list(TOwnsObjects::Yes);
    QObject* extracted = Named("c");
    list.Add(Named("a"));
    list.Insert(0, Named("b"));
    list.Add(extracted);
    EXPECT_EQ(list.Told, " added:a changed:1 added:b changed:2 added:c changed:3");
    list.Told.clear();
    delete list.Extract(extracted);
    list.Delete(1);
    list.Clear();
    EXPECT_EQ(list.Told, " deleted:c changed:2 deleted:a changed:1 deleted:b changed:0");
}

TEST(ObjectList, NoEventSeesTheEndOfTheApplicationObject) {
    TToldList list(TOwnsObjects::Yes);
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    {
        const QCoreApplication application(argc, argv);
        list.Add(Named("a"));
        EXPECT_EQ(list.Told, " added:a changed:1");
    }
    list.Clear();
    EXPECT_EQ(list.Told, " added:a changed:1");
    EXPECT_EQ(list.Count(), 0);
    const QCoreApplication again(argc, argv);
}

TEST(ObjectList, FindsByClass) {
    TumObjectList list(TOwnsObjects::Yes);
    list.Add(new QObject);
    list.Add(new TComponent(nullptr));
    list.Add(new QObject);
    const QMetaObject& object = QObject::staticMetaObject;
    const QMetaObject& component = TComponent::staticMetaObject;
    const struct {
        const QMetaObject& Class;
        TExact Exact;
        int StartAt, Found;
    } cases[] = {
        {object, TExact::No, 0, 0},    {object, TExact::No, 1, 1},     {object, TExact::Yes, 1, 2},
        {component, TExact::No, 0, 1}, {component, TExact::Yes, 1, 1}, {component, TExact::No, 2, -1},
        {object, TExact::Yes, 3, -1},  {object, TExact::No, 99, -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(list.FindInstanceOf(c.Class, c.Exact, c.StartAt), c.Found)
            << c.Class.className() << c.StartAt;
}

TEST(ThreadList, ManyThreadsMayUseItAndOneMayEnterItAgain) {
    TumThreadList list;
    EXPECT_EQ(list.Count(), 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                auto* kept = new QObject;
                const TLockedList locked(list);
                EXPECT_GE(list.Add(kept), 0); // inside the lock
                auto* removed = new QObject;
                list.Add(removed);
                const int index = list.Remove(removed, TFreeIt::Yes);
                EXPECT_EQ(index, locked->Count());
            }
        });
    for (int looks = 0; looks < 1000; ++looks)
        EXPECT_LE(list.Count(), 801);
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(list.Count(), 800);
    list.SetMaxSize(10);
    EXPECT_EQ(list.Count(), 10);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(ThreadList, ADescendantMayMakeAListOfItsOwn) {
    struct TBorrowing : TumThreadList {
        std::unique_ptr<TumObjectList> CreateList() const override {
            return std::make_unique<TumObjectList>(TOwnsObjects::No);
        }
    } list;
    const TItem item;
    list.Add(item);
    list.Clear();
    EXPECT_TRUE(item.Lives());
    delete item;
}

} // namespace
