// The first page of the live list: its controls and start-up per device, the attribute
// update checks, the tips over packed values, which editor a click opens, the character
// rules of the cell edits, the sorting list, and the level a user logs in to.
#include "TempDir.h"
#include "page_fixture.h"

#include "controls/AMSEdit.h"
#include "groups/LoginDialog.h"
#include "pages/ListCtrlEx.h"

#include <afx/afxqt.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

namespace pt {
namespace {

class Page1Test : public PageTest {
protected:
    BOOL Visible(UINT id) { return Page().GetDlgItem(int(id))->IsWindowVisible(); }
    BOOL Enabled(UINT id) { return Page().GetDlgItem(int(id))->IsWindowEnabled(); }
};

TEST_F(Page1Test, StartUpOfTheSingleAxisServo) {
    OpenFrame("ZD3S");
    // No axis copy on this device; attribute update is supported.
    EXPECT_FALSE(Visible(IDC_PAGE1_AXIS_COPY));
    EXPECT_TRUE(Visible(IDC_PAGE_UPDATE_ATTRIBUTES));
    EXPECT_FALSE(Visible(IDC_PAGE_SAVE_CHECKED));
    for (UINT id : {IDC_PAGE1_UPLOAD_SAVE, IDC_PAGE1_COMPARE, IDC_PAGE1_OPEN_DOWNLOAD}) {
        EXPECT_TRUE(Visible(id)) << id;
        EXPECT_TRUE(Enabled(id)) << id;
    }
    EXPECT_GT(Page().GetAccessBox().GetCount(), 0);
    // Single-axis layout: 13 columns, value in 3, display mode in 9, hidden columns 0 wide.
    ASSERT_EQ(List().GetColumnCount(), 13);
    EXPECT_EQ(List().GetColumnText(3), "当前值");
    EXPECT_EQ(List().GetColumnText(9), "显示方式");
    EXPECT_EQ(List().GetColumnWidth(0), 0);
    EXPECT_EQ(List().GetColumnWidth(12), 110);
    EXPECT_FALSE(List().IsEditableColumn(4));
    // Cells of a known row.
    const int row = RowOf("H00-00");
    ASSERT_GE(row, 0);
    CString rowText;
    rowText.Format("%03d", row + 1);
    EXPECT_EQ(List().GetItemText(row, 0), rowText);
    EXPECT_EQ(List().GetItemText(row, 1), "H00-00");
    EXPECT_EQ(List().GetItemText(row, 12), "0x0000");
    EXPECT_EQ(List().GetItemText(row, 11), "0");
    // A hidden value shows stars.
    const int hidden = FindRow([](IVarAttr* a) { return a->GetDisplayFormat() == 4; });
    ASSERT_GE(hidden, 0) << "the demo servo shows a hidden parameter";
    EXPECT_EQ(List().GetItemText(hidden, 3), "******");
    EXPECT_EQ(List().GetItemText(hidden, 5), "******");
}

TEST_F(Page1Test, TheFourAxisDriveGetsTheMultiAxisLayoutAndAxisCopy) {
    OpenFrame("ZD4M");
    EXPECT_TRUE(Visible(IDC_PAGE1_AXIS_COPY));
    ASSERT_EQ(List().GetColumnCount(), 13);
    EXPECT_EQ(List().GetColumnText(1), "轴号");
    EXPECT_EQ(List().GetColumnText(4), "当前值");
    EXPECT_TRUE(List().IsEditableColumn(4));
    EXPECT_FALSE(List().IsEditableColumn(3));
    EXPECT_FALSE(List().IsEditableColumn(9));
    ASSERT_GT(Page().GetShownCount(), 0);
    EXPECT_EQ(List().GetItemText(0, 11), "");
}

// What the update says when asked anyway is the staging list's, which shows the button.
TEST_F(Page1Test, AnInverterWithoutAttributeUpdateHidesTheButton) {
    OpenFrame("ZV5");
    EXPECT_FALSE(Visible(IDC_PAGE_UPDATE_ATTRIBUTES));
}

TEST_F(Page1Test, UpdateAttributesAsksOnlyAnOnlineDevice) {
    OpenFrame("ZD3S");
    host.SetOnline("ZD3S", false);
    Page().UpdateAttributes();
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "设备离线.");
    EXPECT_TRUE(prompts.Last(AfxPrompt::MessageBox)->caption.IsEmpty());

