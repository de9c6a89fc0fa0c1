// The staging list of the demo servo: set values typed, checked and written in list order,
// refused and dropped writes, the filter, workbooks and parameter files opened into set
// values, saves of the checked rows, and the frame's flows from this page.
#include "TempDir.h"
#include "page_fixture.h"

#include <filesystem>

namespace {

using zorhost::sim::FailureMode;

class StagingTest : public pt::PageTest {
protected:
    void SetUp() override {
        pt::PageTest::SetUp();
        host.Project()->Workspace().SetListStyle(1);
        OpenFrame("ZD3S");
        Page2().ShowAllParameters(Store());
        filterActive = 0;
    }

    void Stage(const char* code, double value, BOOL checked) {
        Var(code)->SetSetValue(Variant::UI2(uint16_t(value)));
        Var(code)->SetChecked(checked);
    }
    size_t SuccessBoxes() {
        size_t n = 0;
        for (const AfxPrompt& p : prompts.prompts)
            n += p.kind == AfxPrompt::MessageBox && p.text == "参数下载成功！";
        return n;
    }

    // A parameter file of this servo holding `value` for H06-02 and H01-00; `otherType`
    // gives it the label of another device type.
    std::string WriteParamFile(uint16_t value, bool otherType) {
        auto* file =
            static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
        file->GetVarList()->CopyFrom(Store());
        const BYTE* own = module->GetElecLabel();
        std::vector<BYTE> label(own, own + module->GetElecLabelSize());
        if (otherType)
            label[1] ^= 0x5A;
        file->SetElecLabel(label.data(), UINT(label.size()));
        for (const char* code : {"H06-02", "H01-00"})
            file->GetVarList()->FindByCode(code)->SetValue(Variant::UI2(value));
        const std::string path = temp / "staging.zorparam";
        EXPECT_TRUE(file->Save(CString(path.c_str())));
        file->Release();
        return path;
    }

    TempDir temp;
};

TEST_F(StagingTest, SetValuesWaitForTheWriteOfCheckedRowsInListOrder) {
    // That a typed value is staged and checked, not written, is the round trip's.
    const int row = RowOf("H06-03", &Page2());
    ASSERT_GE(row, 0);
    Stage("H06-03", 3, TRUE);
    EXPECT_TRUE(Page2().GetPageList().GetCheck(row)); // the box shows the host's mark

    Stage("H06-02", 100, TRUE);
    Stage("H02-01", 1, FALSE); // a set value without a check stays behind
    Stage("H01-00", 3, TRUE);  // never written: not modifiable
    Writes();
    Page2().WriteCheckedRows();
    EXPECT_EQ(Writes(), (std::vector<UINT>{Address("H06-02"), Address("H06-03")}));
    EXPECT_EQ(DriveValue("H06-02"), 100);
    EXPECT_EQ(DriveValue("H06-03"), 3);
    EXPECT_NE(DriveValue("H02-01"), 1);
    EXPECT_EQ(SuccessBoxes(), 1u);
    for (const char* code : {"H06-02", "H06-03", "H01-00"})
        EXPECT_FALSE(Var(code)->IsChecked()) << code;
    EXPECT_FALSE(Page2().GetPageList().GetCheck(row));
    EXPECT_EQ(Var("H06-02")->GetSetValue().vt, VT_UI2); // set values stay
}

TEST_F(StagingTest, RefusedOrDroppedWritesFailAndAreNamed) {
    Stage("H02-01", 1, TRUE);
    Stage("H06-02", 6, TRUE);
    Stage("H06-03", 2, TRUE);
    drive->SetFailure(FailureMode::FailWrites, {Address("H02-01")});
    Page2().WriteCheckedRows();
    EXPECT_EQ(SuccessBoxes(), 0u);
    EXPECT_EQ(DriveValue("H06-02"), 6); // the rest still went
    auto failures = host.Transfer().LastDownloadFailures();
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0].address, Address("H02-01"));
    EXPECT_GE(failures[0].reason.Find("H02-01"), 0) << failures[0].reason.GetString();
    EXPECT_FALSE(Var("H02-01")->IsChecked()); // marks go on failure too

    // The drive drops after the first write: what was left fails without a try.
    drive->ClearFailures();
    for (const char* code : {"H02-01", "H06-02", "H06-03"})
        Var(code)->SetChecked(TRUE);
    host.Transfer().SetStepHook([&](int done, int) {
        if (done == 1)
            drive->SetFailure(FailureMode::Offline);
    });
    Page2().WriteCheckedRows();
    host.Transfer().SetStepHook({});
    failures = host.Transfer().LastDownloadFailures();
    ASSERT_EQ(failures.size(), 2u);
    EXPECT_EQ(failures[0].address, Address("H06-02"));
    EXPECT_EQ(failures[1].address, Address("H06-03"));
    EXPECT_EQ(SuccessBoxes(), 0u);
}

