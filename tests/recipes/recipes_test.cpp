// Recipes end to end: the dialog as the host opens it (tree and rows), the list of failed
// writes as a user reads it, and the backup and restore jobs: the dialog's worker against
// the simulated drive, the recipe file through the host's file object, and what the user
// is shown.
#include "../link/LinkFixture.h"

#include "DriveWrites.h"
#include "ModuleScope.h"
#include "TempDir.h"
#include "TextOf.h"
#include "module/Implementation.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "sets/TranslateFailedDialog.h"
#include "zorhost/ReferenceHost.h"

#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

using zorhost::device::DeviceDescription;
using zorhost::device::ModifyMode;
using zorhost::device::ParameterDef;
using zorhost::sim::FailureMode;

namespace {

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

// A project of the shipped single-axis servo, its simulated drive, and every host service.
class RecipeTest : public ::testing::Test {
protected:
    static constexpr const char* kKey = "ZD3S";

    void SetUp() override {
        zorhost::ProjectSetup setup;
        zorhost::ModuleSetup& station = setup.modules.emplace_back();
        station.deviceFile = "zd3s_servo.json";
        station.key = kKey;
        std::string error;
        ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
        ModuleScope::Attach(host.Services());
    }
    void TearDown() override { ModuleScope::Detach(); }

    zorhost::model::CDeviceModule* Module() { return host.Module(kKey); }
    zorhost::sim::SimulatedDrive& Drive() { return *host.Drive(kKey); }
    IVarObjEx* Var(const char* code) {
        IVarObjEx* var = Module()->GetVarList()->FindByCode(code);
        EXPECT_NE(var, nullptr) << code;
        return var;
    }
    UINT Address(const char* code) {
        IVarObjEx* var = Var(code);
        return var != nullptr ? var->GetInstanceAddress() : 0;
    }
    // Opens the recipe dialog the way the host does and lets `act` work inside it; the
    // dialog is closed afterwards unless `act` closed it. Failure lists opened on the way
    // are read into `failed` (codes, in order) and closed.
    void RunRecipeDialog(const std::function<void(COneKeyParseRecipeDialog&)>& act,
                         std::vector<std::vector<std::string>>* failed = nullptr) {
        int runs = 0;
        CAfxModalDriver driver([&](CDialog& d) {
            if (auto* list = dynamic_cast<CTranslateFailedDialog*>(&d)) {
                ShootIfAsked(&d, "recipe_failed_list.png");
                if (failed != nullptr) {
                    failed->emplace_back();
                    for (int r = 0; r < list->m_list.GetItemCount(); ++r)
                        failed->back().push_back(list->GetCellText(r, 1).str());
                }
                d.EndDialog(IDOK);
                return;
            }
            auto* recipe = dynamic_cast<COneKeyParseRecipeDialog*>(&d);
            if (recipe == nullptr || runs++ > 0) {
                d.EndDialog(IDCANCEL);
                return;
            }
            act(*recipe);
            if (recipe->GetSafeHwnd() != nullptr)
                recipe->EndDialog(IDCANCEL);
        });
        CImplementation view(nullptr);
        view.OpenRecipeDialog(kKey);
        EXPECT_EQ(runs, 1);
    }

    zorhost::ReferenceHost host;
    TempDir temp; // the test's own folder
    CAfxRecordingResponder prompts;
};

constexpr UINT kFactoryCodeAddress = 0x229;

void WaitForJob(COneKeyParseRecipeDialog& dlg) {
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return !dlg.IsWorkerRunning(); }, 30000));
}

std::vector<std::string> RowCodes(COneKeyParseRecipeDialog& dlg) {
    std::vector<std::string> codes;
    for (int r = 0; r < dlg.GetRowCount(); ++r)
        codes.push_back(dlg.GetCellText(r, 2).str());
    return codes;
}