    host.SetOnline("ZD3S", true);
    prompts.AnswerMessageBox(IDNO);
    Page().UpdateAttributes();
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 2u);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "是否要从驱动器同步参数？");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Buttons(), UINT(MB_YESNO));
}

TEST_F(Page1Test, TheTipOverAPackedValueListsEachFieldWithItsValue) {
    OpenFrame("ZD3S");
    ShowGroup("H03");
    const int row = RowOf("H03-00");
    ASSERT_GE(row, 0);
    Var("H03-00")->SetValue(Variant::UI2(5));
    const CString tip = Page().GetToolTipText(row, 3);
    EXPECT_EQ(tip.Left(8), "输入功能1  1");
    EXPECT_GE(tip.Find("输入功能2  0\n"), 0);
    EXPECT_GE(tip.Find("输入功能3  1\n"), 0);
    // Other cells and plain values have no tip.
    EXPECT_TRUE(Page().GetToolTipText(row, 2).IsEmpty());
    const int plain = RowOf("H03-03");
    ASSERT_GE(plain, 0);
    EXPECT_TRUE(Page().GetToolTipText(plain, 3).IsEmpty());

    // The mouse over the cell brings the tip up after its short delay.
    CRect cell;
    ASSERT_TRUE(List().GetSubItemRect(row, 3, LVIR_LABEL, cell));
    QWidget* view = AfxWidgetFromHandle(List().GetSafeHwnd());
    ASSERT_NE(view, nullptr);
    auto* area = qobject_cast<QAbstractScrollArea*>(view);
    ASSERT_NE(area, nullptr);
    QWidget* port = area->viewport();
    const QPoint at = port->mapFrom(view, QPoint(cell.CenterPoint().x, cell.CenterPoint().y));
    QMouseEvent move(QEvent::MouseMove, at, port->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(port, &move);
    EXPECT_EQ(List().GetToolTip().GetText(), tip);
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return List().GetToolTip().IsTipShown() != 0; }, 3000));
}

// The items from `first` on and all below them, expanded or not.
int CountTreeItems(CTreeCtrl& tree, HTREEITEM first) {
    int n = 0;
    for (HTREEITEM h = first; h != nullptr; h = tree.GetNextSiblingItem(h))
        n += 1 + CountTreeItems(tree, tree.GetChildItem(h));
    return n;
}

