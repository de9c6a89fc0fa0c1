// The parameter compare against the reference host's demo drives: the dialog's flow from
// the upload to the result lists and the CSV file, the matching core it shares with the
// command line, and zordrivebench --compare run as a script runs it.
#include "TestFiles.h"
#include "TextOf.h"
#include "sets_fixture.h"

#include "module/ModuleResources.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/PageResources.h"
#include "sets/ParamCompareDlg.h"
#include "sets/ShaftCopyDialog.h"
#include "sets/VarCompare.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"
#include "table/VarTable.h"

#include <afx/afxres.h>
#include <zorhost/files/ParamSetCompare.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <set>

namespace {

std::string Code(const CVarCompareRst* row) {
    return TextOf(row->m_pAttr1, &IVarAttr::GetCode).str();
}

std::set<std::string> Codes(const CVarCompareRstList& list) {
    std::set<std::string> codes;
    for (int i = 0; i < list.GetCount(); ++i)
        codes.insert(Code(list.GetAt(i)));
    return codes;
}

// A reference file of this suite.
std::string Data(const std::string& name) {
    return Slurp(PARMIRA_SOURCE_DIR "/tests/sets/data/" + name);
}

std::vector<IVarObjEx*> ModuleVars(zorhost::ReferenceHost& host, const CString& key) {
    std::vector<IVarObjEx*> vars;
    host.Transfer().GetModuleVars(key, vars);
    return vars;
}

class CompareTest : public SetsTest {
protected:
    void SetUp() override {
        SetsTest::SetUp();
        dlg.SetModule(host.Module("ZD3S"));
        ASSERT_TRUE(dlg.Create(IDD_PARAM_COMPARE, nullptr));
    }
    void TearDown() override { dlg.DestroyWindow(); }
    // Object 2 takes the current values instead of the factory values.
    void SecondSideCurrent() { Select(dlg, IDC_COMPARE_KIND2, 0); }
    // Presses "开始比较" and waits for the worker's end.
    void Run() {
        Press(dlg, IDC_COMPARE_START);
        ASSERT_TRUE(AfxPumpMessagesUntil([&] { return !dlg.IsComparing(); }, 10000));
    }
    // The servo read whole and saved as a parameter file, as its upload would leave it.
    CString SaveServoToFile() {
        host.Transfer().UploadModule(nullptr, "ZD3S");
        IHostDeviceModule* module = host.Module("ZD3S");
        auto* file =
            static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
        EXPECT_NE(file, nullptr);
        file->SetElecLabel(module->GetElecLabel(), module->GetElecLabelSize());
        file->GetVarList()->CopyFrom(module->GetVarList());
        const CString path((dir / "zd3s.zorparam").c_str());
        EXPECT_TRUE(file->Save(path));
        file->Release();
        return path;
    }
    bool StartEnabled() { return dlg.GetDlgItem(int(IDC_COMPARE_START))->IsWindowEnabled(); }
    CParamCompareDlg dlg;
};

// A fresh dialog sets the shown drive's current values against its factory values. What
// was changed on the drive itself, and only that, differs once the drive has been read.
TEST_F(CompareTest, ADriveAgainstItsFactoryValuesListsWhatChangedOnTheDrive) {
    Run();
    const std::set<std::string> before = Codes(dlg.GetDiffList());
    ASSERT_EQ(Boxes("比较结束"), 1u);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->Icon(), UINT(MB_ICONINFORMATION));

    Poke("ZD3S", "H00-08", 2500); // rated speed, factory 3000
    Poke("ZD3S", "H00-03", 380);  // rated voltage, an enumerated value
    Run();
    std::set<std::string> expected = before;
    expected.insert({"H00-08", "H00-03"});
    EXPECT_EQ(Codes(dlg.GetDiffList()), expected);
    EXPECT_EQ(before.count("H00-08") + before.count("H00-03"), 0u);
    ASSERT_EQ(dlg.GetList().GetItemCount(), dlg.GetDiffList().GetCount());
    // Rows show the numbers as the drive and the factory hold them.
    for (int row = 0; row < dlg.GetList().GetItemCount(); ++row) {
        if (dlg.GetCellText(row, 2) != "H00-08")
            continue;
        EXPECT_EQ(dlg.GetCellText(row, 4), "2500");
        EXPECT_EQ(dlg.GetCellText(row, 8), "3000");
    }
    ShootIfAsked(&dlg, "compare_dialog.png");
}

