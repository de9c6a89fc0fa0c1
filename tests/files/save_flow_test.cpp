// Upload and save on the real frame of the demo servo (a device of line 13): what is
// asked, what is read from the drive, what lands in the file; and the synchronising
// refresh of the modified parameters.
#include "files_fixture.h"
#include "page_fixture.h"

#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IVarObjEx.h"
#include "table/TableResources.h"
#include "zorhost/files/ParamFile.h"

#include <afx/afxtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace {

using zorhost::sim::DriveRequest;
using zorhost::sim::FailureMode;

class SaveFlowTest : public pt::PageTest {
protected:
    void SetUp() override {
        pt::PageTest::SetUp();
        ASSERT_TRUE(dir.isValid());
        OpenFrame("ZD3S");
        drive->TakeRequests();
    }
    std::string Path(const char* name) const { return dir.path().toStdString() + "/" + name; }
    std::set<CString> MembersOf(const char* group) {
        std::set<CString> keys;
        IGroupNode* g = Store()->GetGroupRoot(0)->FindByName(group);
        for (int i = 0; g != nullptr && i < g->GetMemberCount(); ++i) {
            CString key;
            g->GetMemberAt(i, key);
            keys.insert(key);
        }
        return keys;
    }
    std::set<UINT> Reads() {
        std::set<UINT> addresses;
        for (const DriveRequest& r : drive->TakeRequests())
            if (r.kind == DriveRequest::Read)
                for (UINT a = r.address; a < r.address + r.count; ++a)
                    addresses.insert(a);
        return addresses;
    }
    // Keys of the variables of a saved parameter file.
    std::set<CString> FileKeys(const std::string& path, zorhost::files::CParamFile& file) {
        EXPECT_TRUE(file.Open(CString(path))) << file.LastError();
        std::set<CString> keys;
        for (int i = 0; i < file.GetVarList()->GetCount(); ++i) {
            CString key;
            file.GetVarList()->GetAt(i)->GetInstanceGuid(key);
            keys.insert(key);
        }
        return keys;
    }

    QTemporaryDir dir;
};

// Nothing selected on line 13: the question about H00 and H01 decides both what is read and
// what is saved.
TEST_F(SaveFlowTest, FactoryGroupQuestionDecidesWhatIsReadAndSaved) {
    table->GetTree().SelectItem(nullptr);
    const std::set<CString> h00 = MembersOf("H00"), h01 = MembersOf("H01"), h02 = MembersOf("H02");
    ASSERT_FALSE(h00.empty());
    for (const bool keep : {false, true}) {
        SCOPED_TRACE(keep);
        CAfxRecordingResponder prompts;
        prompts.AnswerMessageBox(keep ? IDYES : IDNO);
        const std::string path = Path(keep ? "with.zorparam" : "without.zorparam");
        prompts.ChooseFiles({CString(path)});
        Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE1_UPLOAD_SAVE, BN_CLICKED), 0);
        ASSERT_GE(prompts.prompts.size(), 3u);
        EXPECT_EQ(prompts.prompts[0].text, "是否保存H00组和H01组？");
        EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text.str(), "保存到'" + path + "'成功。");
        EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->caption, "");

        const std::set<UINT> reads = Reads();
        EXPECT_EQ(reads.count(Address("H00-00")) != 0, keep);
        EXPECT_NE(reads.count(Address("H02-00")), 0u);

        zorhost::files::CParamFile file;
        const std::set<CString> keys = FileKeys(path, file);
        for (const CString& k : h00)
            EXPECT_EQ(keys.count(k) != 0, keep) << k.str();
        for (const CString& k : h01)
            EXPECT_EQ(keys.count(k) != 0, keep) << k.str();
        for (const CString& k : h02)
            EXPECT_NE(keys.count(k), 0u) << k.str();
        EXPECT_EQ(file.GetVarList()->GetGroupRoot(0)->FindByName("H00") != nullptr, keep);
        // The value read from the drive is the one saved.
        IVarObjEx* saved = file.GetVarList()->FindByCode("H02-00");
        ASSERT_NE(saved, nullptr);
        EXPECT_TRUE(saved->GetValue() == Var("H02-00")->GetValue());
    }
}