// Runs the dialog on `vars` and hands every cell of rows 0..rows-1 back, row by row.
std::vector<std::vector<std::string>> Cells(const std::vector<IVarObjEx*>* vars, int rows,
                                            int* columns = nullptr, int* count = nullptr) {
    std::vector<std::vector<std::string>> cells;
    CTranslateFailedDialog dlg;
    dlg.SetFailedVars(vars);
    CAfxModalDriver driver([&](CDialog& d) {
        auto& failed = static_cast<CTranslateFailedDialog&>(d);
        EXPECT_EQ(d.GetWindowTextString(), "读写失败信息");
        if (columns != nullptr)
            *columns = failed.m_list.GetHeaderCtrl()->GetItemCount();
        if (count != nullptr)
            *count = failed.m_list.GetItemCount();
        for (int r = 0; r < rows; ++r) {
            cells.emplace_back();
            for (int c = 0; c < 6; ++c)
                cells.back().push_back(failed.m_list.OnGetCellText(r, c).str());
        }
        d.EndDialog(IDOK);
    });
    dlg.DoModal();
    EXPECT_EQ(driver.runs, 1);
    return cells;
}

} // namespace

TEST_F(RecipeTest, DialogListsEveryTransferableParameterOnceAndTheTreeNarrowsIt) {
    RunRecipeDialog([&](COneKeyParseRecipeDialog& dlg) {
        EXPECT_EQ(dlg.GetWindowTextString(), "编辑配方");
        EXPECT_EQ(dlg.GetModule(), Module());
        HTREEITEM root = dlg.m_tree.GetRootItem();
        EXPECT_EQ(dlg.m_tree.GetItemText(root), "所有参数");
        const auto all = RowCodes(dlg);
        ASSERT_GT(all.size(), 300u);
        EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
        // The factory password is no parameter of a recipe.
        EXPECT_EQ(std::count(all.begin(), all.end(), "H02-41"), 0);
        EXPECT_EQ(dlg.m_list.GetItemCount(), int(all.size()));
        EXPECT_EQ(dlg.GetCellText(0, 0), "001");
        EXPECT_EQ(dlg.GetRowBackground(0), COLORREF(0xF5FAE4));
        EXPECT_EQ(dlg.GetRowBackground(1), COLORREF(0xF0F0C8));

        // A group of the tree shows its own parameters only; the root changes nothing.
        HTREEITEM group = dlg.m_tree.GetChildItem(root);
        ASSERT_NE(group, nullptr);
        dlg.OnTreeSelection(group);
        const auto some = RowCodes(dlg);
        EXPECT_GT(some.size(), 0u);
        EXPECT_LT(some.size(), all.size());
        dlg.OnTreeSelection(root);
        EXPECT_EQ(RowCodes(dlg), some);
    });
}

TEST_F(RecipeTest, FailedListNamesEachVariableInOrderAndNothingPastItsEnd) {
    IVarObjEx* speed = Var("H02-09");
    IVarObjEx* other = Var("H02-10");
    speed->SetValue(Variant::UI2(321));
    std::vector<IVarObjEx*> vars{other, speed, nullptr};
    int columns = 0, count = 0;
    const auto cells = Cells(&vars, 4, &columns, &count);
    EXPECT_EQ(columns, 6);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(cells[0][0], "0001");
    EXPECT_EQ(cells[0][1], "H02-10");
    EXPECT_EQ(cells[1][0], "0002");
    EXPECT_EQ(cells[1][1], "H02-09");
    EXPECT_EQ(cells[1][2], TextOf(speed->GetAttr(), &IVarAttr::GetName).str());
    EXPECT_EQ(cells[1][3], std::to_string(speed->GetInstanceAddress()));
    EXPECT_EQ(cells[1][4], "321");
    EXPECT_EQ(cells[0][5], "下载失败！");
    EXPECT_EQ(cells[1][5], cells[0][5]); // which failed, not why
    // A null variable and rows past the end give no text.
    EXPECT_EQ(cells[2], std::vector<std::string>(6));
    EXPECT_EQ(cells[3], std::vector<std::string>(6));

    // Without a list: an empty table.
    count = -1;
    EXPECT_EQ(Cells(nullptr, 1, nullptr, &count)[0], std::vector<std::string>(6));
    EXPECT_EQ(count, 0);
}

class RecipeJobTest : public RecipeTest {
protected:
    const DeviceDescription& Device() { return Drive().Device(); }

