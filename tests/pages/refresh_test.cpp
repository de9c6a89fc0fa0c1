// What the live list asks the host to read.
#include "page_fixture.h"

#include <algorithm>
#include <set>

namespace pt {
namespace {

class RefreshTest : public ServoPageTest {
protected:
    UINT AuthorityAddress() {
        IVarObjEx* var =
            host.Services().Get<IHostDeviceHelper>()->FindNamedVar(module, "Authority");
        return var != nullptr ? var->GetAttr()->GetAddress() : 0;
    }
    std::set<UINT> RowAddresses(int first, int end) {
        std::set<UINT> addresses;
        for (int i = first; i < end; ++i)
            addresses.insert(Page().GetShownVar(i)->GetAttr()->GetAddress());
        return addresses;
    }
};

TEST_F(RefreshTest, TheQueryHoldsTheVisibleRowsPlusOneAndAuthorityNeverTheWholeGroup) {
    const int shown = Page().GetShownCount();
    const int perPage = List().GetCountPerPage();
    ASSERT_GT(perPage, 0);
    ASSERT_GT(shown, perPage + 10) << "all parameters should not fit on one page";
    // Linked limits of painted cells join the next query; take them as they stand.
    for (int row = 0; row <= perPage; ++row)
        for (int col = 0; col < List().GetColumnCount(); ++col)
            List().GetItemText(row, col);
    std::set<UINT> linked;
    for (IVarObjEx* v : Page().GetLinkedVars().GetArray())
        linked.insert(v->GetAttr()->GetAddress());
    Page().SubmitRefreshQuery();
    const std::vector<UINT>& asked = refresh->lastAddresses;
    const std::set<UINT> rows = RowAddresses(0, perPage + 1);
    for (UINT a : rows)
        EXPECT_EQ(std::count(asked.begin(), asked.end(), a), 1) << a;
    EXPECT_EQ(std::count(asked.begin(), asked.end(), AuthorityAddress()), 1);
    EXPECT_EQ(asked.size(), size_t(perPage + 1) + linked.size() + 1);
    // The row below the one extra is not read.
    const UINT below = Page().GetShownVar(perPage + 1)->GetAttr()->GetAddress();
    if (!linked.count(below) && below != AuthorityAddress()) {
        EXPECT_EQ(std::count(asked.begin(), asked.end(), below), 0);
    }
    // The linked variables went out with this query and are forgotten.
    EXPECT_EQ(Page().GetLinkedVars().GetCount(), 0);
}

TEST_F(RefreshTest, AtTheEndOfTheListNoRowBeyondTheLastIsRead) {
    const int shown = Page().GetShownCount();
    List().EnsureVisible(shown - 1, FALSE);
    const int top = List().GetTopIndex();
    ASSERT_GT(top, 0);
    Page().SubmitRefreshQuery();
    const std::vector<UINT>& asked = refresh->lastAddresses;
    for (UINT a : RowAddresses(top, shown))
        EXPECT_EQ(std::count(asked.begin(), asked.end(), a), 1) << a;
    EXPECT_LE(asked.size(), size_t(shown - top) + 1 + 2 * size_t(List().GetCountPerPage()));
}

TEST_F(RefreshTest, ALinkTargetIsReadOnlyAfterAPaintAskedForItAndOnline) {
    const int row = FindRow([](IVarAttr* a) { return a->IsMaxLinked() || a->IsMinLinked(); });
    ASSERT_GE(row, 0) << "the demo servo has a linked limit";
    IVarAttr* a = Page().GetShownVar(row)->GetAttr();
    const int column = a->IsMaxLinked() ? 7 : 6;
    // Far from the screen, so no paint asked for it yet.
    List().EnsureVisible(0, FALSE);
    Page().SubmitRefreshQuery();
    ASSERT_EQ(Page().GetLinkedVars().GetCount(), 0);
    const CString text = List().GetItemText(row, column);
    ASSERT_EQ(Page().GetLinkedVars().GetCount(), 1) << text.GetString();
    const UINT target = Page().GetLinkedVars().GetAt(0)->GetAttr()->GetAddress();
    // The cell names the target's code in brackets.
    CString code;
    Page().GetLinkedVars().GetAt(0)->GetAttr()->GetCode(code);
    EXPECT_EQ(text.Right(code.GetLength() + 2), "[" + code + "]");
    // An offline module sends no query and keeps the link for the next one.
    host.SetOnline("ZD3S", false);
    const int submitted = refresh->submitted;
    Page().SubmitRefreshQuery();
    EXPECT_EQ(refresh->submitted, submitted);
    ASSERT_EQ(Page().GetLinkedVars().GetCount(), 1);
    host.SetOnline("ZD3S", true);
    Page().SubmitRefreshQuery();
    const std::vector<UINT>& asked = refresh->lastAddresses;
    EXPECT_EQ(std::count(asked.begin(), asked.end(), target), 1);
}

TEST_F(RefreshTest, ShowModifiedKeepsOnlyReadValuesThatDifferFromFactoryThenAllRowsAgain) {
    ShowGroup("H03");
    ASSERT_GT(Page().GetShownCount(), 2);
    IVarObjEx* changed = Page().GetShownVar(0);
    IVarObjEx* same = Page().GetShownVar(1);
    ASSERT_TRUE(changed->GetAttr()->IsChangeTracked());
    IHostVarUtil* util = host.Services().Get<IHostVarUtil>();
    const double factory = util->VariantAsDouble(changed->GetAttr()->GetFactoryValue());
    drive->PokeRaw(changed->GetInstanceAddress(), factory + 1);
    drive->PokeRaw(same->GetInstanceAddress(),
                   util->VariantAsDouble(same->GetAttr()->GetFactoryValue()));
    ReadCycle();
    ReadCycle();
    ASSERT_FALSE(changed->GetValue().IsEmpty());
    Page().ShowModified(Store(), 0);
    std::vector<IVarObjEx*> rows;
    Page().CollectShown(rows);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), changed), 1);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), same), 0);
    for (IVarObjEx* v : rows) {
        EXPECT_FALSE(v->GetValue().IsEmpty());
        EXPECT_TRUE(v->GetAttr()->IsChangeTracked());
    }
    EXPECT_EQ(Page().GetListFilter(), LIST_FILTER_ALL);
    // A collection afterwards keeps every row again.
    ShowGroup("H03");
    EXPECT_GT(Page().GetShownCount(), int(rows.size()));
}