// The rows' texts, cell by cell, and the saved table are pinned by files written from a
// run that covers every display format, enumerated values and a file side whose variables
// are gone once the worker has ended. The file's rows meet the drive's by address, so only
// what changed on the drive since the file was written differs.
TEST_F(CompareTest, ShownCellsAndTheSavedTableMatchTheirReferenceFiles) {
    const CString path = SaveServoToFile();
    // Decimal, two decimals, enumerated, hexadecimal and per-unit of both widths.
    for (const auto& [code, raw] :
         std::vector<std::pair<const char*, double>>{{"H00-08", 2500},
                                                     {"H00-05", 315},
                                                     {"H00-03", 380},
                                                     {"H01-17", 0xBEEF},
                                                     {"H07-08", 8192},
                                                     {"H07-20", 123456789}})
        Poke("ZD3S", code, raw);
    prompts.ChooseFiles({path});
    Select(dlg, IDC_COMPARE_SOURCE2, -1); // the file
    EXPECT_FALSE(dlg.GetDlgItem(int(IDC_COMPARE_UPLOAD2))->IsWindowVisible());
    CString shown;
    dlg.GetDlgItemText(int(IDC_COMPARE_PATH2), shown);
    EXPECT_EQ(shown, path);
    Run();

    auto cells = [&] {
        std::string s;
        for (int row = 0; row < dlg.GetList().GetItemCount(); ++row) {
            for (int column = 0; column < 9; ++column)
                s += std::string(column ? "|" : "") + dlg.GetCellText(row, column).GetString();
            s += "\n";
        }
        return s;
    };
    const std::string different = cells();
    EXPECT_EQ(Codes(dlg.GetDiffList()),
              (std::set<std::string>{"H00-08", "H00-05", "H00-03", "H01-17", "H07-08", "H07-20"}));
    dlg.CheckRadioButton(int(IDC_COMPARE_SHOW_DIFFERENT), int(IDC_COMPARE_SHOW_SAME),
                         int(IDC_COMPARE_SHOW_SAME));
    Press(dlg, IDC_COMPARE_SHOW_SAME);
    EXPECT_EQ(different + "--\n" + cells(), Data("compare_cells.txt"));

    const std::string saved = dir / "same.csv";
    prompts.ChooseFiles({CString(saved.c_str())});
    Press(dlg, IDC_COMPARE_SAVE);
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->text, "Var_Offline");
    std::string table = Slurp(saved);
    ASSERT_EQ(table.rfind("Time,", 0), 0u);
    table.erase(0, table.find('\n') + 1);
    EXPECT_EQ(table, Data("compare_same.csv"));
}