// "所有参数": nobody is asked, the factory access code goes to the drive before the read,
// and a failed read saves nothing and says nothing.
TEST_F(SaveFlowTest, FailedUploadSavesNothingAndShowsNoSuccess) {
    table->GetTree().SelectItem(table->GetAllItem());
    drive->TakeRequests();
    drive->SetFailure(FailureMode::FailReads, {Address("H02-00")});
    CAfxRecordingResponder prompts;
    prompts.ChooseFiles({CString(Path("never.zorparam"))});
    Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE1_UPLOAD_SAVE, BN_CLICKED), 0);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
    EXPECT_EQ(prompts.Count(AfxPrompt::FileDialog), 0u);
    EXPECT_FALSE(std::filesystem::exists(Path("never.zorparam")));
    const std::vector<DriveRequest> requests = drive->TakeRequests();
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.front().kind, DriveRequest::Write);
    EXPECT_EQ(requests.front().address, Address("H0D-13"));

    // Offline: the question comes, and No ends it without a read.
    drive->ClearFailures();
    host.SetOnline("ZD3S", false);
    prompts.AnswerMessageBox(IDNO);
    Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE1_UPLOAD_SAVE, BN_CLICKED), 0);
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
    EXPECT_NE(prompts.Last(AfxPrompt::MessageBox)->text.Find("不在线"), -1);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Icon(), UINT(MB_ICONWARNING));
    EXPECT_TRUE(drive->TakeRequests().empty());
}

// "保存勾选项" reads nothing: the file holds what the objects hold; the form follows the
// extension, any case; another extension writes nothing and says nothing.
TEST_F(SaveFlowTest, SaveCheckedAndSaveRowsFollowTheExtension) {
    Var("H02-00")->SetChecked(TRUE);
    Var("H02-03")->SetChecked(TRUE);
    Var("H02-03")->SetValue(Variant::UI2(1));
    CAfxRecordingResponder prompts;
    prompts.ChooseFiles({CString(Path("checked.CSV"))});
    Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE_SAVE_CHECKED, BN_CLICKED), 0);
    EXPECT_TRUE(drive->TakeRequests().empty());
    const std::string csv = Slurp(Path("checked.CSV"));
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 9);
    EXPECT_NE(csv.find("\nH02-03,输出脉冲相位,1,0,"), std::string::npos) << csv;

    prompts.ChooseFiles({CString(Path("checked.txt"))});
    const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
    table->SaveCheckedAs();
    EXPECT_FALSE(std::filesystem::exists(Path("checked.txt")));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes);

    // The rows on show, with their instance keys.
    ShowGroup("H02");
    prompts.ChooseFiles({CString(Path("rows.csv"))});
    Page().SaveRowsAs();
    const std::string rows = Slurp(Path("rows.csv"));
    EXPECT_EQ(size_t(std::count(rows.begin(), rows.end(), '\n')),
              7u + size_t(Page().GetShownCount()));
    EXPECT_NE(rows.find(",变量类型,Guid\n"), std::string::npos);
}

// "刷新列表": a value changed in the drive behind the tool's back shows in the list of
// modified parameters.
TEST_F(SaveFlowTest, SynchronisingRefreshShowsAValueChangedInTheDrive) {
    const UINT address = Address("H02-02");
    ASSERT_TRUE(drive->PokeRaw(address, 1));
    CAfxRecordingResponder prompts;
    prompts.AnswerMessageBox(IDNO); // "是否要从驱动器同步参数？": not on opening
    table->GetTree().SelectItem(table->GetModifiedItem());
    EXPECT_EQ(RowOf("H02-02"), -1); // not known to the tool yet
    table->OnFrameCommand(ID_SHOW_MODIFIED_REFRESH);
    AfxPumpMessagesUntil([&] { return RowOf("H02-02") >= 0; }, 2000);
    EXPECT_GE(RowOf("H02-02"), 0);
    EXPECT_DOUBLE_EQ(DriveValue("H02-02"), 1.0);
    EXPECT_TRUE(Var("H02-02")->GetValue() == Variant::UI2(1));
    EXPECT_EQ(Page().GetListFilter(), 1);
}

} // namespace