TEST_F(StagingTest, WriteAllLeavesOutH00H01AndEmptySetValues) {
    Stage("H00-00", 2000, FALSE);
    Stage("H06-02", 9, FALSE);
    Var("H06-03")->SetSetValue(Variant());
    Writes();
    Page2().WriteAllSetValues();
    EXPECT_EQ(Writes(), std::vector<UINT>{Address("H06-02")});
    EXPECT_EQ(SuccessBoxes(), 1u);
    // Offline: the warning, nothing sent.
    host.SetOnline("ZD3S", false);
    Page2().WriteAllSetValues();
    EXPECT_TRUE(Writes().empty());
    ASSERT_NE(prompts.Last(AfxPrompt::MessageBox), nullptr);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "设备离线.");
}

TEST_F(StagingTest, FilterButtonShowsCheckedRowsAndCancels) {
    const int all = Page2().GetShownCount();
    Var("H03-00")->SetChecked(TRUE);
    Var("H06-02")->SetChecked(TRUE);
    Page2().ApplyFilterChoice(ID_FILTER_CHECKED);
    EXPECT_EQ(filterActive, 1);
    EXPECT_EQ(Page2().GetShownCount(), 2);
    CString text;
    Page2().GetFilterButton().GetWindowText(text);
    EXPECT_EQ(text, "取消筛选");
    Page2().ApplyFilterChoice(0);
    EXPECT_EQ(filterActive, 0);
    EXPECT_EQ(Page2().GetShownCount(), all);
    // Comparing with the drive needs the drive: offline leaves everything as it was.
    host.SetOnline("ZD3S", false);
    Page2().ApplyFilterChoice(ID_FILTER_SET_NOT_CURRENT);
    EXPECT_EQ(Page2().GetListFilter(), LIST_FILTER_ALL);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "设备离线，无法进行当前值比较！");
}

TEST_F(StagingTest, WorkbookGoesToTheDrivesAndOnlyLowerCaseExtensionsAreWorkbooks) {
    const std::filesystem::path source =
        std::filesystem::path(PARMIRA_SOURCE_DIR) / "tests/workbook/data/recipe.xlsx";
    const std::filesystem::path dir{temp.Path()};
    std::filesystem::copy_file(source, dir / "RECIPE.XLSX",
                               std::filesystem::copy_options::overwrite_existing);
    // Upper case: taken for a parameter file, which this workbook is not; nothing is sent.
    Writes();
    prompts.ChooseFiles({CString((dir / "RECIPE.XLSX").string().c_str())});
    Page2().OpenRecipe();
    EXPECT_TRUE(Writes().empty());
    // Lower case: read as a workbook and sent to module 1 (this drive) at address 0x1A.
    prompts.ChooseFiles({CString(source.string().c_str())});
    Page2().OpenRecipe();
    EXPECT_EQ(Writes(), std::vector<UINT>{26u});
    EXPECT_EQ(SuccessBoxes(), 0u); // this route is not listened to
}

TEST_F(StagingTest, ParameterFileFillsSetValuesAfterTheTypeQuestion) {
    const std::string path = WriteParamFile(1234, true);
    Stage("H06-03", 2, TRUE);
    Writes();
    // Another device type, answered No: nothing changes.
    prompts.ChooseFiles({CString(path.c_str())});
    prompts.AnswerMessageBox(IDNO);
    Page2().OpenRecipe();
    ASSERT_NE(prompts.Last(AfxPrompt::MessageBox), nullptr);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Buttons(), UINT(MB_YESNO));
    EXPECT_TRUE(Var("H06-03")->IsChecked());
    EXPECT_TRUE(Var("H06-02")->GetSetValue().IsEmpty());
    // Yes: the file replaces all set values; a read-only parameter isn't taken.
    prompts.ChooseFiles({CString(path.c_str())});
    prompts.AnswerMessageBox(IDYES);
    Page2().OpenRecipe();
    EXPECT_EQ(Var("H06-02")->GetSetValue(), Variant::UI2(1234));
    EXPECT_TRUE(Var("H06-02")->IsChecked());
    EXPECT_TRUE(Var("H01-00")->GetSetValue().IsEmpty());
    EXPECT_FALSE(Var("H01-00")->IsChecked());
    EXPECT_TRUE(Writes().empty()); // opening writes nothing
}