    // Parameters a restore writes and whose value a test may move freely: transferable,
    // changeable, with a range, and no limit of another parameter hangs on them.
    std::vector<const ParameterDef*> FreeParameters() {
        const DeviceDescription& d = Device();
        std::set<std::uint32_t> targets;
        for (const ParameterDef& p : d.parameters) {
            if (p.IsMinLinked())
                targets.insert(p.minLink);
            if (p.IsMaxLinked())
                targets.insert(p.maxLink);
        }
        // Password registers take codes and never keep them.
        std::set<std::uint32_t> registers;
        for (const auto& v : d.namedVariables)
            registers.insert(v.address);
        std::vector<const ParameterDef*> free;
        for (std::uint32_t i = 0; i < d.parameters.size(); ++i) {
            const ParameterDef& p = d.parameters[i];
            if (p.IsTransferable() && !registers.count(p.address) &&
                p.modifyMode != ModifyMode::Never && !p.IsMinLinked() && !p.IsMaxLinked() &&
                !targets.count(i) && p.maxValue > p.minValue)
                free.push_back(&p);
        }
        return free;
    }
    // Puts value `which` (0: a value off the factory value, 1: the factory value) into
    // the drive for every free parameter.
    void SetDrive(const std::vector<const ParameterDef*>& params, int which) {
        for (const ParameterDef* p : params) {
            const double off = p->factoryValue == p->minValue ? p->minValue + 1 : p->minValue;
            ASSERT_TRUE(Drive().PokeRaw(p->address, which == 0 ? off : p->factoryValue));
        }
    }
    std::map<std::uint32_t, double> DriveValues(const std::vector<const ParameterDef*>& params) {
        std::map<std::uint32_t, double> values;
        for (const ParameterDef* p : params) {
            double raw = 0;
            Drive().PeekRaw(p->address, raw);
            values[p->address] = raw;
        }
        return values;
    }
    std::string LastMessage() {
        const AfxPrompt* p = prompts.Last(AfxPrompt::MessageBox);
        return p != nullptr ? p->text.str() : std::string();
    }
    std::string Backup(const std::string& path) {
        prompts.ChooseFiles({CString(path.c_str())});
        std::string message;
        RunRecipeDialog([&](COneKeyParseRecipeDialog& dlg) {
            dlg.OnBackup();
            WaitForJob(dlg);
            message = LastMessage();
        });
        return message;
    }
    // The failure lists the restore opened (codes, in order).
    std::vector<std::vector<std::string>> RestoreLists(const std::string& path) {
        prompts.ChooseFiles({CString(path.c_str())});
        std::vector<std::vector<std::string>> failed;
        RunRecipeDialog(
            [&](COneKeyParseRecipeDialog& dlg) {
                dlg.OnRestore();
                WaitForJob(dlg);
            },
            &failed);
        return failed;
    }
    std::vector<std::string> Restore(const std::string& path) {
        const auto failed = RestoreLists(path);
        EXPECT_EQ(failed.size(), 1u); // the list is the restore's only report
        return failed.empty() ? std::vector<std::string>{} : failed.front();
    }
};

