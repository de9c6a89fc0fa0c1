#include "module/TemplateList.h"

#include <afx/CString.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Counts its destructions, so a test can tell whether the list freed it.
struct Tracked {
    explicit Tracked(int* deaths, int id = 0) : deaths(deaths), id(id) {}
    ~Tracked() { ++*deaths; }
    int* deaths;
    int id;
};

using PtrList = CTemplateList<Tracked*, Tracked*>;

std::vector<int> Ids(const PtrList& list) {
    std::vector<int> ids;
    for (int i = 0; i < list.GetCount(); ++i)
        ids.push_back(list.GetAt(i)->id);
    return ids;
}

} // namespace

TEST(TemplateList, AddRefusesNullValueAndHeldKey) {
    int deaths = 0;
    Tracked a(&deaths, 1), b(&deaths, 2);
    PtrList list;
    EXPECT_FALSE(list.Add(&a, nullptr));
    EXPECT_TRUE(list.Add(&a, &a));
    EXPECT_FALSE(list.Add(&a, &a)) << "a key the map holds is refused";
    EXPECT_TRUE(list.Add(&b, &b));
    EXPECT_EQ(list.GetCount(), 2);

    // With distinct key and value types the key alone decides.
    CTemplateList<CString, Tracked*> byText;
    EXPECT_TRUE(byText.Add("All", &a));
    EXPECT_FALSE(byText.Add("All", &b));
    EXPECT_TRUE(byText.Add("ALL", &b)) << "keys compare case-sensitively";
    EXPECT_FALSE(byText.Add("x", nullptr));
    Tracked* found = nullptr;
    EXPECT_TRUE(byText.Lookup("All", found));
    EXPECT_EQ(found, &a);
    EXPECT_FALSE(byText.Lookup("all", found));
}

TEST(TemplateList, KeepsInsertionOrderNotKeyOrder) {
    int deaths = 0;
    Tracked t1(&deaths, 1), t2(&deaths, 2), t3(&deaths, 3);
    CTemplateList<int, Tracked*> list;
    ASSERT_TRUE(list.Add(30, &t1));
    ASSERT_TRUE(list.Add(10, &t2));
    ASSERT_TRUE(list.Add(20, &t3));
    ASSERT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetAt(0), &t1);
    EXPECT_EQ(list.GetAt(1), &t2);
    EXPECT_EQ(list.GetAt(2), &t3);
    EXPECT_EQ(list.GetAt(3), nullptr);
    EXPECT_EQ(list.GetAt(-1), nullptr);
    EXPECT_EQ(list.IndexOf(&t3), 2);
}

TEST(TemplateList, RemoveTakesArrayEntryAndMapEntry) {
    int deaths = 0;
    Tracked a(&deaths, 1), b(&deaths, 2), c(&deaths, 3);
    PtrList list;
    list.Add(&a, &a);
    list.Add(&b, &b);
    list.Add(&c, &c);

    EXPECT_TRUE(list.Remove(&b));
    EXPECT_EQ(Ids(list), (std::vector<int>{1, 3}));
    EXPECT_FALSE(list.Contains(&b));
    EXPECT_FALSE(list.Remove(&b)) << "a key the map no longer holds";
    EXPECT_TRUE(list.Add(&b, &b)) << "a removed key can come again, at the end";
    EXPECT_EQ(Ids(list), (std::vector<int>{1, 3, 2}));

    // Moving an entry, as the custom group editor moves rows: out by index, back in at a
    // new place. The map must follow, or the re-insert is refused as a held key.
    ASSERT_TRUE(list.RemoveAt(0));
    EXPECT_FALSE(list.Contains(&a));
    ASSERT_TRUE(list.InsertAt(1, &a, &a));
    EXPECT_EQ(Ids(list), (std::vector<int>{3, 1, 2}));
    EXPECT_FALSE(list.RemoveAt(3));
    EXPECT_TRUE(list.InsertAt(99, &c, &c) == FALSE) << "held key refused wherever it goes";
    EXPECT_EQ(deaths, 0);
}

