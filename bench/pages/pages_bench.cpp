// Costs of the live list against the reference host:
// - one repaint tick of a full screen of rows (what the 500 ms tick causes), as the
//   module's share (texts and colours of every visible cell) and as a whole paint, with
//   no value changed since the last tick and with every value on screen changed;
// - opening "所有参数" on a generated 20 000-parameter device: collection and first paint,
//   together and each alone, and with no text laid out before.
// `--shots=DIR` writes PNG screenshots of the list and both dialogs instead.
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IConnectorGroup.h"
#include "module/host/IConnectorTable.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/VarTablePage1.h"
#include "table/TableResources.h"
#include "table/VarTable.h"
#include "values/WriteLinkerVarDialog.h"
#include "values/WriteVarDialog.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>

#include <QApplication>
#include <QTableView>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr UINT IDD_BENCH_PARENT = 9952;

// Paints what is invalid now, as the event loop would on its next turn.
void PaintPending() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
}

// The same type, another payload: every cell of the value shows another text.
void Bump(Variant& v) {
    switch (v.vt) {
    case VT_I2:
    case VT_BOOL:
        v.iVal = int16_t(v.iVal ^ 1);
        break;
    case VT_I4:
        v.lVal ^= 1;
        break;
    case VT_R4:
        v.fltVal += 1.0f;
        break;
    case VT_R8:
    case VT_DATE:
        v.dblVal += 1.0;
        break;
    case VT_I1:
        v.cVal = int8_t(v.cVal ^ 1);
        break;
    case VT_UI1:
        v.bVal = uint8_t(v.bVal ^ 1);
        break;
    case VT_UI2:
        v.uiVal = uint16_t(v.uiVal ^ 1);
        break;
    case VT_UI4:
        v.ulVal ^= 1;
        break;
    default:
        v = Variant::UI2(1);
        break;
    }
}