TEST_F(RecipeJobTest, BackupHoldsEveryLevelAndRestoreBringsTheDriveBackExactly) {
    const auto params = FreeParameters();
    ASSERT_GT(params.size(), 200u);
    ASSERT_TRUE(std::any_of(params.begin(), params.end(),
                            [](const ParameterDef* p) { return p->accessLevel >= 3; }));
    SetDrive(params, 0);
    const auto backedUp = DriveValues(params);
    const std::string path = temp / "line2";
    EXPECT_EQ(Backup(path), "配方保存成功！");
    ASSERT_TRUE(std::filesystem::exists(path + ".zorparam"));

    // The file holds what the drive held, above the user's level as well.
    IParamFile* file = theApp.CreateParamFile();
    ASSERT_NE(file, nullptr);
    ASSERT_TRUE(file->Open(CString((path + ".zorparam").c_str())));
    IParamFileTable* table = file->GetVarList();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->GetCount(), Module()->GetVarList()->GetCount());
    for (const ParameterDef* p : params) {
        IVarObjEx* v = table->FindByAddress(p->address);
        ASSERT_NE(v, nullptr) << Device().Code(*p);
        EXPECT_EQ(host.VarUtil().VariantAsDouble(v->GetValue()), backedUp.at(p->address))
            << Device().Code(*p);
        // In the parameter's own type, so that its decimals still apply to it.
        EXPECT_EQ(int(v->GetValue().vt), v->GetAttr()->GetDataType()) << Device().Code(*p);
    }
    file->Release();

    SetDrive(params, 1); // a repair put other values in, and the drive was powered off
    ASSERT_TRUE(host.DeviceHelper().WriteParameterAs(kKey, kFactoryCodeAddress, 18,
                                                     zorhost::sim::SimulatedDrive::kLogoutCode));
    ASSERT_EQ(Drive().Authority(), zorhost::sim::SimulatedDrive::kBaseAuthority);
    Drive().SetRunning(false);
    EXPECT_EQ(Restore(path + ".zorparam"), std::vector<std::string>{});
    const auto restored = DriveValues(params);
    for (const ParameterDef* p : params)
        EXPECT_EQ(restored.at(p->address), backedUp.at(p->address)) << Device().Code(*p);
}

TEST_F(RecipeJobTest, RestoreListsEachRefusedWriteAndSkipsUnchangeableOnes) {
    const std::string path = temp / "r.zorparam";
    ASSERT_EQ(Backup(path), "配方保存成功！");
    const UINT a = Address("H02-09"), b = Address("H03-05");
    Drive().SetFailure(FailureMode::RefuseWrites, {b, a});
    Drive().TakeRequests();
    // In the order the writes failed, which is the order of the rows.
    EXPECT_EQ(Restore(path), (std::vector<std::string>{"H02-09", "H03-05"}));
    const std::vector<UINT> writes = TakeWrites(Drive());
    const std::set<UINT> written(writes.begin(), writes.end());
    EXPECT_TRUE(written.count(a) && written.count(b));
    for (const ParameterDef& p : Device().parameters) {
        if (p.modifyMode == ModifyMode::Never) {
            EXPECT_FALSE(written.count(p.address)) << Device().Code(p);
        }
    }
}

TEST_F(RecipeJobTest, ReadFailureNamesTheParameterAndWritesNoFile) {
    const std::string path = temp / "x.zorparam";
    Drive().SetFailure(FailureMode::FailReads, {Address("H03-05")});
    EXPECT_EQ(Backup(path), "H03-05上传失败！");
    EXPECT_FALSE(std::filesystem::exists(path));
}

// Without the factory level a backup reads nothing and keeps the values on hand, and a
// restore stops before any write.
TEST_F(RecipeJobTest, FactoryCodeRefusedSavesWithoutReadingAndStopsARestore) {
    Drive().SetFailure(FailureMode::RefuseWrites, {kFactoryCodeAddress});
    Drive().TakeRequests();
    const std::string path = temp / "z.zorparam";
    EXPECT_EQ(Backup(path), "配方保存成功！");
    EXPECT_EQ(Drive().TakeRequests().size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(path));

    EXPECT_TRUE(RestoreLists(path).empty());
    EXPECT_EQ(LastMessage(), "厂家密码写失败!");
    const auto requests = Drive().TakeRequests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].address, kFactoryCodeAddress);
}

// The window goes while the worker reads at the pace of a real link: the close waits
// for the worker, which stops at the next row, and nothing is left half-written.
TEST_F(RecipeJobTest, ClosingDuringABackupStopsTheWorkerCleanly) {
    Drive().SetRealTime(true);
    Drive().SetLatency(20);
    const std::string dir = temp.Path();
    prompts.ChooseFiles({CString((dir + "/c.zorparam").c_str())});
    const std::uint64_t before = Drive().RequestCount();
    RunRecipeDialog([&](COneKeyParseRecipeDialog& dlg) {
        dlg.OnBackup();
        ASSERT_TRUE(dlg.IsWorkerRunning());
        AfxPumpMessagesUntil([&] { return Drive().RequestCount() > before + 5; }, 5000);
        ShootIfAsked(&dlg, "recipe_backup.png");
    });
    const std::uint64_t after = Drive().RequestCount();
    AfxPumpMessagesUntil([] { return false; }, 50); // what the worker posted finds no window
    EXPECT_EQ(Drive().RequestCount(), after);
    EXPECT_LT(after - before, std::uint64_t(Module()->GetVarList()->GetCount()));
    for (const auto& entry : std::filesystem::directory_iterator(dir))
        EXPECT_EQ(entry.path().filename(), "c.zorparam"); // no temporary file left behind
}

