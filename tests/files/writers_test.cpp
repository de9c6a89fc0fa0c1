// The module's writers and save flows against the reference host: the 11-column table and
// the list export byte for byte, the progress box of the export, tables read back by the
// host; and upload and save on the real frame of the demo servo (a device of line 13): what
// is asked, what is read from the drive, what lands in the file, and the synchronising
// refresh of the modified parameters.
#include "TextOf.h"
#include "files_fixture.h"
#include "page_fixture.h"

#include "files/ListExportWriter.h"
#include "files/ParamTableWriter.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/TableResources.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/model/VarStore.h"

#include <afx/afxtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

using namespace zorhost::files;
using ft::FilesTest;
using zorhost::sim::DriveRequest;
using zorhost::sim::FailureMode;

namespace {

// Three variables of our own making, held by a file table, with attributes the test controls.
class TableVars {
public:
    TableVars() {
        Add("H02-00", "控制模式", VT_UI2, 0, Variant::UI2(1), "", 1);
        Add("H02-02", "增益,速度", VT_I2, 2, Variant::I2(-1234), "Hz,x", 0, "A2.H02-02");
        Add("H02-03", "名称", VT_R8, 1, Variant::R8(2.25), "", 3);
    }
    std::vector<IVarObjEx*> All() {
        std::vector<IVarObjEx*> list;
        for (int i = 0; i < m_table.GetCount(); ++i)
            list.push_back(m_table.GetAt(i));
        return list;
    }

private:
    void Add(const char* code, const char* name, int type, int decimals, Variant value,
             const char* unit, int modifyMode, const char* key = nullptr) {
        AttrFields f;
        f.code = code;
        f.name = name;
        f.unit = unit;
        f.address = UINT(0x200 + m_table.GetCount());
        f.dataType = type;
        f.decimals = decimals;
        f.factoryValue = value;
        f.minValue = Variant::I4(-5);
        f.maxValue = Variant::Str("H02-10");
        f.modifyMode = modifyMode;
        auto attr = std::make_unique<CFileVarAttr>(f, nullptr);
        auto var = std::make_unique<zorhost::model::CVarObj>(attr.get(), nullptr);
        var->SetValue(value);
        if (key != nullptr)
            var->SetInstanceKey(key);
        m_table.Adopt(std::move(var), std::move(attr));
    }
    CParamFileTable m_table;
};

TEST_F(FilesTest, ElevenColumnTableMatchesTheExpectedBytes) {
    TableVars vars;
    module->SetDisplayName("伺服,左");
    const SYSTEMTIME stamp{2026, 1, 0, 2, 3, 4, 5, 0};
    const std::string path = Path("g.csv");
    ASSERT_TRUE(WriteParamTableRows(CString(path), vars.All(), module, TRUE, &stamp));
    std::string label;
    for (UINT i = 0; i < module->GetElecLabelSize(); ++i) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02X", module->GetElecLabel()[i]);
        label += hex;
    }
    CString version;
    module->GetVersionText(version);
    EXPECT_EQ(Slurp(path),
              "Sign,Time\nZorvanta,2026-01-02 03:04:05\n\nDriveName,BusID,Version,ElecData\n"
              "伺服,左," +
                  std::to_string(module->GetAxisIndex()) + "," + version.str() + "," + label +
                  "\n\n参数,参数名称,当前值,出厂值,单位,最小值,最大值,修改方式,通讯地址(Dec),"
                  "变量类型,Guid\n"
                  "H02-00,控制模式,1,1,,-5,H02-10,停机修改,512,无符号16位,H02-00\n"
                  "H02-02,增益,速度,-12.34,-12.34,Hz,x,-0.05,H02-10,任意修改,513,有符号16位,"
                  "A2.H02-02\n"
                  "H02-03,名称,2.2,2.2,,-0.5,H02-10,,514,双精度浮点数,H02-03\n");
}