// "******" parameters, non-transferable ones and, when asked, read-only ones never come
// into either list. One module on both sides with both boxes ticked is read once and
// agrees with itself.
TEST_F(CompareTest, HiddenNonTransferableAndAskedReadOnlyParametersAreNeverListed) {
    SecondSideCurrent();
    ASSERT_EQ(dlg.IsDlgButtonChecked(int(IDC_COMPARE_UPLOAD2)), UINT(BST_CHECKED));
    const int uploads = host.Transfer().UploadsEnded();
    Run();
    EXPECT_EQ(host.Transfer().UploadsEnded(), uploads + 1);
    EXPECT_GT(dlg.GetSameList().GetCount(), 100);
    IVarStore* store = host.Module("ZD3S")->GetVarList();
    auto attrOf = [&](const CVarCompareRst* r) {
        return store->FindByAddress(r->m_nAddress)->GetAttr();
    };
    const int all = dlg.GetSameList().GetCount();
    EXPECT_EQ(dlg.GetDiffList().GetCount(), 0);
    int readOnly = 0;
    for (int i = 0; i < all; ++i) {
        IVarAttr* a = attrOf(dlg.GetSameList().GetAt(i));
        EXPECT_NE(a->GetDisplayFormat(), 4) << Code(dlg.GetSameList().GetAt(i));
        EXPECT_TRUE(a->IsTransferable()) << Code(dlg.GetSameList().GetAt(i));
        readOnly += a->GetModifyMode() == 2;
    }
    // The drive has parameters of each kind with values, so the rules had work to do.
    int hidden = 0, fixed = 0;
    for (IVarObjEx* v : ModuleVars(host, "ZD3S")) {
        hidden += v->GetAttr()->GetDisplayFormat() == 4 && v->GetValue().vt > VT_NULL;
        fixed += !v->GetAttr()->IsTransferable() && v->GetValue().vt > VT_NULL;
    }
    EXPECT_GT(hidden, 0);
    EXPECT_GT(fixed, 0);
    ASSERT_GT(readOnly, 0);

    dlg.CheckDlgButton(int(IDC_COMPARE_HIDE_READONLY), BST_CHECKED);
    Run();
    EXPECT_EQ(dlg.GetSameList().GetCount(), all - readOnly);
    for (int i = 0; i < dlg.GetSameList().GetCount(); ++i)
        EXPECT_NE(attrOf(dlg.GetSameList().GetAt(i))->GetModifyMode(), 2);
}

TEST_F(CompareTest, AnOfflineOrFailingDriveComparesNothingAndLeavesTheControlsEnabled) {
    host.SetOnline("ZD3S", false);
    const int uploads = host.Transfer().UploadsEnded();
    Run();
    EXPECT_EQ(Boxes("设备离线."), 1u);
    EXPECT_EQ(host.Transfer().UploadsEnded(), uploads);
    EXPECT_TRUE(StartEnabled());

    host.SetOnline("ZD3S", true);
    IVarObjEx* speed = host.Module("ZD3S")->GetVarList()->FindByCode("H00-08");
    host.Drive("ZD3S")->SetFailure(zorhost::sim::FailureMode::FailReads,
                                   {speed->GetInstanceAddress()});
    Run();
    EXPECT_EQ(Boxes("设备离线."), 2u);
    EXPECT_EQ(host.Transfer().UploadsEnded(), uploads + 1);
    EXPECT_EQ(Boxes("比较结束"), 0u);
    EXPECT_EQ(dlg.GetDiffList().GetCount() + dlg.GetSameList().GetCount(), 0);
    EXPECT_TRUE(StartEnabled());
    EXPECT_TRUE(dlg.GetDlgItem(int(IDC_COMPARE_SOURCE1))->IsWindowEnabled());
    EXPECT_EQ(dlg.GetUploadCount(), 0);
}

// The index finds what the walk from the start finds, duplicate addresses included: the
// first variable of an address in set 2 is the partner. The command line agrees.
TEST_F(CompareTest, TheIndexMatchesAsTheWalkDoesAndTakesTheFirstOfDuplicateAddresses) {
    std::vector<IVarObjEx*> set1 = ModuleVars(host, "ZD3S");
    std::vector<IVarObjEx*> set2(set1.rbegin(), set1.rend());
    IVarObjEx* speed = host.Module("ZD3S")->GetVarList()->FindByCode("H00-08");
    IVarObjEx* early = speed->Clone();
    early->SetValue(Variant::I4(1234));
    IVarObjEx* late = speed->Clone();
    late->SetValue(Variant::I4(4321));
    set2.insert(set2.begin() + 3, early);
    set2.push_back(late);

    CVarCompareRstList same[2], diff[2];
    for (int mode = 0; mode < 2; ++mode) {
        CVarCompare compare(&host.VarUtil());
        compare.SetSearchMode(mode == 0 ? CVarCompare::SearchIndexed : CVarCompare::SearchLinear);
        EXPECT_TRUE(
            compare.Run(set1, VarSourceFactory, set2, VarSourceCurrent, same[mode], diff[mode]));
    }
    auto text = [&](const CVarCompareRstList& l) {
        std::string s;
        for (int i = 0; i < l.GetCount(); ++i)
            for (int column : {CVarCompareRst::Code1, CVarCompareRst::Value1, CVarCompareRst::Code2,
                               CVarCompareRst::Value2})
                s += std::string(l.GetAt(i)->GetText(&host.VarUtil(), column).GetString()) +
                     (column == CVarCompareRst::Value2   ? ";"
                      : column == CVarCompareRst::Value1 ? "/"
                                                         : "=");
        return s;
    };
    EXPECT_EQ(text(same[0]), text(same[1]));
    EXPECT_EQ(text(diff[0]), text(diff[1]));
    EXPECT_NE(text(diff[0]).find("H00-08=3000/H00-08=1234;"), std::string::npos);
    EXPECT_GT(same[0].GetCount(), 100);
    // The command line's own matching gives the dialog's table, byte for byte.
    SYSTEMTIME at{};
    at.wYear = 2024;
    at.wMonth = 5;
    at.wDay = 6;
    const zorhost::CompareResult pairs =
        zorhost::CompareParamSets(host.VarUtil(), set1, zorhost::CompareSource::Factory, set2,
                                  zorhost::CompareSource::Current);
    EXPECT_EQ(zorhost::CompareCsv(host.VarUtil(), pairs.agree, at),
              CVarCompare::CsvText(&host.VarUtil(), same[0], at));
    EXPECT_EQ(zorhost::CompareCsv(host.VarUtil(), pairs.differ, at),
              CVarCompare::CsvText(&host.VarUtil(), diff[0], at));
    for (int i = 0; i < 2; ++i) {
        same[i].DeleteAll();
        diff[i].DeleteAll();
    }
    delete early;
    delete late;
}

