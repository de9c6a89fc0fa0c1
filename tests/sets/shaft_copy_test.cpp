// Axis copy on the four-axis demo drive: what differs between two axes, what reaches the
// drive, and the refusals that come before any work.
#include "sets_fixture.h"

#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IRWDataItem.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/ShaftCopyDialog.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstring>
#include <functional>

namespace {

class ShaftCopyTest : public SetsTest {
protected:
    // Runs the dialog on the four-axis drive; `act` works inside it.
    int RunDialog(const std::function<void(CShaftCopyDialog&)>& act) {
        CShaftCopyDialog dlg;
        dlg.SetModule(host.Module("ZD4M"));
        CAfxModalDriver driver([&](CDialog& d) { act(static_cast<CShaftCopyDialog&>(d)); });
        return int(dlg.DoModal());
    }
    // A click on the row's check box: the list turns it, then tells the dialog.
    static void ClickCheckBox(CShaftCopyDialog& dlg, int row) {
        CListCtrl& list = dlg.GetList();
        CRect r;
        ASSERT_TRUE(list.GetSubItemRect(row, 0, LVIR_BOUNDS, r));
        list.SetCheck(row, !list.GetCheck(row));
        NMITEMACTIVATE nm{};
        nm.hdr.hwndFrom = list.GetSafeHwnd();
        nm.hdr.idFrom = IDC_SHAFT_LIST;
        nm.hdr.code = NM_CLICK;
        nm.iItem = row;
        nm.ptAction = POINT{r.left + 6, (r.top + r.bottom) / 2};
        dlg.SendMessage(WM_NOTIFY, IDC_SHAFT_LIST, reinterpret_cast<LPARAM>(&nm));
    }
};

TEST_F(ShaftCopyTest, WritesOnlyTheTickedDifferingParametersOfTheTargetAxis) {
    Poke("ZD4M", "A1.H05-06", 800); // positioning window, 734 on every axis
    Poke("ZD4M", "A1.H06-02", 200); // acceleration time, 0 on every axis
    const int uploads = host.Transfer().UploadsEnded();
    const int result = RunDialog([&](CShaftCopyDialog& dlg) {
        Select(dlg, IDC_SHAFT_TARGET_AXIS, 1);
        Press(dlg, IDC_SHAFT_COMPARE);
        ASSERT_EQ(dlg.GetRows().GetCount(), 2);
        EXPECT_EQ(dlg.GetList().GetItemCount(), 2);
        EXPECT_EQ(dlg.GetCellText(0, 1), "H05-06");
        EXPECT_EQ(dlg.GetCellText(0, 3), "734"); // what the target has
        EXPECT_EQ(dlg.GetCellText(0, 4), "800"); // what it is to take
        EXPECT_TRUE(dlg.GetRows().GetAt(0)->IsRecordChecked());
        EXPECT_TRUE(dlg.GetList().GetCheck(1));
        ShootIfAsked(&dlg, "axis_copy_dialog.png");
        ClickCheckBox(dlg, 1);
        EXPECT_FALSE(dlg.GetRows().GetAt(1)->IsRecordChecked());
        Press(dlg, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(host.Transfer().UploadsEnded(), uploads + 1); // the target was read first
    EXPECT_EQ(Peek("ZD4M", "A2.H05-06"), 800);
    EXPECT_EQ(Peek("ZD4M", "A2.H06-02"), 0);
    EXPECT_EQ(Peek("ZD4M", "A3.H05-06"), 734);
}

// "全选" off before a compare gives rows that are all unticked; "确定" then sends none.
TEST_F(ShaftCopyTest, SelectAllOffGivesUntickedRowsAndWritesNothing) {
    Poke("ZD4M", "A3.H06-02", 300);
    RunDialog([&](CShaftCopyDialog& dlg) {
        Select(dlg, IDC_SHAFT_SOURCE_AXIS, 2);
        Select(dlg, IDC_SHAFT_TARGET_AXIS, 3);
        dlg.CheckDlgButton(int(IDC_SHAFT_SELECT_ALL), BST_UNCHECKED);
        Press(dlg, IDC_SHAFT_SELECT_ALL);
        Press(dlg, IDC_SHAFT_COMPARE);
        ASSERT_EQ(dlg.GetRows().GetCount(), 1);
        EXPECT_FALSE(dlg.GetRows().GetAt(0)->IsRecordChecked());
        EXPECT_FALSE(dlg.GetList().GetCheck(0));
        Press(dlg, IDOK);
    });
    EXPECT_EQ(Peek("ZD4M", "A4.H06-02"), 0);
}

// Mode 1 writes, without a compare, every parameter of the target axis that the shown
// module's level lets the user see, with the source axis's values; the file opens as a
// file of the target drive.
TEST_F(ShaftCopyTest, TheFileOfModeOneHoldsTheSourceValuesInTheTargetsShape) {
    Poke("ZD4M", "A1.H06-02", 200);
    host.Transfer().UploadModule(nullptr, "ZD4M");
    IHostDeviceModule* module = host.Module("ZD4M");
    module->SetAccessLevel(1); // the user's level: the motor data (level 3) stays out
    const std::string path = dir / "axis2.zorparam";
    prompts.ChooseFiles({CString(path.c_str())});
    EXPECT_EQ(RunDialog([&](CShaftCopyDialog& dlg) {
                  Select(dlg, IDC_SHAFT_TARGET_AXIS, 1);
                  dlg.CheckRadioButton(int(IDC_SHAFT_MODE_DOWNLOAD), int(IDC_SHAFT_MODE_FILE),
                                       int(IDC_SHAFT_MODE_FILE));
                  Press(dlg, IDOK);
              }),
              IDOK);
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->text, "轴2");
    EXPECT_EQ(Boxes(("保存到'" + path + "'成功。").c_str()), 1u);

    auto* file = static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
    ASSERT_NE(file, nullptr);
    file->LoadContext(module);
    ASSERT_TRUE(file->Open(CString(path.c_str())));
    ASSERT_EQ(file->GetElecLabelSize(), module->GetElecLabelSize());
    EXPECT_EQ(std::memcmp(file->GetElecLabel(), module->GetElecLabel(), module->GetElecLabelSize()),
              0);
    IParamFileTable* table = file->GetVarList();
    IVarStore* store = module->GetVarList();
    IVarObjEx* copied = table->FindByAddress(store->FindByCode("A2.H06-02")->GetInstanceAddress());
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(host.VarUtil().VariantAsDouble(copied->GetValue()), 200);
    EXPECT_EQ(table->FindByAddress(store->FindByCode("A1.H06-02")->GetInstanceAddress()), nullptr);
    EXPECT_EQ(table->FindByAddress(store->FindByCode("A2.H00-03")->GetInstanceAddress()), nullptr);
    EXPECT_GT(table->GetCount(), 10);
    for (int i = 0; i < table->GetCount(); ++i) {
        IVarAttr* attr = table->GetAt(i)->GetAttr();
        ASSERT_NE(attr, nullptr);
        EXPECT_LE(attr->GetAccessLevel(), module->GetAccessLevel());
    }
    file->Release();
}

// A compare waits for the target's upload. When the application quits or the dialog's
// window goes before the end comes, the wait gives up: no compare, no rows, and the modal
// run returns.
TEST_F(ShaftCopyTest, TheUploadWaitGivesUpWhenTheApplicationQuitsOrTheDialogGoes) {
    Poke("ZD4M", "A1.H06-02", 200); // axes 1 and 2 differ: a compare would list it
    enum End { Quit, Destroyed };
    for (End end : {Quit, Destroyed}) {
        bool ended = false, pressReturnedAfterEnd = false;
        int rows = -1;
        // Run inside the application's loop, which is what a quit ends.
        QTimer::singleShot(0, qApp, [&] {
            RunDialog([&](CShaftCopyDialog& dlg) {
                Select(dlg, IDC_SHAFT_TARGET_AXIS, 1);
                // The end of the upload doesn't reach the dialog, as with a slow drive.
                host.Bus().Unsubscribe(IID_IMessage_ModuleUploadEvent,
                                       AsSink<IMessage_ModuleUploadEvent>(&dlg));
                QTimer::singleShot(0, qApp, [&] {
                    ended = true;
                    if (end == Quit)
                        QCoreApplication::exit(0);
                    else
                        dlg.DestroyWindow();
                });
                Press(dlg, IDC_SHAFT_COMPARE);
                pressReturnedAfterEnd = ended;
                rows = dlg.GetRows().GetCount();
            });
            if (end == Destroyed)
                QCoreApplication::exit(0);
        });
        QCoreApplication::exec();
        EXPECT_TRUE(pressReturnedAfterEnd) << end;
        EXPECT_EQ(rows, 0) << end;
    }
}

// Different series, the same axis twice and an offline target are refused before anything
// is read or listed; the dialog stays open for "确定" on the same axis.
TEST_F(ShaftCopyTest, RefusesOtherSeriesTheSameAxisAndAnOfflineTarget) {
    const int uploads = host.Transfer().UploadsEnded();
    RunDialog([&](CShaftCopyDialog& dlg) {
        Press(dlg, IDC_SHAFT_COMPARE); // axis 1 onto axis 1
        EXPECT_EQ(Boxes("不能选择相同的轴,请重新选择."), 1u);
        Press(dlg, IDOK);
        EXPECT_EQ(Boxes("不能选择相同的轴,请重新选择."), 2u);
        EXPECT_TRUE(dlg.IsWindowVisible());

        Select(dlg, IDC_SHAFT_TARGET_DEVICE, 0); // the single-axis servo
        Press(dlg, IDC_SHAFT_COMPARE);
        EXPECT_EQ(Boxes("不同设备之间不能进行轴拷贝！"), 1u);

        Select(dlg, IDC_SHAFT_TARGET_DEVICE, 1);
        Select(dlg, IDC_SHAFT_TARGET_AXIS, 1);
        host.SetOnline("ZD4M", false);
        Press(dlg, IDC_SHAFT_COMPARE);
        EXPECT_EQ(Boxes("设备离线."), 1u);
        EXPECT_EQ(dlg.GetRows().GetCount(), 0);
        Press(dlg, IDCANCEL);
    });
    EXPECT_EQ(host.Transfer().UploadsEnded(), uploads);
}

} // namespace
