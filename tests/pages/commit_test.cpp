// The road of a typed value: editor, commit, drive, next read, colour.
#include "page_fixture.h"

#include "zorhost/sim/DriveLink.h"
#include "zorhost/sim/SimulatedDrive.h"

namespace pt {
namespace {

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
    double RawAt(int row) {
        double raw = -12345;
        drive->PeekRaw(Page().GetShownVar(row)->GetInstanceAddress(), raw);
        return raw;
    }
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

TEST_F(CommitTest, EscapeInANumericCellWritesNothing) {
    const int row = PlainRows().at(0);
    const double before = RawAt(row);
    const uint64_t requests = drive->RequestCount();
    TypeValue(row, FreshValue(row));
    AfxTestPressKey(&List().GetItemEdit(), VK_ESCAPE);
    EXPECT_EQ(List().GetItemEdit().GetSafeHwnd(), nullptr);
    EXPECT_EQ(RawAt(row), before);
    EXPECT_EQ(drive->RequestCount(), requests);
    // The page is still there: Escape didn't end the embedded dialog.
    EXPECT_TRUE(Page().IsWindowVisible());
}

TEST_F(CommitTest, ScrollingClosesEditorsTheNumericEditCommitsTheTextEditDrops) {
    const int row = PlainRows().at(0);
    const int value = FreshValue(row);
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
    ASSERT_NE(List().GetItemEditEx().GetSafeHwnd(), nullptr);
    AfxTestTypeText(&List().GetItemEditEx(), "0x0003");
    List().SendMessage(WM_VSCROLL, MAKEWPARAM(SB_LINEDOWN, 0), 0);
    EXPECT_EQ(List().GetItemEditEx().GetSafeHwnd(), nullptr);
    EXPECT_EQ(RawAt(hexRow), hexBefore);
}

// That a typed value reaches the drive and the next read shows it is the round trip's;
// here the colour of a value away from the factory value.
TEST_F(CommitTest, AValueAwayFromTheFactoryValueShowsBlueUntilItIsBack) {
    const int row = PlainRows().at(0);
    IVarObjEx* var = Page().GetShownVar(row);
    const CString text = TypeValue(row, FreshValue(row));
    AfxTestPressKey(&List().GetItemEdit(), VK_RETURN);
    ReadCycle();
    ReadCycle();
    EXPECT_EQ(List().GetItemText(row, kValueColumn), text);
    EXPECT_EQ(Page().GetCellTextColor(row, kValueColumn), PAGE_NOT_FACTORY_TEXT);
    EXPECT_EQ(Page().GetCellTextColor(row, 1), RGB(0, 0, 0));

    IHostVarUtil* util = host.Services().Get<IHostVarUtil>();
    const int factory = int(util->VariantAsDouble(var->GetAttr()->GetFactoryValue()));
    TypeValue(row, factory);
    AfxTestPressKey(&List().GetItemEdit(), VK_RETURN);
    ReadCycle();
    ReadCycle();
    EXPECT_EQ(RawAt(row), factory);
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
    EXPECT_TRUE(box->caption.IsEmpty());
}

} // namespace
} // namespace pt