// The module's resources and the host's callback, for the life of one scene.
class Scene {
public:
    explicit Scene(const zorhost::ProjectSetup& setup) {
        std::string error;
        m_ok = host.LoadProject(setup, &error);
        if (!m_ok) {
            std::fprintf(stderr, "project: %s\n", error.c_str());
            return;
        }
        HINSTANCE h = AfxCreateResourceHandle("pages-bench");
        theApp.m_hResource = h;
        RegisterModuleResources(h);
        RegisterTableResources(h);
        AfxRegisterDialog(h, DlgTemplate{IDD_BENCH_PARENT, "live list", 1280, 760, {}, WS_POPUP});
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    }
    ~Scene() {
        Close();
        theApp.SetQueryInterfaceCallback(0, nullptr);
        theApp.languageListeners.RemoveAll();
        if (theApp.m_hResource != nullptr)
            AfxFreeResourceHandle(theApp.m_hResource);
        theApp.m_hResource = nullptr;
    }
    bool Open(const CString& key) {
        if (!m_ok)
            return false;
        zorhost::model::CDeviceModule* module = host.Module(key);
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
    void Close() {
        if (table != nullptr && table->GetSafeHwnd() != nullptr)
            table->DestroyWindow();
        table.reset();
        if (parent.GetSafeHwnd() != nullptr)
            parent.DestroyWindow();
    }
    CVarTablePage1& Page() { return *static_cast<CVarTablePage1*>(table->GetPage1()); }
    // One host read cycle for what the page asks.
    void Read() {
        Page().SubmitRefreshQuery();
        host.Refresh().RunCycle();
        AfxPumpMessagesUntil([] { return false; }, 10);
    }

    zorhost::ReferenceHost host;
    CDialog parent;
    std::unique_ptr<CVarTable> table;

private:
    bool m_ok = false;
};

enum class Tick { Cells, PaintUnchanged, PaintAllChanged };

void RepaintTick(benchmark::State& state, Tick tick) {
    Scene scene(zorhost::ReferenceHost::DemoProject());
    if (!scene.Open("ZD3S")) {
        state.SkipWithError("no frame");
        return;
    }
    scene.Read();
    scene.Read();
    CVarTableListCtrl_1& list = scene.Page().GetPageList();
    const int top = list.GetTopIndex();
    const int rows = std::min(list.GetCountPerPage() + 1, list.GetItemCount() - top);
    const int columns = list.GetColumnCount();
    // The first tick paints what the reads changed.
    scene.Page().RepaintList();
    PaintPending();
    long changedCells = 0;
    for (auto _ : state) {
        if (tick == Tick::PaintAllChanged) {
            state.PauseTiming();
            for (int r = top; r < top + rows; ++r)
                if (IVarObjEx* var = scene.Page().GetShownVar(r)) {
                    Variant v = var->GetValue();
                    Bump(v);
                    var->SetValue(v);
                }
            state.ResumeTiming();
        }
        if (tick != Tick::Cells) {
            // What RepaintList does, counted.
            changedCells += list.InvalidateChangedCells();
            PaintPending();
        } else {
            for (int r = top; r < top + rows; ++r)
                for (int c = 0; c < columns; ++c) {
                    COLORREF text = 0;
                    COLORREF back = 0;
                    benchmark::DoNotOptimize(list.OnGetCellText(r, c));
                    list.OnGetCellColors(r, c, text, back);
                }
        }
    }
    state.counters["rows"] = rows;
    state.counters["cells"] = rows * columns;
    state.counters["repainted"] =
        double(changedCells) / double(std::max<int64_t>(1, state.iterations()));
}

void BM_RepaintTickCells(benchmark::State& state) {
    RepaintTick(state, Tick::Cells);
}
void BM_RepaintTickPaint(benchmark::State& state) {
    RepaintTick(state, Tick::PaintUnchanged);
}
void BM_RepaintTickPaintAllChanged(benchmark::State& state) {
    RepaintTick(state, Tick::PaintAllChanged);
}
BENCHMARK(BM_RepaintTickCells)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepaintTickPaint)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepaintTickPaintAllChanged)->Unit(benchmark::kMicrosecond);

std::string LargeDeviceFile() {
    static std::string path;
    if (path.empty()) {
        path = (std::filesystem::temp_directory_path() / "parmira-pages-bench-20000.json").string();
        std::ofstream(path) << zorhost::device::GenerateDeviceJson(20000);
    }
    return path;
}

enum class Open { CollectAndPaint, CollectAndPaintCold, CollectOnly, PaintOnly, PaintOnlyCold };

// Lists keep the texts they laid out until the language changes.
void ForgetLaidOutTexts() {
    for (QWidget* widget : QApplication::allWidgets())
        if (qobject_cast<QTableView*>(widget) != nullptr) {
            QEvent change(QEvent::LanguageChange);
            QCoreApplication::sendEvent(widget, &change);
        }
}

// The opening with its first paint, the collection alone, or the first paint alone.
void OpenAllParameters(benchmark::State& state, Open what) {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup m;
    m.deviceFile = LargeDeviceFile();
    m.key = "BIG";
    setup.modules.push_back(m);
    Scene scene(setup);
    if (!scene.Open("BIG")) {
        state.SkipWithError("no frame");
        return;
    }
    // Shown and painted once, so that each opening pays for a real paint.
    AfxPumpMessagesUntil([] { return false; }, 50);
    IVarStore* store = scene.table->GetVarList();
    for (auto _ : state) {
        const bool paintOnly = what == Open::PaintOnly || what == Open::PaintOnlyCold;
        if (what == Open::CollectAndPaintCold) {
            state.PauseTiming();
            ForgetLaidOutTexts();
            state.ResumeTiming();
        }
        if (paintOnly)
            state.PauseTiming();
        scene.Page().ShowAllParameters(store);
        if (what == Open::PaintOnlyCold)
            ForgetLaidOutTexts();
        if (paintOnly)
            state.ResumeTiming();
        if (what != Open::CollectOnly)
            PaintPending();
    }
    state.counters["rows"] = scene.Page().GetShownCount();
    state.counters["parameters"] = store->GetCount();
}