class CollectionTest : public PageTest {};

TEST_F(CollectionTest, AnAxisShowsItsOwnGroupsAndTheCustomRootKeepsTheSearchBase) {
    OpenFrame("ZD4M");
    IHostAxisList* axes = Store()->GetAxisList();
    ASSERT_NE(axes, nullptr);
    ASSERT_TRUE(axes->IsValid());
    ASSERT_GE(axes->GetCount(), 2);
    const int all = Page().GetShownCount();
    Page().ShowAxis(axes->GetAt(1), Store());
    const int axisRows = Page().GetShownCount();
    EXPECT_GT(axisRows, 0);
    EXPECT_LT(axisRows, all);
    EXPECT_EQ(Page().GetGroupVars().GetCount(), axisRows);
    // Every row of the axis belongs to one of its groups.
    IGroupSet* set = axes->GetAt(1)->GetGroupSet();
    std::set<CString> members;
    std::function<void(IGroupNode*)> collect = [&](IGroupNode* g) {
        for (int i = 0; i < g->GetMemberCount(); ++i) {
            CString key;
            if (g->GetMemberAt(i, key))
                members.insert(key);
        }
        for (int i = 0; i < g->GetChildCount(); ++i)
            collect(g->GetChildAt(i));
    };
    for (int i = 0; i < set->GetCount(); ++i)
        collect(set->GetAt(i));
    for (int i = 0; i < axisRows; ++i) {
        CString key;
        CString code;
        Page().GetShownVar(i)->GetInstanceGuid(key);
        Page().GetShownVar(i)->GetAttr()->GetCode(code);
        EXPECT_TRUE(members.count(key) || members.count(code)) << key.GetString();
    }
    // The custom root shows its own members but leaves the base of a search as it was.
    IVarObjEx* member = Page().GetShownVar(0);
    CString key;
    member->GetInstanceGuid(key);
    ASSERT_TRUE(Store()->GetGroupRoot(1)->AddMember(key));
    Page().ShowCustomRoot(Store());
    ASSERT_EQ(Page().GetShownCount(), 1);
    EXPECT_EQ(Page().GetShownVar(0), member);
    EXPECT_EQ(Page().GetGroupVars().GetCount(), axisRows);
}

} // namespace
} // namespace pt
