#include "base/Component.h"
#include "timers/ThreadList.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointer>

#include <gtest/gtest.h>
#include <thread>

namespace {

/// Makes its objects by name, and tells of everything that it says and of the end of each. One whose name is
/// "no" is refused.
class TToldList : public TumObjectList {
public:
    TToldList(TOwnsObjects owns, QString& told) : TumObjectList(owns), FTold(told) {
        OnAdded = [this](TumObjectList&, QObject* item) { Tell("added", item); };
        OnDeleted = [this](TumObjectList&, QObject* item) { Tell("deleted", item); };
        OnChanged = [this](TumObjectList& list) { FTold += QString(" changed:%1").arg(list.Count()); };
    }
    ~TToldList() override { OnAdded = OnDeleted = nullptr, OnChanged = nullptr; }
    bool CanAdd(QObject* item) override { return !item || item->objectName() != "no"; }

    QObject* operator()(const char* name) {
        QPointer<QObject>& item = FItems[name];
        if (!item) {
            item = new QObject;
            item->setObjectName(name);
            QObject::connect(item, &QObject::destroyed, [this, name] { FTold += QString(" -%1").arg(name); });
        }
        return item;
    }
    /// Empties the list and frees whatever is left.
    void End() {
        Clear();
        for (const QPointer<QObject>& item : FItems)
            delete item.data();
    }

private:
    void Tell(const char* what, QObject* item) { FTold += QString(" %1:%2").arg(what, item->objectName()); }
    QString& FTold;
    QHash<QString, QPointer<QObject>> FItems;
};

TEST(ObjectList, TellsAndFrees) {
    constexpr auto Owns = TOwnsObjects::Yes, Borrows = TOwnsObjects::No;
    const struct {
        const char* What;
        TOwnsObjects Owner;
        std::function<void(TToldList&)> Do;
        const char* Told; ///< "-a" where the object of that name is freed
    } cases[] = {
        {"nothing twice and no null", Owns,
         [](TToldList& list) {
             EXPECT_EQ(list.Add(nullptr), -1);
             EXPECT_EQ(list.Add(list("a")), 0);
             EXPECT_EQ(list.Add(list("a")), -1);
             list.Insert(0, list("a")), list.Insert(0, nullptr);
             list.Insert(0, list("b"));
             EXPECT_EQ(list.IndexOf(list("a")), 1);
             EXPECT_EQ(list.Extract(list("a")), list("a"));
             EXPECT_EQ(list.Extract(list("a")), nullptr);
         },
         " added:a changed:1 added:b changed:2 deleted:a changed:1"},
        {"told otherwise", Owns,
         [](TToldList& list) {
             list.Add(list("a")), list.Add(list("b"));
             EXPECT_EQ(list.Remove(list("a"), TFreeIt::No), 0);
             EXPECT_EQ(list.Remove(list("a"), TFreeIt::Yes), -1);
             list.Delete(0); // owning as before
         },
         " added:a changed:1 added:b changed:2 deleted:a changed:1 deleted:b -b changed:0"},
        {"told otherwise", Borrows,
         [](TToldList& list) {
             list.Add(list("a")), list.Add(list("b"));
             list.Delete(0, TFreeIt::Yes);
             list.Clear();
         },
         " added:a changed:1 added:b changed:2 deleted:a -a changed:1 deleted:b changed:0"},
        {"a limit frees the oldest", Borrows,
         [](TToldList& list) {
             list.SetMaxSize(2);
             list.Add(list("a")), list.Add(list("b"));
             EXPECT_EQ(list.Add(list("c")), 2); // where it was added, before the oldest went
             list.Insert(0, list("d"));         // no limit here
             list.SetMaxSize(2);                // no change, so it isn't applied
             list.SetMaxSize(1);
         },
         " added:a changed:1 added:b changed:2 added:c changed:3 deleted:a -a changed:2 added:d changed:3"
         " deleted:d -d changed:2 deleted:b -b changed:1"},
        {"refused", Owns,
         [](TToldList& list) {
             EXPECT_EQ(list.Add(list("no")), -1);
             list.Insert(0, list("no"));
         },
         " -no -no"},
        {"refused", Borrows, [](TToldList& list) { EXPECT_EQ(list.Add(list("no")), -1); }, ""},
    };
    for (const auto& c : cases) {
        QString told;
        TToldList list(c.Owner, told);
        c.Do(list);
        EXPECT_EQ(told.toStdString(), c.Told) << c.What;
        list.End();
    }
}

TEST(ObjectList, NoEventSeesTheEndOfTheApplicationObject) {
    QString told;
    TToldList list(TOwnsObjects::Yes, told);
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    {
        const QCoreApplication application(argc, argv);
        list.Add(list("a"));
        EXPECT_EQ(told, " added:a changed:1");
    }
    list.Clear();
    EXPECT_EQ(told, " added:a changed:1 -a");
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
    QObject item; // which the list would free if it were its owner
    list.Add(&item);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

} // namespace
