// Which editor a click opens, and how the list closes its editors.
#include "page_fixture.h"

namespace pt {
namespace {

class EditorTest : public ServoPageTest {
protected:
    enum Opened { None, Numeric, Text, Combo, Button };
    Opened OpenedEditor() {
        CListCtrlEx& list = List();
        const int n = (list.GetItemEdit().GetSafeHwnd() != nullptr) +
                      (list.GetItemEditEx().GetSafeHwnd() != nullptr) +
                      (list.GetItemCombo().GetSafeHwnd() != nullptr) + list.IsButtonShown();
        EXPECT_LE(n, 1) << "more than one editor open";
        if (list.GetItemEdit().GetSafeHwnd() != nullptr)
            return Numeric;
        if (list.GetItemEditEx().GetSafeHwnd() != nullptr)
            return Text;
        if (list.GetItemCombo().GetSafeHwnd() != nullptr)
            return Combo;
        if (list.IsButtonShown())
            return Button;
        return None;
    }
    Opened ClickValue(int row, int column = kValueColumn) {
        EXPECT_GE(row, 0);
        List().ClickCell(row, column);
        return OpenedEditor();
    }
};

// The editors of parameters that change at any time are walked by the round trip; here
// the other modify modes and kinds.
TEST_F(EditorTest, ClickOpensTheEditorOfModifyModeAndValueKind) {
    struct Case {
        const char* what;
        std::function<bool(IVarAttr*)> match;
        Opened expected;
    };
    const Case cases[] = {
        {"plain decimal, at standstill",
         [](IVarAttr* a) {
             return a->GetModifyMode() == 1 && Kind(a) == 0 && a->GetDisplayFormat() == 0;
         },
         Numeric},
        {"bit ranges", [](IVarAttr* a) { return a->GetModifyMode() <= 1 && Kind(a) == 3; }, Button},
        {"digits", [](IVarAttr* a) { return a->GetModifyMode() <= 1 && Kind(a) == 4; }, Button},
        {"read-only bits", [](IVarAttr* a) { return a->GetModifyMode() == 2 && Kind(a) == 2; },
         Button},
        // A plain number comes without any value meaning from the host.
        {"read-only number",
         [](IVarAttr* a) { return a->GetModifyMode() == 2 && a->GetValueInfo() == nullptr; }, None},
        {"read-only enumeration",
         [](IVarAttr* a) { return a->GetModifyMode() == 2 && Kind(a) == 1; }, None},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const int row = FindRow(c.match);
        ASSERT_GE(row, 0) << "the demo servo has no such parameter";
        EXPECT_EQ(ClickValue(row), c.expected);
        List().CloseEditors(-2);
    }
}

TEST_F(EditorTest, AReadOnlyValueCellIsNeverWhiteAndANeverReadOneIsPink) {
    const int readOnlyBits =
        FindRow([](IVarAttr* a) { return a->GetModifyMode() == 2 && Kind(a) == 2; });
    const int writable = FindRow([](IVarAttr* a) { return a->GetModifyMode() == 0; });
    ASSERT_GE(readOnlyBits, 0);
    ASSERT_GE(writable, 0);
    // Nothing was read yet.
    EXPECT_EQ(Page().GetCellBackColor(writable, kValueColumn), PAGE_NOT_READ);
    List().EnsureVisible(readOnlyBits, FALSE);
    List().EnsureVisible(writable, FALSE);
    Page().SubmitRefreshQuery();
    host.Refresh().RunCycle();
    // A read turns the cell white when it can be changed, else the row colour.
    const int top = List().GetTopIndex();
    for (int row = top; row < top + List().GetCountPerPage() && row < Page().GetShownCount();
         ++row) {
        IVarAttr* a = Page().GetShownVar(row)->GetAttr();
        const COLORREF back = Page().GetCellBackColor(row, kValueColumn);
        if (Page().GetShownVar(row)->GetLastReadValue().IsEmptyOrNull())
            continue;
        if (a->GetModifyMode() == 2)
            EXPECT_EQ(back, row % 2 == 0 ? PAGE_ROW_EVEN : PAGE_ROW_ODD) << row;
        else
            EXPECT_EQ(back, RGB(255, 255, 255)) << row;
        EXPECT_EQ(Page().GetCellBackColor(row, 1), row % 2 == 0 ? PAGE_ROW_EVEN : PAGE_ROW_ODD);
    }
}

TEST_F(EditorTest, AClickOnAColumnThatIsNotRegisteredOnlySelects) {
    const int row = FindRow([](IVarAttr* a) { return a->GetModifyMode() == 0 && Kind(a) == 0; });
    ASSERT_GE(row, 0);
    EXPECT_EQ(ClickValue(row, 1), None);
    EXPECT_EQ(List().GetSelectionMark(), row);
    EXPECT_TRUE(List().GetItemState(row, LVIS_SELECTED) & LVIS_SELECTED);
}

class DisplayModeTest : public ServoPageTest {};

TEST_F(DisplayModeTest, APerUnitParameterChoosesItsScaleInTheDisplayColumn) {
    ShowGroup("H07");
    const int row = RowOf("H07-03");
    ASSERT_GE(row, 0);
    IVarObjEx* var = Page().GetShownVar(row);
    ASSERT_EQ(var->GetAttr()->GetDisplayFormat(), 2);
    // Narrow the name column so that "显示方式" stands inside the list's width.
    List().SetColumnWidth(2, 60);
    // Other formats offer no editor there.
    const int decimalRow = RowOf("H07-00");
    ASSERT_GE(decimalRow, 0);
    List().ClickCell(decimalRow, 9);
    EXPECT_EQ(List().GetItemCombo().GetSafeHwnd(), nullptr);

    List().ClickCell(row, 9);
    CComboBox& combo = List().GetItemCombo();
    ASSERT_NE(combo.GetSafeHwnd(), nullptr);
    // Raw, percent and the two bases of the module's table.
    ASSERT_EQ(combo.GetCount(), 4);
    CString entry;
    combo.GetLBText(1, entry);
    EXPECT_EQ(entry, "百分比");
    combo.GetLBText(2, entry);
    EXPECT_EQ(entry, "电机额定转矩");
    combo.ChooseEntry(1);
    AfxPumpMessagesUntil([&] { return List().GetItemCombo().GetSafeHwnd() == nullptr; }, 1000);
    EXPECT_EQ(var->GetPerUnitMode(), 1);
    EXPECT_EQ(List().GetItemText(row, 9), "百分比");
    EXPECT_EQ(List().GetItemText(row, 6).Right(1), "%");
    EXPECT_EQ(List().GetItemText(row, 4), "%") << "the unit of a percent figure";
}

} // namespace
} // namespace pt
