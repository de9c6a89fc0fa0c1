// The live list of the demo servo: what it asks the host to read, which rows a group, an
// axis or a filter shows, and the road of a typed value: editor, commit, drive, next read,
// colour.
#include "page_fixture.h"

#include "zorhost/sim/DriveLink.h"
#include "zorhost/sim/SimulatedDrive.h"

#include <algorithm>
#include <set>

namespace pt {
namespace {

class RefreshTest : public ServoPageTest {
protected:
    // The addresses of the one query the page submits now (none: it submitted nothing).
    std::vector<UINT> Asked() {
        host.Refresh().RunCycle(); // what was waiting goes first
        Page().SubmitRefreshQuery();
        return host.Refresh().PendingAddresses();
    }
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

TEST_F(RefreshTest, TheQueryHoldsTheVisibleRowsPlusOneAndAuthorityNeverTheWholeGroupOrMore) {
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
    std::vector<UINT> asked = Asked();
    for (UINT a : RowAddresses(0, perPage + 1))
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

    // At the end of the list no row beyond the last is read.
    List().EnsureVisible(shown - 1, FALSE);
    const int top = List().GetTopIndex();
    ASSERT_GT(top, 0);
    asked = Asked();
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
    // An offline module sends no query and keeps the link for the next one.
    host.SetOnline("ZD3S", false);
    Asked();
    EXPECT_EQ(host.Refresh().PendingQueries(), 0u);
    ASSERT_EQ(Page().GetLinkedVars().GetCount(), 1);
    host.SetOnline("ZD3S", true);
    const std::vector<UINT> asked = Asked();
    EXPECT_EQ(std::count(asked.begin(), asked.end(), target), 1);
}

TEST_F(RefreshTest, ModifiedRowsAreReadValuesAwayFromFactoryThenAllRowsAgain) {
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
    const int all = Page().GetShownCount();
    EXPECT_GT(all, int(rows.size()));

    // Waiting for the upload of "已修改参数": its end refills with the filter, then all rows
    // again; another module's upload refills nothing.
    Page().SetListFilter(LIST_FILTER_MODIFIED);
    Page().OnModuleUploaded("ZV5", TRUE);
    EXPECT_EQ(Page().GetShownCount(), all);
    EXPECT_EQ(Page().GetListFilter(), LIST_FILTER_ALL);
    Page().SetListFilter(LIST_FILTER_MODIFIED);
    Page().OnModuleUploaded("ZD3S", TRUE);
    EXPECT_EQ(Page().GetListFilter(), LIST_FILTER_ALL);
    rows.clear();
    Page().CollectShown(rows);
    EXPECT_LT(int(rows.size()), Store()->GetCount() / 4);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), changed), 1);
}

TEST_F(PageTest, AnAxisShowsItsOwnGroupsAndTheCustomRootKeepsTheSearchBase) {
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

class CommitTest : public ServoPageTest {
protected:
    // Plain integer parameters that can be changed at any time, in row order.
    std::vector<int> PlainRows() {
        std::vector<int> rows;
        for (int i = 0; i < Page().GetShownCount(); ++i) {
            IVarAttr* a = Page().GetShownVar(i)->GetAttr();
            // Parameters above the level the drive grants after power-on are refused.
            if (a->GetModifyMode() == 0 && Kind(a) == 0 && a->GetDisplayFormat() == 0 &&
                a->GetAccessLevel() <= zorhost::sim::SimulatedDrive::kBaseAuthority &&
                a->GetDecimals() == 0 && !a->IsMinLinked() && !a->IsMaxLinked())
                rows.push_back(i);
        }
        return rows;
    }
    CString CodeOf(int row) {
        CString code;
        Page().GetShownVar(row)->GetAttr()->GetCode(code);
        return code;
    }
    double RawAt(int row) { return DriveValue(CodeOf(row).GetString()); }
    // A value inside the limits that the drive doesn't hold and that isn't the factory value.
    int FreshValue(int row) {
        IHostVarUtil* util = host.Services().Get<IHostVarUtil>();
        IVarAttr* a = Page().GetShownVar(row)->GetAttr();
        const int lo = int(util->VariantAsDouble(a->GetMinValue()));
        const int factory = int(util->VariantAsDouble(a->GetFactoryValue()));
        const int held = int(RawAt(row));
        for (int v = lo + 1;; ++v)
            if (v != factory && v != held)
                return v;
    }
    void OpenNumeric(int row) {
        List().EnsureVisible(row, FALSE);
        List().ClickCell(row, kValueColumn);
        ASSERT_NE(List().GetItemEdit().GetSafeHwnd(), nullptr) << CodeOf(row).GetString();
    }
    // Opens the numeric edit of `row` and types `value` into it; returns the text typed.
    CString TypeValue(int row, int value) {
        CString text;
        text.Format("%d", value);
        OpenNumeric(row);
        if (List().GetItemEdit().GetSafeHwnd() != nullptr)
            AfxTestTypeText(&List().GetItemEdit(), text.GetString());
        return text;
    }
    std::string LastBox() const {
        const AfxPrompt* box = prompts.Last(AfxPrompt::MessageBox);
        return box != nullptr ? box->text.GetString() : "";
    }
};

TEST_F(CommitTest, ClickingFromOneValueCellToAnotherCommitsTheFirstAndOpensTheSecond) {
    const std::vector<int> rows = PlainRows();
    ASSERT_GE(rows.size(), 2u);
    const int a = rows[0];
    const int b = rows[1];
    const int value = FreshValue(a);
    const double before_b = RawAt(b);
    TypeValue(a, value);
    List().ClickCell(b, kValueColumn);
    EXPECT_EQ(RawAt(a), value);
    EXPECT_EQ(RawAt(b), before_b);
    ASSERT_NE(List().GetItemEdit().GetSafeHwnd(), nullptr);
    EXPECT_EQ(List().GetItemEdit().m_nRow, b);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u) << LastBox();
}