// The user cancels in the progress box: the worker stops at the next row; a backup still
// saves a whole file, a restore shows what failed so far.
TEST_F(RecipeJobTest, CancelInTheProgressBoxStopsTheJobPromptly) {
    const std::string path = temp / "cancel.zorparam";
    ASSERT_EQ(Backup(path), "配方保存成功！");
    const int rows = Module()->GetVarList()->GetCount();
    // Requests as slow as on a real link give the window time to hear of the box long
    // before the worker is through; the user cancels as soon as the box shows.
    Drive().SetRealTime(true);
    Drive().SetLatency(50);
    std::vector<std::string> texts;
    int hidden = 0;
    host.ModuleManager().SetProgressObserver(
        [&](zorhost::CHostProgressBox& box, zorhost::CHostProgressBox::Event event) {
            if (event == zorhost::CHostProgressBox::Event::Shown) {
                texts.push_back(box.Text().str());
                box.Cancel();
            }
            if (event == zorhost::CHostProgressBox::Event::Hidden)
                ++hidden;
        });

    std::uint64_t before = Drive().RequestCount();
    EXPECT_EQ(Backup(path), "配方保存成功！");
    EXPECT_LT(Drive().RequestCount() - before, std::uint64_t(rows / 2));
    IParamFile* file = theApp.CreateParamFile();
    ASSERT_TRUE(file->Open(CString(path.c_str()))); // whole, not cut off
    EXPECT_EQ(file->GetVarList()->GetCount(), rows);
    file->Release();

    Drive().SetFailure(FailureMode::RefuseWrites, {Address("H00-00")});
    before = Drive().RequestCount();
    EXPECT_EQ(Restore(path), std::vector<std::string>{"H00-00"});
    EXPECT_LT(Drive().RequestCount() - before, std::uint64_t(rows / 2));
    EXPECT_EQ(texts, (std::vector<std::string>{"正在导出...", "正在导入..."}));
    EXPECT_EQ(hidden, 2);
    host.ModuleManager().SetProgressObserver(nullptr);
}