TEST_F(FilesTest, ListExportMatchesTheExpectedBytesAndStepsTheProgressBox) {
    TableVars vars;
    std::vector<IVarObjEx*> rows = vars.All();
    rows.insert(rows.begin() + 1, nullptr); // a null row gives no line but a step
    std::vector<std::string> seen;
    host.ModuleManager().SetProgressObserver(
        [&](zorhost::CHostProgressBox& box, zorhost::CHostProgressBox::Event event) {
            seen.push_back(std::to_string(int(event)) + ":" + box.Text().str() + ":" +
                           std::to_string(box.Position()) + "/" + std::to_string(box.Highest()));
        });
    CAfxRecordingResponder prompts;
    const std::string path = Path("list.csv");
    prompts.ChooseFiles({CString(path)});
    ASSERT_TRUE(ExportListWithDialog(rows, nullptr));
    EXPECT_EQ(Slurp(path), "参数,参数名称,变量当前值,单位,最小值,最大值,出厂值,修改方式,"
                           "通讯地址(Dec),变量类型\n"
                           "H02-00,控制模式,1,,-5,H02-10,1,停机修改,512,无符号16位\n"
                           "H02-02,增益,速度,-12.34,Hz,x,-0.05,H02-10,-12.34,任意修改,513,"
                           "有符号16位\n"
                           "H02-03,名称,2.2,,-0.5,H02-10,2.2,,514,双精度浮点数\n");
    EXPECT_EQ(seen, (std::vector<std::string>{"0:正在导出...:0/4", "1:正在导出...:1/4",
                                              "1:正在导出...:2/4", "1:正在导出...:3/4",
                                              "1:正在导出...:4/4", "2:正在导出...:4/4"}));
    const AfxPrompt* dialog = prompts.Last(AfxPrompt::FileDialog);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->filter, "CSV files (*.csv)|*.csv||");
    const AfxPrompt* done = prompts.Last(AfxPrompt::MessageBox);
    ASSERT_NE(done, nullptr);
    EXPECT_EQ(done->text.str(), "文件'" + path + "'保存成功.");
    EXPECT_EQ(done->caption, "ZorDriveBench");

    // Cancelled in the box: what was taken is written; a failed one says so.
    host.ModuleManager().SetProgressObserver(
        [](zorhost::CHostProgressBox& box, zorhost::CHostProgressBox::Event event) {
            if (event == zorhost::CHostProgressBox::Event::Stepped && box.Position() == 1)
                box.Cancel();
        });
    prompts.ChooseFiles({CString(Path("cut.csv"))});
    size_t boxes = prompts.Count(AfxPrompt::MessageBox);
    ASSERT_TRUE(ExportListWithDialog(vars.All(), nullptr));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes + 1);
    const std::string bytes = Slurp(Path("cut.csv"));
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 2); // titles and one row
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->caption, "ZorDriveBench");

    prompts.ChooseFiles({CString(Path("no/such/folder/x.csv"))});
    EXPECT_FALSE(ExportListWithDialog(vars.All(), nullptr));
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "打开csv文件失败！");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->caption, "错误");

    // A cancelled file dialog writes nothing and makes no box.
    prompts.CancelFileDialog();
    boxes = prompts.Count(AfxPrompt::MessageBox);
    EXPECT_FALSE(ExportListWithDialog(vars.All(), nullptr));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes);
}

// What the module writes, the host reads back: every value of a real device, as a 10-column
// table bound to the module and as an 11-column table of a multi-axis device read without
// any module (the keys tell the axes apart).
TEST_F(FilesTest, TablesWrittenByTheModuleReadBackToTheSameValues) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    ASSERT_NE(helper, nullptr);
    for (const char* key : {"ZD3S", "ZD4M"}) {
        SCOPED_TRACE(key);
        IHostDeviceModule* m = host.Module(key);
        IVarStore* store = m->GetVarList();
        std::vector<IVarObjEx*> all;
        for (int i = 0; i < store->GetCount(); ++i) {
            IVarObjEx* var = store->GetAt(i);
            // Values away from the factory ones, at the edge of what a cell shows.
            const int type = var->GetAttr()->GetDataType();
            if (type == VT_I2 || type == VT_I4)
                var->SetValue(type == VT_I2 ? Variant::I2(-32768 + i) : Variant::I4(-100000 - i));
            all.push_back(var);
        }
        const bool multiAxis = std::string(key) == "ZD4M";
        const std::string path = Path(multiAxis ? "axes.csv" : "servo.csv");
        ASSERT_TRUE(WriteParamTableRows(CString(path), all, m, multiAxis ? TRUE : FALSE));
        IParamFile* file = theApp.CreateParamFile();
        ASSERT_NE(file, nullptr);
        file->LoadContext(multiAxis ? nullptr : m);
        ASSERT_TRUE(helper->ReadCsvParamFile(CString(path), file, multiAxis ? nullptr : m))
            << static_cast<CParamFile*>(file)->LastError();
        ASSERT_EQ(file->GetElecLabelSize(), m->GetElecLabelSize());
        EXPECT_EQ(std::memcmp(file->GetElecLabel(), m->GetElecLabel(), m->GetElecLabelSize()), 0);
        IParamFileTable* t = file->GetVarList();
        ASSERT_EQ(t->GetCount(), int(all.size()));
        for (int i = 0; i < t->GetCount(); ++i) {
            const CString a = TextOf(t->GetAt(i), &IVarObjEx::GetInstanceGuid);
            ASSERT_EQ(a, TextOf(all[size_t(i)], &IVarObjEx::GetInstanceGuid));
            const Variant want = all[size_t(i)]->GetValue();
            const Variant got = t->GetAt(i)->GetValue();
            // Without a module, a real's type is all the table tells; the figure must agree.
            if (multiAxis && (want.vt == VT_R4 || want.vt == VT_R8)) {
                CString x, y;
                theApp.GetVarUtil()->FormatVariant(x, want,
                                                   all[size_t(i)]->GetAttr()->GetDecimals(), 0);
                theApp.GetVarUtil()->FormatVariant(y, got, t->GetAt(i)->GetAttr()->GetDecimals(),
                                                   0);
                EXPECT_EQ(x, y) << a.str();
            } else {
                EXPECT_TRUE(got == want) << a.str() << " " << got.vt << " " << want.vt;
            }
        }
        file->Release();
    }
}

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
            keys.insert(TextOf(file.GetVarList()->GetAt(i), &IVarObjEx::GetInstanceGuid));
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