// "12.5" typed into a parameter without places is 12 on the drive, not ten times that.
TEST_F(CommitTest, APointTypedWithoutPlacesEndsTheFigure) {
    const int row = RowOf("H06-05");
    ASSERT_GE(row, 0);
    OpenNumeric(row);
    CItemEdit& edit = List().GetItemEdit();
    edit.SetSel(0, -1);
    TypeKeys(&edit, "12.5");
    AfxTestPressKey(&edit, VK_RETURN);
    EXPECT_EQ(DriveValue("H06-05"), 12);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u) << LastBox();
}

TEST_F(CommitTest, EscapeWritesNothingScrollingCommitsTheNumericEditAndDropsTheTextEdit) {
    const int row = PlainRows().at(0);
    const double before = RawAt(row);
    const uint64_t requests = drive->RequestCount();
    const int value = FreshValue(row);
    TypeValue(row, value);
    AfxTestPressKey(&List().GetItemEdit(), VK_ESCAPE);
    EXPECT_EQ(List().GetItemEdit().GetSafeHwnd(), nullptr);
    EXPECT_EQ(RawAt(row), before);
    EXPECT_EQ(drive->RequestCount(), requests);
    // The page is still there: Escape didn't end the embedded dialog.
    EXPECT_TRUE(Page().IsWindowVisible());

    TypeValue(row, value);
    List().SendMessage(WM_VSCROLL, MAKEWPARAM(SB_LINEDOWN, 0), 0);
    EXPECT_EQ(List().GetItemEdit().GetSafeHwnd(), nullptr);
    EXPECT_EQ(RawAt(row), value);

    // A hexadecimal cell uses the text edit, which drops what was typed.
    const int hexRow = FindRow([](IVarAttr* a) {
        return a->GetModifyMode() == 0 && a->GetDisplayFormat() == 1 && Kind(a) == 0;
    });
    ASSERT_GE(hexRow, 0);
    const double hexBefore = RawAt(hexRow);
    List().EnsureVisible(hexRow, FALSE);
    List().ClickCell(hexRow, kValueColumn);
    CItemEditEx& hex = List().GetItemEditEx();
    ASSERT_NE(hex.GetSafeHwnd(), nullptr);
    hex.SetSel(0, -1);
    TypeKeys(&hex, "0x0g0.3");
    EXPECT_EQ(hex.GetWindowTextString(), "0x003") << "keys of hexadecimal figures only";
    List().SendMessage(WM_VSCROLL, MAKEWPARAM(SB_LINEDOWN, 0), 0);
    EXPECT_EQ(List().GetItemEditEx().GetSafeHwnd(), nullptr);
    EXPECT_EQ(RawAt(hexRow), hexBefore);
}

// That a typed value reaches the drive and the next read shows it is the round trip's;
// here the colour of a value away from the factory value.
TEST_F(CommitTest, AValueAwayFromTheFactoryValueShowsBlueUntilItIsBack) {
    const int row = PlainRows().at(0);
    IVarObjEx* var = Page().GetShownVar(row);
    TypeValue(row, FreshValue(row));
    AfxTestPressKey(&List().GetItemEdit(), VK_RETURN);
    ReadCycle();
    ReadCycle();
    EXPECT_EQ(Page().GetCellTextColor(row, kValueColumn), PAGE_NOT_FACTORY_TEXT);
    EXPECT_EQ(Page().GetCellTextColor(row, 1), RGB(0, 0, 0));

    IHostVarUtil* util = host.Services().Get<IHostVarUtil>();
    const int factory = int(util->VariantAsDouble(var->GetAttr()->GetFactoryValue()));
    TypeValue(row, factory);
    AfxTestPressKey(&List().GetItemEdit(), VK_RETURN);
    ReadCycle();
    ReadCycle();
    EXPECT_EQ(Page().GetCellTextColor(row, kValueColumn), RGB(0, 0, 0));
}

TEST_F(CommitTest, ARefusedWriteShowsTheDrivesReason) {
    // A parameter above the level the drive grants after power-on: the drive refuses it.
    const int row = FindRow([](IVarAttr* a) {
        return a->GetModifyMode() == 0 && a->GetDisplayFormat() == 0 &&
               a->GetValueInfo() == nullptr &&
               a->GetAccessLevel() > zorhost::sim::SimulatedDrive::kBaseAuthority;
    });
    ASSERT_GE(row, 0);
    const double before = RawAt(row);
    TypeValue(row, FreshValue(row));
    AfxTestPressKey(&List().GetItemEdit(), VK_RETURN);
    EXPECT_EQ(RawAt(row), before);
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
    const AfxPrompt* box = prompts.Last(AfxPrompt::MessageBox);
    const std::string reason = zorhost::sim::LinkResultText(
        zorhost::sim::LinkResult::Refuse(zorhost::sim::Refusal::AccessDenied), false);
    EXPECT_EQ(box->text, CodeOf(row) + ": " + CString(reason));
}

} // namespace
} // namespace pt