// A stop request is heard before the next variable and inside every search: the run ends
// at the first question answered yes, whatever the size of the sets.
TEST_F(CompareTest, AStopRequestEndsALargeCompareAtOnce) {
    std::vector<IVarObjEx*> one = ModuleVars(host, "ZD3S"), large;
    while (large.size() < 20000)
        large.insert(large.end(), one.begin(), one.end());
    for (int mode = 0; mode < 2; ++mode) {
        for (int stopAt : {1, 2, 5000}) {
            int asked = 0;
            CVarCompare compare(&host.VarUtil());
            compare.SetSearchMode(mode == 0 ? CVarCompare::SearchIndexed
                                            : CVarCompare::SearchLinear);
            compare.SetStopTest([&] { return ++asked >= stopAt; });
            CVarCompareRstList same, diff;
            EXPECT_FALSE(compare.Run(large, VarSourceCurrent, large, VarSourceFactory, same, diff));
            EXPECT_EQ(asked, stopAt) << "mode " << mode;
            same.DeleteAll();
            diff.DeleteAll();
        }
    }
}

// The frame opens one compare dialog for its pages, shows it again after a close, runs the
// axis copy for a page, and takes the compare dialog down with it.
TEST_F(SetsTest, ThePagesButtonsOpenTheFramesCompareDialogAndTheAxisCopy) {
    RegisterTableResources(theApp.m_hResource);
    RegisterPageResources(theApp.m_hResource);
    AfxRegisterDialog(theApp.m_hResource, DlgTemplate{9903, "Parmira", 1100, 640, {}, WS_POPUP});
    CDialog parent;
    ASSERT_TRUE(parent.Create(9903, nullptr));
    CParmiraDialog panel;
    panel.SetProject(host.Project());
    panel.SetModuleKey("ZD4M");
    ASSERT_TRUE(panel.Create(IDD_PARMIRA_PANEL, &parent));
    CVarTable* table = panel.GetTable();
    ASSERT_NE(table, nullptr);
    CVarTablePage* page = table->GetPage1();
    ASSERT_NE(page, nullptr);

    Press(*page, 1993);
    CParamCompareDlg* dlg = table->GetCompareDialog();
    ASSERT_NE(dlg, nullptr);
    EXPECT_TRUE(dlg->IsWindowVisible());
    auto* source = static_cast<CComboBox*>(dlg->GetDlgItem(int(IDC_COMPARE_SOURCE1)));
    EXPECT_EQ(source->GetItemDataPtr(source->GetCurSel()), host.Module("ZD4M"));
    dlg->SendMessage(WM_CLOSE);
    EXPECT_FALSE(dlg->IsWindowVisible());
    Press(*page, 1993);
    EXPECT_EQ(table->GetCompareDialog(), dlg);
    EXPECT_TRUE(dlg->IsWindowVisible());

    CShaftCopyDialog* shown = nullptr;
    CAfxModalDriver driver([&](CDialog& d) {
        shown = static_cast<CShaftCopyDialog*>(&d);
        EXPECT_EQ(shown->GetTargetDevice(), host.Module("ZD4M"));
        d.EndDialog(IDCANCEL);
    });
    Press(*page, 1997);
    EXPECT_EQ(driver.runs, 1);
    EXPECT_NE(shown, nullptr);

    panel.DestroyWindow();
    parent.DestroyWindow();
}