TEST(TemplateList, OwnsNothingUnlessAskedToDelete) {
    int deaths = 0;
    {
        PtrList list;
        auto* a = new Tracked(&deaths, 1);
        auto* b = new Tracked(&deaths, 2);
        list.Add(a, a);
        list.Add(b, b);
        list.RemoveAll();
        EXPECT_EQ(list.GetCount(), 0);
        EXPECT_EQ(deaths, 0) << "RemoveAll frees nothing";
        list.Add(a, a);
        list.Add(b, b);
        list.Remove(a);
        EXPECT_EQ(deaths, 0) << "Remove frees nothing";
        delete a;
        list.DeleteAll();
        EXPECT_EQ(deaths, 2);
        EXPECT_TRUE(list.IsEmpty());
    }
    EXPECT_EQ(deaths, 2) << "the list's destructor frees nothing";

    // One value under two keys is deleted once.
    deaths = 0;
    CTemplateList<int, Tracked*> shared;
    auto* s = new Tracked(&deaths);
    shared.Add(1, s);
    shared.Add(2, s);
    shared.DeleteAll();
    EXPECT_EQ(deaths, 1);
}

namespace {
// A destructor that looks at the list that owns it, as a registry entry might.
struct Observer {
    Observer(CTemplateList<Observer*, Observer*>* owner, std::vector<int>* seen)
        : owner(owner), seen(seen) {}
    ~Observer() { seen->push_back(owner->GetCount()); }
    CTemplateList<Observer*, Observer*>* owner;
    std::vector<int>* seen;
};
} // namespace

TEST(TemplateList, DeleteAllEmptiesBeforeDeleting) {
    CTemplateList<Observer*, Observer*> list;
    std::vector<int> seen;
    for (int i = 0; i < 3; ++i) {
        auto* o = new Observer(&list, &seen);
        list.Add(o, o);
    }
    list.DeleteAll();
    EXPECT_EQ(seen, (std::vector<int>{0, 0, 0}));
}

namespace {
// A listener of a fan-out that may take itself or others out during the walk.
struct Listener {
    int id;
    std::vector<int>* calls;
    CTemplateList<Listener*, Listener*>* list;
    std::vector<Listener*> removeOnCall;
    void Notify() {
        calls->push_back(id);
        for (Listener* l : removeOnCall)
            list->Remove(l);
    }
};
} // namespace

TEST(TemplateList, WalkRereadsLengthSoRemovalsDuringTheWalkCount) {
    std::vector<int> calls;
    CTemplateList<Listener*, Listener*> list;
    Listener l1{1, &calls, &list, {}}, l2{2, &calls, &list, {}}, l3{3, &calls, &list, {}},
        l4{4, &calls, &list, {}};
    for (Listener* l : {&l1, &l2, &l3, &l4})
        list.Add(l, l);

    // The second takes out the fourth: the fourth is not called.
    l2.removeOnCall = {&l4};
    list.Walk([](Listener* l) { l->Notify(); });
    EXPECT_EQ(calls, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(list.GetCount(), 3);

    // The first removes itself: the one that moves into its index is passed over this
    // time, and nothing is read past the end.
    calls.clear();
    l2.removeOnCall.clear();
    l1.removeOnCall = {&l1};
    list.Walk([](Listener* l) { l->Notify(); });
    EXPECT_EQ(calls, (std::vector<int>{1, 3}));
    EXPECT_EQ(list.GetCount(), 2);

    // One entry empties the whole list: the walk stops there.
    calls.clear();
    l2.removeOnCall = {&l2, &l3};
    list.Walk([](Listener* l) { l->Notify(); });
    EXPECT_EQ(calls, (std::vector<int>{2}));
    EXPECT_TRUE(list.IsEmpty());
}
