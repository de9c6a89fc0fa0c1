#include "files/RecipeWorkbook.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/VarTablePage2.h"
#include "table/TableResources.h"
#include "table/VarTable.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"

#include <afx/afxqt.h>
#include <afx/afxres.h>
#include <afx/afxtest.h>
#include <workbook/Workbook.h>

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

namespace {

const std::string kWorkbook =
    std::string(PARMIRA_SOURCE_DIR) + "/tests/workbook/data/recipe_5000.xlsx";

void BM_ReadWorkbook5000Rows(benchmark::State& state) {
    size_t rows = 0;
    for (auto _ : state) {
        workbook::Workbook book;
        book.Open(kWorkbook);
        rows = book.Sheets().empty() ? 0 : size_t(book.Sheets()[0].LastUsedRow());
    }
    state.counters["rows"] = double(rows);
}
BENCHMARK(BM_ReadWorkbook5000Rows)->Unit(benchmark::kMillisecond);

void BM_ReadRecipeWorkbook5000Rows(benchmark::State& state) {
    zorhost::ReferenceHost host;
    host.LoadDemo();
    theApp.m_hResource = AfxCreateResourceHandle("staging-bench");
    RegisterModuleResources(theApp.m_hResource);
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    size_t records = 0;
    for (auto _ : state) {
        RecipeRecordMap map;
        ReadRecipeWorkbook(CString(kWorkbook.c_str()), map);
        records = map.empty() ? 0 : map.begin()->second.size();
        DeleteRecipeRecords(map);
    }
    state.counters["records"] = double(records);
    theApp.SetQueryInterfaceCallback(0, nullptr);
    AfxFreeResourceHandle(theApp.m_hResource);
    theApp.m_hResource = nullptr;
}
BENCHMARK(BM_ReadRecipeWorkbook5000Rows)->Unit(benchmark::kMillisecond);

// Every writable parameter of a 20 000-parameter drive in one download.
void BM_DownloadRecords20000(benchmark::State& state) {
    const std::string path =
        (std::filesystem::temp_directory_path() / "parmira-staging-bench-20000.json").string();
    std::ofstream(path) << zorhost::device::GenerateDeviceJson(20000);
    zorhost::ReferenceHost host;
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup big;
    big.deviceFile = path;
    big.key = "BIG";
    big.number = 1;
    setup.modules = {big};
    if (!host.LoadProject(setup)) {
        state.SkipWithError("project");
        return;
    }
    zorhost::model::CDeviceModule* module = host.Module("BIG");
    std::vector<IRWDataItem*> records;
    zorhost::CHostParamRecordFactory factory;
    for (int i = 0; i < module->Store().GetCount(); ++i) {
        IVarObjEx* var = module->Store().GetAt(i);
        IVarAttr* attr = var->GetAttr();
        if (attr == nullptr || attr->GetModifyMode() == 2)
            continue;
        IRWDataItem* record = factory.NewParamRecord();
        record->SetRecordAddress(var->GetInstanceAddress());
        record->SetRecordType(attr->GetDataType());
        record->SetRecordValue(attr->GetFactoryValue());
        records.push_back(record);
    }
    for (auto _ : state)
        host.Transfer().DownloadRecords(nullptr, "BIG", records);
    state.counters["records"] = double(records.size());
    state.counters["failed"] = double(host.Transfer().LastDownloadFailures().size());
    for (IRWDataItem* r : records)
        delete r;
}
BENCHMARK(BM_DownloadRecords20000)->Unit(benchmark::kMillisecond);

// A .zorparam of every parameter of a 20 000-parameter drive opened into the staging
// list's set values: the file read, the type check, the fill and the repaint.
void BM_OpenParamFile20000IntoSetValues(benchmark::State& state) {
    const std::string device =
        (std::filesystem::temp_directory_path() / "parmira-staging-bench-20000.json").string();
    std::ofstream(device) << zorhost::device::GenerateDeviceJson(20000);
    zorhost::ReferenceHost host;
    zorhost::ProjectSetup setup;
    setup.listStyle = 1;
    zorhost::ModuleSetup big;
    big.deviceFile = device;
    big.key = "BIG";
    big.number = 1;
    setup.modules = {big};
    if (!host.LoadProject(setup)) {
        state.SkipWithError("project");
        return;
    }
    HINSTANCE h = AfxCreateResourceHandle("staging-bench-open");
    theApp.m_hResource = h;
    RegisterModuleResources(h);
    RegisterTableResources(h);
    constexpr UINT IDD_BENCH_PARENT = 9954;
    AfxRegisterDialog(h, DlgTemplate{IDD_BENCH_PARENT, "staging", 1280, 760, {}, WS_POPUP});
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    zorhost::model::CDeviceModule* module = host.Module("BIG");
    const std::string path =
        (std::filesystem::temp_directory_path() / "parmira-staging-bench-20000.zorparam").string();
    {
        auto* file =
            static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
        file->GetVarList()->CopyFrom(module->GetVarList());
        file->Save(CString(path.c_str()));
        file->Release();
    }
    {
        CDialog parent;
        parent.Create(IDD_BENCH_PARENT, nullptr);
        auto table = std::make_unique<CVarTable>();
        table->SetWorkspace(host.Project()->GetWorkspace());
        table->SetModule(module);
        table->Create(IDD_VAR_TABLE, &parent);
        table->MoveWindow(0, 0, 1280, 760);
        parent.ShowWindow(SW_SHOW);
        auto& page = *static_cast<CVarTablePage2*>(table->GetPage2());
        page.ShowAllParameters(table->GetVarList());
        CAfxRecordingResponder prompts;
        int checked = 0;
        for (auto _ : state) {
            prompts.ChooseFiles({CString(path.c_str())});
            page.OpenRecipe();
            page.GetList().UpdateWindow();
        }
        for (int i = 0; i < module->Store().GetCount(); ++i)
            checked += module->Store().GetAt(i)->IsChecked() ? 1 : 0;
        state.counters["params"] = module->Store().GetCount();
        state.counters["staged"] = checked;
        table->DestroyWindow();
        parent.DestroyWindow();
    }
    theApp.SetQueryInterfaceCallback(0, nullptr);
    AfxFreeResourceHandle(h);
    theApp.m_hResource = nullptr;
    std::filesystem::remove(path);
}
BENCHMARK(BM_OpenParamFile20000IntoSetValues)->Unit(benchmark::kMillisecond);

// ---------------------------------------------------------------- screenshots
// The staging list of the demo servo with set values beside the drive's values, some rows
// checked, and the filter menu open over it.
int TakeShots(const std::string& dir) {
    std::filesystem::create_directories(dir);
    zorhost::ReferenceHost host;
    zorhost::ProjectSetup setup = zorhost::ReferenceHost::DemoProject();
    setup.listStyle = 1;
    if (!host.LoadProject(setup))
        return 1;
    HINSTANCE h = AfxCreateResourceHandle("staging-shots");
    theApp.m_hResource = h;
    RegisterModuleResources(h);
    RegisterTableResources(h);
    constexpr UINT IDD_SHOT_PARENT = 9953;
    AfxRegisterDialog(h, DlgTemplate{IDD_SHOT_PARENT, "staging list", 1280, 760, {}, WS_POPUP});
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    int failures = 0;
    {
        zorhost::model::CDeviceModule* module = host.Module("ZD3S");
        module->SetAccessLevel(3);
        CDialog parent;
        parent.Create(IDD_SHOT_PARENT, nullptr);
        auto table = std::make_unique<CVarTable>();
        table->SetWorkspace(host.Project()->GetWorkspace());
        table->SetModule(module);
        table->Create(IDD_VAR_TABLE, &parent);
        table->MoveWindow(0, 0, 1280, 760);
        parent.ShowWindow(SW_SHOW);
        auto& page = *static_cast<CVarTablePage2*>(table->GetPage2());
        IVarStore* store = table->GetVarList();
        if (IGroupSet* root = store->GetGroupRoot(0))
            if (IGroupNode* group = root->FindByName("H06"))
                page.ShowGroup(group, store);
        for (int i = 0; i < 3; ++i) {
            page.SubmitRefreshQuery();
            host.Refresh().RunCycle();
            AfxPumpMessagesUntil([] { return false; }, 20);
        }
        const struct {
            const char* code;
            const char* text;
        } staged[] = {{"H06-02", "3000"}, {"H06-03", "2"}, {"H06-05", "150"}, {"H06-09", "1"}};
        for (const auto& st : staged)
            for (int row = 0; row < page.GetShownCount(); ++row) {
                CString code;
                page.GetShownVar(row)->GetAttr()->GetCode(code);
                if (code == st.code)
                    page.OnCellEditCommitted(row, page.GetValueColumn(), st.text);
            }
        if (IVarObjEx* var = store->FindByCode("H06-05"))
            var->SetChecked(FALSE);
        page.RepaintList();
        AfxPumpMessagesUntil([] { return false; }, 50);
        failures += !AfxTestGrabWindow(table.get(), (dir + "/staging_list.png").c_str());

        // The filter menu: grabbed while it is open, laid over the frame at its place.
        QWidget* frame = AfxWidgetFromHandle(table->GetSafeHwnd());
        QTimer::singleShot(300, [&] {
            QWidget* popup = QApplication::activePopupWidget();
            QPixmap shot = frame->grab();
            if (popup != nullptr) {
                QPainter painter(&shot);
                painter.drawPixmap(frame->mapFromGlobal(popup->pos()), popup->grab());
                painter.end();
                popup->close();
            } else {
                ++failures;
            }
            failures += !shot.save(QString::fromStdString(dir + "/staging_filter_menu.png"));
        });
        static_cast<CButton&>(page.GetFilterButton()).Click();
        table->DestroyWindow();
        parent.DestroyWindow();
    }
    theApp.SetQueryInterfaceCallback(0, nullptr);
    AfxFreeResourceHandle(h);
    theApp.m_hResource = nullptr;
    std::printf("screenshots in %s\n", dir.c_str());
    return failures;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM",
            qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--shots=", 0) == 0)
            return TakeShots(arg.substr(8));
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