void BM_OpenAllParameters20000(benchmark::State& state) {
    OpenAllParameters(state, Open::CollectAndPaint);
}
void BM_OpenColdAllParameters20000(benchmark::State& state) {
    OpenAllParameters(state, Open::CollectAndPaintCold);
}
void BM_CollectAllParameters20000(benchmark::State& state) {
    OpenAllParameters(state, Open::CollectOnly);
}
void BM_FirstPaintAllParameters20000(benchmark::State& state) {
    OpenAllParameters(state, Open::PaintOnly);
}
void BM_FirstPaintColdAllParameters20000(benchmark::State& state) {
    OpenAllParameters(state, Open::PaintOnlyCold);
}
BENCHMARK(BM_OpenAllParameters20000)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_OpenColdAllParameters20000)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_CollectAllParameters20000)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_FirstPaintAllParameters20000)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_FirstPaintColdAllParameters20000)->Unit(benchmark::kMillisecond)->Iterations(20);

// ---------------------------------------------------------------- screenshots
int TakeShots(const std::string& dir) {
    std::filesystem::create_directories(dir);
    Scene scene(zorhost::ReferenceHost::DemoProject());
    if (!scene.Open("ZD3S"))
        return 1;
    // A running motor, so the monitoring values move between reads.
    scene.host.Drive("ZD3S")->SetRunning(true);
    IVarStore* store = scene.table->GetVarList();
    for (int i = 0; i < 6; ++i) {
        scene.host.Tick(250);
        scene.Read();
    }
    scene.Page().RepaintList();
    int failures = 0;
    failures += !AfxTestGrabWindow(scene.table.get(), (dir + "/live_list.png").c_str());
    // A group with enumerations, bits and digits.
    if (IGroupSet* root = store->GetGroupRoot(0))
        if (IGroupNode* group = root->FindByName("H0B"))
            scene.Page().ShowGroup(group, store);
    for (int i = 0; i < 4; ++i) {
        scene.host.Tick(250);
        scene.Read();
    }
    failures += !AfxTestGrabWindow(scene.table.get(), (dir + "/live_list_monitoring.png").c_str());

    IVarObjEx* bits = store->FindByCode("H03-00");
    if (bits != nullptr) {
        bits->SetValue(Variant::UI2(0x0025));
        CWriteVarDialog dialog(&scene.Page());
        dialog.SetItem(bits);
        CAfxModalDriver driver([&](CDialog& d) {
            failures += !AfxTestGrabWindow(&d, (dir + "/bit_dialog.png").c_str());
            d.EndDialog(IDCANCEL);
        });
        dialog.DoModal();
    }
    IVarObjEx* connector = store->FindByCode("H18-09");
    IVarCatalog* catalog = scene.host.Module("ZD3S")->GetVarCatalog();
    if (connector != nullptr && catalog != nullptr) {
        // Wired to H31-03: the K group's base plus the position of its address.
        IConnectorTable* connectors = catalog->GetConnectorTable();
        IVarAttr* target = catalog->FindAttrByCode("H31-03");
        IConnectorGroup* k = connectors != nullptr ? connectors->GetEntry(0, 2) : nullptr;
        if (target != nullptr && k != nullptr)
            connector->SetValue(Variant::UI2(uint16_t(k->GetBase() + target->GetAddress() % 100)));
        CWriteLinkerVarDialog dialog(&scene.Page());
        dialog.SetItem(connector);
        dialog.SetCatalog(catalog, catalog->GetConnectorTable());
        CAfxModalDriver driver([&](CDialog& d) {
            failures += !AfxTestGrabWindow(&d, (dir + "/connector_dialog.png").c_str());
            d.EndDialog(IDCANCEL);
        });
        dialog.DoModal();
    }
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