// Saves of the checked rows: of their staged set values, or of what the drive holds after
// "上传并保存(所有勾选项)" read them; a read the drive refuses leaves no file dialog and no file.
TEST_F(StagingTest, SavesOfTheCheckedRowsTakeTheirSetValuesOrWhatTheDriveHolds) {
    const auto open = [&](const std::string& path) {
        auto* file =
            static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
        file->LoadContext(module);
        EXPECT_TRUE(file->Open(CString(path.c_str())));
        return file;
    };
    Stage("H06-02", 1500, TRUE);
    Stage("H06-03", 2, FALSE);
    const std::string staged = temp / "staged.zorparam";
    ASSERT_TRUE(Page2().SaveSetValuesAs(CString(staged.c_str())));
    IParamFile* file = open(staged);
    ASSERT_EQ(file->GetVarList()->GetCount(), 1);
    EXPECT_EQ(file->GetVarList()->FindByCode("H06-02")->GetValue(), Variant::UI2(1500));
    file->Release();
    EXPECT_FALSE(Page2().SaveSetValuesAs(CString((staged + ".txt").c_str())));

    ASSERT_TRUE(Page2().GetDlgItem(int(IDC_PAGE_SAVE_CHECKED))->IsWindowEnabled());
    Var("H06-03")->SetChecked(TRUE);
    Var("H06-02")->SetValue(Variant::UI2(7777)); // stale until the upload replaces it
    const std::string path = temp / "uploaded.zorparam";
    auto click = [&] {
        Page2().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE_SAVE_CHECKED, BN_CLICKED), 0);
    };
    prompts.ChooseFiles({CString(path.c_str())});
    click();
    file = open(path);
    EXPECT_EQ(file->GetVarList()->GetCount(), 2);
    IVarObjEx* saved = file->GetVarList()->FindByCode("H06-02");
    ASSERT_NE(saved, nullptr);
    EXPECT_FALSE(Var("H06-02")->GetValue() == Variant::UI2(7777));
    EXPECT_TRUE(saved->GetValue() == Var("H06-02")->GetValue());
    file->Release();
    std::filesystem::remove(path);

    drive->SetFailure(FailureMode::FailReads, {Address("H06-03")});
    const size_t dialogs = prompts.Count(AfxPrompt::FileDialog);
    const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
    click();
    EXPECT_EQ(prompts.Count(AfxPrompt::FileDialog), dialogs);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes);
    EXPECT_FALSE(std::filesystem::exists(path));

    drive->ClearFailures();
    host.SetOnline("ZD3S", false);
    click();
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes + 1);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "设备离线.");
    EXPECT_EQ(prompts.Count(AfxPrompt::FileDialog), dialogs);
}

// The buttons that lead to the frame's flows are live, and "更新属性", which this page
// shows for every device, refuses an inverter without attribute update itself.
TEST_F(StagingTest, FrameFlowButtonsAreLiveAndAttributeUpdateRefusesUnsupportedDevice) {
    for (UINT id : {IDC_PAGE2_UPLOAD_SAVE, IDC_PAGE2_COMPARE, IDC_PAGE_UPDATE_ATTRIBUTES})
        EXPECT_TRUE(Page2().GetDlgItem(int(id))->IsWindowEnabled()) << id;
    // One axis: nothing to copy to.
    EXPECT_FALSE(Page2().GetDlgItem(int(IDC_PAGE2_AXIS_COPY))->IsWindowEnabled());
    prompts.CancelFileDialog();
    Page2().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE2_UPLOAD_SAVE, BN_CLICKED), 0);
    ASSERT_NE(prompts.Last(AfxPrompt::FileDialog), nullptr); // read, then asked where to
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->text, "AllVar");

    CloseFrame();
    OpenFrame("ZV5");
    EXPECT_TRUE(Page2().GetDlgItem(int(IDC_PAGE_UPDATE_ATTRIBUTES))->IsWindowVisible());
    const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
    Page2().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE_UPDATE_ATTRIBUTES, BN_CLICKED), 0);
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes + 1);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "当前设备不支持读写属性");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Icon(), UINT(MB_ICONWARNING));
}

TEST_F(StagingTest, FrameOpenAndDownloadWritesTheChosenFile) {
    const std::string path = WriteParamFile(4321, false);
    std::vector<CString> asked;
    host.Transfer().SetFileChooser([&](HWND) { return CString(path.c_str()); });
    host.Transfer().SetQuestion([&](HWND, const CString& text) {
        asked.push_back(text);
        return true;
    });
    table->OpenAndDownloadCommand();
    EXPECT_EQ(asked.size(), 1u); // the confirmation only: same device type
    EXPECT_EQ(DriveValue("H06-02"), 4321);
    EXPECT_NE(DriveValue("H01-00"), 4321); // read-only parameters are left out
    host.Transfer().SetFileChooser({});
    host.Transfer().SetQuestion({});
}

} // namespace
