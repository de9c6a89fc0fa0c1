// Costs of the search box of the live list on a generated 20 000-parameter device, all
// parameters selected:
// - a text that matches few rows and one that matches every row, with the search texts
//   already prepared (the usual case) and on a cold base (nothing prepared yet);
// - the first search after a language change, and after an access level change;
// - the first search after the list stood idle long enough to prepare its texts.
#include "files/ZxdExport.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IVarStore.h"
#include "pages/VarTablePage1.h"
#include "table/TableResources.h"
#include "table/VarTable.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>

#include <QApplication>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr UINT IDD_BENCH_PARENT = 9953;

std::string LargeDeviceFile() {
    static std::string path;
    if (path.empty()) {
        path =
            (std::filesystem::temp_directory_path() / "parmira-search-bench-20000.json").string();
        std::ofstream(path) << zorhost::device::GenerateDeviceJson(20000);
    }
    return path;
}

// The frame on one module, with the module's resources and the host's callback.
class Scene {
public:
    explicit Scene(const zorhost::ProjectSetup& setup) {
        std::string error;
        m_ok = host.LoadProject(setup, &error);
        HINSTANCE h = AfxCreateResourceHandle("search-bench");
        theApp.m_hResource = h;
        RegisterModuleResources(h);
        RegisterTableResources(h);
        AfxRegisterDialog(h, DlgTemplate{IDD_BENCH_PARENT, "search", 1280, 760, {}, WS_POPUP});
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    }
    ~Scene() {
        if (table != nullptr && table->GetSafeHwnd() != nullptr)
            table->DestroyWindow();
        table.reset();
        if (parent.GetSafeHwnd() != nullptr)
            parent.DestroyWindow();
        theApp.SetQueryInterfaceCallback(0, nullptr);
        theApp.languageListeners.RemoveAll();
        AfxFreeResourceHandle(theApp.m_hResource);
        theApp.m_hResource = nullptr;
    }
    bool Open(const CString& key) {
        zorhost::model::CDeviceModule* module = m_ok ? host.Module(key) : nullptr;
        if (module == nullptr)
            return false;
        module->SetAccessLevel(3);
        parent.Create(IDD_BENCH_PARENT, nullptr);
        table = std::make_unique<CVarTable>();
        table->SetWorkspace(host.Project()->GetWorkspace());
        table->SetModule(module);
        if (!table->Create(IDD_VAR_TABLE, &parent))
            return false;
        table->MoveWindow(0, 0, 1280, 760);
        parent.ShowWindow(SW_SHOW);
        return true;
    }
    CVarTablePage1& Page() { return *static_cast<CVarTablePage1*>(table->GetPage1()); }
    void SetEnglish(bool english) {
        host.Ui().SetLanguage(english ? zorhost::UiLanguage::English
                                      : zorhost::UiLanguage::Chinese);
        host.Bus().RaiseLanguageChanged();
    }

    zorhost::ReferenceHost host;
    CDialog parent;
    std::unique_ptr<CVarTable> table;

private:
    bool m_ok = false;
};

std::unique_ptr<Scene> OpenLarge() {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup m;
    m.deviceFile = LargeDeviceFile();
    m.key = "BIG";
    setup.modules.push_back(m);
    auto scene = std::make_unique<Scene>(setup);
    if (!scene->Open("BIG"))
        return nullptr;
    scene->Page().ShowAllParameters(scene->table->GetVarList());
    return scene;
}

// Prepared: searched before. Cold: nothing prepared, Enter at once. LanguageChanged: the
// language moved just before the Enter. LevelChanged: the user chose another access level
// and back, searching in between, then showed all parameters again and pressed Enter at
// once. AfterIdle: nothing prepared, then the list stood idle until the page had prepared
// its texts in slices, as when a user moves to the box.
enum class Start { Prepared, Cold, LanguageChanged, LevelChanged, AfterIdle };

