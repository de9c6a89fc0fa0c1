// The first page's controls, its start-up per device, the attribute update checks and
// the tips over packed values.
#include "page_fixture.h"

#include <afx/afxqt.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

#include <algorithm>

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
    EXPECT_TRUE(List().IsEditableColumn(3));
    EXPECT_TRUE(List().IsEditableColumn(9));
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

TEST_F(Page1Test, AnInverterWithoutAttributeUpdateHidesTheButtonAndSaysSoWhenAsked) {
    OpenFrame("ZV5");
    EXPECT_FALSE(Visible(IDC_PAGE_UPDATE_ATTRIBUTES));
    Page().UpdateAttributes();
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "当前设备不支持读写属性");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Icon(), UINT(MB_ICONWARNING));
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

TEST_F(Page1Test, AHiddenValueShowsStarsAndAPasswordEdit) {
    OpenFrame("ZD3S");
    const int row = FindRow([](IVarAttr* a) { return a->GetDisplayFormat() == 4; });
    ASSERT_GE(row, 0) << "the demo servo shows a hidden parameter";
    EXPECT_EQ(List().GetItemText(row, 3), "******");
    EXPECT_EQ(List().GetItemText(row, 5), "******");
}

TEST_F(Page1Test, TheEndOfASynchronisingUploadRefillsWithTheFilterThenReturnsToAllRows) {
    OpenFrame("ZD3S");
    ShowGroup("H03");
    ReadCycle();
    ReadCycle();
    const int all = Page().GetShownCount();
    IVarObjEx* changed = Page().GetShownVar(0);
    drive->PokeRaw(changed->GetInstanceAddress(), 7);
    ReadCycle();
    // Waiting for the upload of "已修改参数".
    Page().SetListFilter(LIST_FILTER_MODIFIED);
    Page().OnModuleUploaded("ZV5", TRUE);
    EXPECT_EQ(Page().GetShownCount(), all) << "another module's upload refills nothing";
    EXPECT_EQ(Page().GetListFilter(), LIST_FILTER_ALL);
    Page().SetListFilter(LIST_FILTER_MODIFIED);
    Page().OnModuleUploaded("ZD3S", TRUE);
    EXPECT_EQ(Page().GetListFilter(), LIST_FILTER_ALL);
    std::vector<IVarObjEx*> rows;
    Page().CollectShown(rows);
    EXPECT_LT(int(rows.size()), Store()->GetCount() / 4);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), changed), 1);
}

} // namespace
} // namespace pt