TEST_F(RecipeJobTest, SaveMakesOneMissingFolderAndNamesTheFileOnce) {
    namespace fs = std::filesystem;
    const std::string dir = temp.Path();
    COneKeyParseRecipeDialog dlg;
    dlg.SetModule(Module());
    struct Case {
        std::string path;
        BOOL saved;
        std::string file; // what exists afterwards
    } cases[] = {
        {dir + "/a", 1, dir + "/a.zorparam"},
        {dir + "/b.ZORPARAM", 1, dir + "/b.ZORPARAM"},
        {dir + "/new/c.zorparam", 1, dir + "/new/c.zorparam"},
        {dir + "/two/levels/d.zorparam", 0, ""},
        {"nofolder.zorparam", 0, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(dlg.SaveRecipeFile(CString(c.path.c_str())), c.saved);
        if (!c.file.empty()) {
            EXPECT_TRUE(fs::exists(c.file));
        }
    }
    EXPECT_FALSE(fs::exists(dir + "/two"));
    EXPECT_FALSE(fs::exists("nofolder.zorparam"));
}

// A recipe of another series is restored only after a yes, and then by its own addresses;
// its variables are the rows until a tree node is chosen.
TEST_F(RecipeJobTest, RecipeOfAnotherSeriesAsksFirst) {
    const std::string path = temp / "other.zorparam";
    ASSERT_EQ(Backup(path), "配方保存成功！");
    IParamFile* file = theApp.CreateParamFile();
    ASSERT_TRUE(file->Open(CString(path.c_str())));
    const BYTE other[16] = {0x00, 0x07, 0x00, 0x40, 0x00, 0x02};
    file->SetElecLabel(other, sizeof other);
    ASSERT_TRUE(file->Save(CString(path.c_str())));
    file->Release();

    for (int answer : {IDNO, IDYES}) {
        SCOPED_TRACE(answer);
        prompts.AnswerMessageBox(answer);
        prompts.ChooseFiles({CString(path.c_str())});
        Drive().TakeRequests();
        std::vector<std::vector<std::string>> failed;
        RunRecipeDialog(
            [&](COneKeyParseRecipeDialog& dlg) {
                dlg.OnRestore();
                const AfxPrompt* q = prompts.Last(AfxPrompt::MessageBox);
                ASSERT_NE(q, nullptr);
                EXPECT_EQ(q->text, "打开配方与当前设备不属于同一系列，是否继续下载？");
                EXPECT_EQ(q->caption, "警告");
                EXPECT_EQ(q->Icon(), UINT(MB_ICONWARNING));
                if (answer == IDNO) {
                    EXPECT_FALSE(dlg.IsWorkerRunning());
                    return;
                }
                WaitForJob(dlg);
                IVarObjEx* row = dlg.GetRow(0);
                ASSERT_NE(row, nullptr);
                EXPECT_EQ(dlg.GetOpenedRecipe()->FindByAddress(row->GetInstanceAddress()), row);
                dlg.OnTreeSelection(dlg.m_tree.GetChildItem(dlg.m_tree.GetRootItem()));
                EXPECT_EQ(
                    Module()->GetVarList()->FindByAddress(dlg.GetRow(0)->GetInstanceAddress()),
                    dlg.GetRow(0));
            },
            &failed);
        EXPECT_EQ(failed.size(), answer == IDYES ? 1u : 0u);
        EXPECT_EQ(Drive().TakeRequests().empty(), answer == IDNO);
    }
}

// The recipe jobs against a drive on Modbus TCP that fails half way: each job ends with
// its failure, a backup leaves no file, and the module shows offline until the drive is
// back.
class RecipeOverLinkTest : public RecipeJobTest {
protected:
    void SetUp() override {
        RecipeJobTest::SetUp();
        sim = std::make_unique<linktest::SimProcess>(
            std::vector<std::string>{"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
        ASSERT_TRUE(sim->Started());
        ASSERT_TRUE(host.LoadProject(linktest::TcpProject(kKey, sim->Port())));
        ASSERT_TRUE(Module()->IsOnline());
        host.SetLinkStateHandler([this] {
            if (!Module()->IsOnline())
                sawOffline = true;
        });
    }
    std::unique_ptr<linktest::SimProcess> sim;
    bool sawOffline = false;
};

TEST_F(RecipeOverLinkTest, DriveFailingHalfWayEndsEachJobWithItsFailure) {
    const std::string dir = temp.Path();
    const std::string good = dir + "/good.zorparam";
    ASSERT_EQ(Backup(good), "配方保存成功！");
    struct Fault {
        const char* name;
        const char* on; // after the factory code and some parameters
        const char* off;
    };
    for (const Fault& f : {Fault{"silent", "silent-after 40", "silent off"},
                           Fault{"drop", "drop-after 40", nullptr}}) {
        SCOPED_TRACE(f.name);
        for (bool backup : {true, false}) {
            sawOffline = false;
            ASSERT_TRUE(sim->Command(f.on));
            if (backup) {
                const std::string path = dir + "/" + f.name + ".zorparam";
                const std::string message = Backup(path);
                EXPECT_NE(message.find("上传失败"), std::string::npos) << message;
                EXPECT_FALSE(std::filesystem::exists(path));
            } else {
                EXPECT_FALSE(Restore(good).empty()) << "a restore that lost writes lists them";
            }
            EXPECT_TRUE(AfxPumpMessagesUntil([&] { return sawOffline; }, 3000));
            if (f.off) {
                ASSERT_TRUE(sim->Command(f.off));
            }
            ASSERT_TRUE(AfxPumpMessagesUntil([&] { return Module()->IsOnline(); }, 8000));
        }
    }
}