// "h4e-0" matches a few dozen codes; "h" matches every code.
void Search(benchmark::State& state, const char* text, Start start) {
    std::unique_ptr<Scene> scene = OpenLarge();
    if (scene == nullptr) {
        state.SkipWithError("no frame");
        return;
    }
    CVarTablePage1& page = scene->Page();
    page.SearchRows(text);
    bool english = false;
    double idle_ms = 0;
    for (auto _ : state) {
        state.PauseTiming();
        if (start == Start::Cold || start == Start::AfterIdle)
            page.DropSearchCache();
        if (start == Start::AfterIdle) {
            const auto begin = std::chrono::steady_clock::now();
            page.PrepareSearchWhenIdle();
            AfxPumpMessagesUntil(
                [&] { return page.GetSearchIndex().GetCount() >= page.GetGroupVars().GetCount(); },
                10000);
            idle_ms =
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
                    .count();
        }
        if (start == Start::LanguageChanged) {
            english = !english;
            scene->SetEnglish(english);
        }
        if (start == Start::LevelChanged) {
            scene->table->ApplyAccessLevel(scene->table->GetModule(), 2);
            page.SearchRows(text);
            scene->table->ApplyAccessLevel(scene->table->GetModule(), 3);
            page.ShowAllParameters(scene->table->GetVarList());
        }
        state.ResumeTiming();
        page.SearchRows(text);
    }
    state.counters["base"] = page.GetGroupVars().GetCount();
    state.counters["found"] = page.GetShownCount();
    if (start == Start::AfterIdle)
        state.counters["idle_ms"] = idle_ms;
}

void BM_SearchFew(benchmark::State& s) {
    Search(s, "h4e-0", Start::Prepared);
}
void BM_SearchEvery(benchmark::State& s) {
    Search(s, "h", Start::Prepared);
}
void BM_SearchFewCold(benchmark::State& s) {
    Search(s, "h4e-0", Start::Cold);
}
void BM_SearchEveryCold(benchmark::State& s) {
    Search(s, "h", Start::Cold);
}
void BM_SearchFewAfterLanguageChange(benchmark::State& s) {
    Search(s, "h4e-0", Start::LanguageChanged);
}
void BM_SearchEveryAfterLanguageChange(benchmark::State& s) {
    Search(s, "h", Start::LanguageChanged);
}
void BM_SearchFewAfterLevelChange(benchmark::State& s) {
    Search(s, "h4e-0", Start::LevelChanged);
}
void BM_SearchEveryAfterLevelChange(benchmark::State& s) {
    Search(s, "h", Start::LevelChanged);
}
void BM_SearchFewAfterIdle(benchmark::State& s) {
    Search(s, "h4e-0", Start::AfterIdle);
}
BENCHMARK(BM_SearchFew)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SearchEvery)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SearchFewCold)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_SearchEveryCold)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_SearchFewAfterIdle)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_SearchFewAfterLanguageChange)->Unit(benchmark::kMillisecond)->Iterations(6);
BENCHMARK(BM_SearchEveryAfterLanguageChange)->Unit(benchmark::kMillisecond)->Iterations(6);
BENCHMARK(BM_SearchFewAfterLevelChange)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_SearchEveryAfterLevelChange)->Unit(benchmark::kMillisecond)->Iterations(5);

// The compressed export of all 20 000 rows: records and the zlib image of the file. The
// first run counts the CPU time of the user-interface thread only (the compress runs on a
// worker meanwhile), the second that of all threads.
void BM_ZxdExport20000(benchmark::State& state) {
    std::unique_ptr<Scene> scene = OpenLarge();
    if (scene == nullptr) {
        state.SkipWithError("no frame");
        return;
    }
    std::vector<IVarObjEx*> rows;
    scene->Page().CollectShown(rows);
    const std::string path =
        (std::filesystem::temp_directory_path() / "parmira-search-bench.zxd").string();
    for (auto _ : state)
        if (WriteZxdFile(path, scene->table->GetModule(), rows) != ZxdResult::Written)
            state.SkipWithError("not written");
    state.counters["rows"] = double(rows.size());
    state.counters["bytes"] = double(std::filesystem::file_size(path));
    std::filesystem::remove(path);
}
BENCHMARK(BM_ZxdExport20000)->Unit(benchmark::kMillisecond)->Iterations(5);
// The compress runs on a worker: the CPU time of all threads, to see the whole cost.
BENCHMARK(BM_ZxdExport20000)->Unit(benchmark::kMillisecond)->Iterations(5)->MeasureProcessCPUTime();

int TakeShots(const std::string& dir) {
    std::filesystem::create_directories(dir);
    Scene scene(zorhost::ReferenceHost::DemoProject());
    if (!scene.Open("ZD3S"))
        return 1;
    CVarTablePage1& page = scene.Page();
    page.GetSearchBox().SetWindowText("h03-1");
    page.GetSearchBox().SetFocus();
    AfxTestPressKey(&page.GetSearchBox(), VK_RETURN);
    AfxPumpMessagesUntil([] { return false; }, 50);
    int failures = !AfxTestGrabWindow(scene.table.get(), (dir + "/search_result.png").c_str());
    CAfxModalDriver driver([&](CDialog& d) {
        failures += !AfxTestGrabWindow(&d, (dir + "/column_dialog.png").c_str());
        d.EndDialog(IDCANCEL);
    });
    page.ChooseColumns();
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