// The demo servo seen by a user who logs in: the list and the tree follow the level the
// drive grants, through the access box, the login dialog and the authority poll.
TEST_F(Page1Test, LoggingInWithTheFactoryCodeBringsTheHiddenGroupsAndRows) {
    OpenFrame("ZD3S");
    // One read of the drive, then the 2 s poll of its authority.
    const auto readAndPoll = [&] {
        ReadCycle();
        Page().PollAuthority();
        Pump();
    };
    CTreeCtrl& tree = table->GetTree();
    // A user of the basic level, as the drive grants after power-on.
    table->ApplyAccessLevel(module, 1);
    readAndPoll();
    ASSERT_EQ(module->GetAccessLevel(), 1);
    const int rowsBefore = Page().GetShownCount();
    const int itemsBefore = CountTreeItems(tree, tree.GetRootItem());
    ShootIfAsked(&parent, "level_before.png");

    CAfxModalDriver driver([&](CDialog& dlg) {
        AfxTestTypeText(dlg.GetDlgItem(IDC_LOGIN_PASSWORD), "2468");
        ClickOk(dlg);
    });
    CNoWheelComboBox& box = Page().GetAccessBox();
    box.SetCurSel(3); // "厂家参数", as a user chooses it
    Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE_ACCESS, CBN_SELCHANGE),
                       LPARAM(box.GetSafeHwnd()));
    EXPECT_EQ(driver.runs, 1);
    // The code went to the drive; the tool's level rises once the drive says so.
    readAndPoll();
    EXPECT_EQ(module->GetAccessLevel(), 3);
    EXPECT_GT(Page().GetShownCount(), rowsBefore);
    EXPECT_GT(CountTreeItems(tree, tree.GetRootItem()), itemsBefore);
    ShootIfAsked(&parent, "level_after.png");
}

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
TEST_F(EditorTest, ClickOpensTheEditorOfModifyModeAndKindOrOnlySelects) {
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
    // A click on a column that is not registered only selects.
    const int row = FindRow([](IVarAttr* a) { return a->GetModifyMode() == 0 && Kind(a) == 0; });
    ASSERT_GE(row, 0);
    EXPECT_EQ(ClickValue(row, 1), None);
    EXPECT_EQ(List().GetSelectionMark(), row);
    EXPECT_TRUE(List().GetItemState(row, LVIS_SELECTED) & LVIS_SELECTED);
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

TEST_F(EditorTest, APerUnitParameterChoosesItsScaleInTheDisplayColumn) {
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

// Typed key by key into the list's numeric cell edit, as a user types.
TEST(NumericCellEdit, TypedKeysKeepTheFirstPointAndEndAtThePlaces) {
    struct Row {
        int whole;
        int places;
        BOOL negative;
        const char* typed;
        const char* shown;
    };
    const Row rows[] = {
        {16, 0, TRUE, "12.5", "12."}, // the point ends the figure: never 125
        {16, 1, TRUE, "12.5", "12.5"},    {16, 2, TRUE, "12.5", "12.5"},
        {16, 2, TRUE, "12.345", "12.34"}, {16, 2, TRUE, "-12.5", "-12.5"},
        {16, 2, FALSE, "-12.5", "12.5"}, // no minus where negatives are refused
        {16, 2, FALSE, "7-", "7"},        {3, 1, FALSE, "12345.6", "123.6"},
        {16, 4, FALSE, "1.2.3a", "1.23"}, // a second point and letters are dropped
        {16, 2, TRUE, "12-5", "-5"},      // a minus starts a new negative figure
        {16, 2, TRUE, "--12", "-12"},
    };
    CWnd parent;
    ASSERT_TRUE(parent.Create(nullptr, "", WS_POPUP, CRect(0, 0, 200, 50), nullptr, 0));
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.typed << " places " << r.places);
        CItemEdit edit;
        ASSERT_TRUE(edit.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, 200, 24), &parent, 1));
        edit.SetMaxWholeDigits(r.whole);
        edit.AllowNegative(r.negative);
        edit.SetMaxDecimalPlaces(r.places);
        edit.SetFocus();
        TypeKeys(&edit, r.typed);
        EXPECT_EQ(edit.GetWindowTextString(), r.shown);
        edit.DestroyWindow();
    }
    // A minus key in the cell edit starts a new negative figure; the rule behind it still
    // drops a minus anywhere but in front.
    EXPECT_EQ(CAMSNumericEdit::ValidText("1-2", 16, 2, TRUE), "12");
}

class SortingList : public CVarListCtrlEx {
public:
    void ClickHeader(int column) {
        NMLISTVIEW nm{};
        nm.hdr.code = LVN_COLUMNCLICK;
        nm.iItem = -1;
        nm.iSubItem = column;
        LRESULT result = 0;
        OnChildNotify(WM_NOTIFY, 0, LPARAM(&nm), &result);
    }
};

TEST(VarListSorting, AHeaderClickSortsFlipsOnTheSameColumnAndLeavesColumnZero) {
    CWnd parent;
    ASSERT_TRUE(parent.Create(nullptr, "", WS_POPUP, CRect(0, 0, 300, 200), nullptr, 0));
    SortingList list;
    ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT, CRect(0, 0, 300, 200), &parent, 1));
    list.InsertColumn(0, "row", LVCFMT_LEFT, 40);
    list.InsertColumn(1, "code", LVCFMT_LEFT, 80);
    const char* codes[] = {"H02", "H00", "H01"};
    for (int i = 0; i < 3; ++i) {
        list.InsertItem(i, std::to_string(3 - i).c_str());
        list.SetItemText(i, 1, codes[i]);
    }
    auto column = [&](int c) {
        std::string s;
        for (int i = 0; i < list.GetItemCount(); ++i)
            s += list.GetItemText(i, c).GetString() + std::string(" ");
        return s;
    };
    list.ClickHeader(0);
    EXPECT_EQ(column(1), "H02 H00 H01 ");
    list.ClickHeader(1);
    EXPECT_EQ(column(1), "H00 H01 H02 ");
    EXPECT_TRUE(list.IsSortedAscending());
    list.ClickHeader(1);
    EXPECT_EQ(column(1), "H02 H01 H00 ");
    EXPECT_FALSE(list.IsSortedAscending());
    list.DestroyWindow();
    parent.DestroyWindow();
}

} // namespace
} // namespace pt
