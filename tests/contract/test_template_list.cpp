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

TEST(TemplateList, AddAndRemoveKeepArrayAndMapTogether) {
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

    // Remove takes the array entry and the map entry together.
    Tracked c(&deaths, 3);
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