struct Outcome {
    int code = -1;
    QByteArray out;
    QString err;
};

Outcome Program(const QStringList& args) {
    QProcess p;
    p.setProgram(QStringLiteral(PARMIRA_BINARY_DIR "/bin/zordrivebench"));
    p.setArguments(args);
    p.start();
    Outcome r;
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = p.readAllStandardOutput();
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

TEST(CompareCommand, PrintsTheRowsAsCsvAndExitsAsDiffDoes) {
    // A drive read twice agrees with itself: a table of two lines, exit 0.
    const Outcome same = Program({"--compare", "ZD3S", "ZD3S"});
    EXPECT_EQ(same.code, 0) << same.err.toStdString();
    const QList<QByteArray> lines = same.out.split('\n');
    ASSERT_EQ(lines.size(), 3); // two lines, each ended
    EXPECT_TRUE(lines[0].startsWith("Time,"));
    EXPECT_EQ(QString::fromUtf8(lines[1]),
              QStringLiteral("行号,参数1,参数名称1,比较值1,参数2,参数名称2,比较值2"));

    // --same lists the agreeing rows; the exit code still tells that something differs.
    QTemporaryDir dir;
    const QString out = QDir(dir.path()).filePath(QStringLiteral("same.csv"));
    const Outcome factory = Program({"--compare", "ZD3S", "ZD3S:factory", "--same", "--out", out});
    EXPECT_EQ(factory.code, 1) << factory.err.toStdString();
    EXPECT_TRUE(factory.out.isEmpty());
    const QList<QByteArray> rows = QByteArray::fromStdString(Slurp(out.toStdString())).split('\n');
    ASSERT_GT(rows.size(), 100);
    EXPECT_TRUE(rows[2].startsWith("1,H00-00,"));

    // A parameter table meets the drive by address: a row whose code was changed in the
    // file still finds its parameter.
    const QString table = QDir(dir.path()).filePath(QStringLiteral("zd3s.csv"));
    ASSERT_EQ(Program({"--export", "ZD3S", table}).code, 0);
    std::string bytes = Slurp(table.toStdString());
    const std::string row = "\nH06-04,速度指令键盘设定值,200,";
    const size_t at = bytes.find(row);
    ASSERT_NE(at, std::string::npos);
    Spit(table.toStdString(), bytes.replace(at, row.size(), "\nX06-04,速度指令键盘设定值,300,"));
    const Outcome byAddress = Program({"--compare", "ZD3S", table});
    EXPECT_EQ(byAddress.code, 1) << byAddress.err.toStdString();
    const QList<QByteArray> differing = byAddress.out.split('\n');
    ASSERT_EQ(differing.size(), 4);
    EXPECT_EQ(QString::fromUtf8(differing[2]),
              QStringLiteral("1,H06-04,速度指令键盘设定值,200,X06-04,速度指令键盘设定值,300"));

    for (const auto& [args, code] : std::vector<std::pair<QStringList, int>>{
             {{"--compare", "ZD3S"}, 2},
             {{"--compare", "ZD3S", "NOPE"}, 4},
             {{"--compare", "ZD3S", QDir(dir.path()).filePath(QStringLiteral("none.zorparam"))},
              8}}) {
        const Outcome r = Program(args);
        EXPECT_EQ(r.code, code) << args.join(' ').toStdString();
        EXPECT_TRUE(r.out.isEmpty());
    }
}

} // namespace
