// The frame's work on a drive of many parameters: rebuilding the group tree, collecting
// every variable, and one refresh cycle (query and tick) with the real list pages. The
// cycle must cost the same at 500 and at 20 000 parameters.
#include "table_host.h"

#include "module/ParmiraApp.h"
#include "table/VarTable.h"

#include <afx/afxmt.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

// `params` parameters in groups of 100: a tenth of the groups sit in categories, a fifth
// of the parameters belong to four axes.
void FillDrive(tt::Module& m, int params) {
    const int perGroup = 100;
    const int groups = std::max(1, params / perGroup);
    const int axisGroups = groups / 5;
    char code[32], name[32];
    for (int g = 0; g < groups; ++g) {
        tt::CGroupNode* group;
        std::snprintf(name, sizeof name, "H%03d", g);
        if (g < groups - axisGroups) {
            group = tt::AddGroup(m.drive.groups, name);
        } else {
            const int axis = (g - (groups - axisGroups)) % 4;
            while (int(m.drive.axes.axes.size()) <= axis) {
                char axisName[16];
                std::snprintf(axisName, sizeof axisName, "轴%d", int(m.drive.axes.axes.size()) + 1);
                m.drive.axes.Add(axisName);
            }
            group = tt::AddGroup(m.drive.axes.axes[size_t(axis)]->Groups(), name);
        }
        group->SetDescription("组说明");
        for (int i = 0; i < perGroup; ++i) {
            std::snprintf(code, sizeof code, "H%03d-%02d", g, i);
            tt::Attr* a = m.drive.AddParam(code, UINT(g * 256 + i));
            a->modifyMode = i % 7 == 6 ? 3 : i % 3;
            group->AddMember(code);
        }
    }
    for (int c = 0; c * 10 < groups / 10; ++c) {
        std::vector<std::string> names;
        for (int k = 0; k < 10; ++k) {
            std::snprintf(name, sizeof name, "H%03d", c * 10 + k);
            names.emplace_back(name);
        }
        tt::AddCategory(m.drive.groups, ("类" + std::to_string(c)).c_str(), names);
    }
}

struct Frame {
    explicit Frame(int params, bool realPages) : host(!realPages) {
        module = host.AddModule("M1");
        FillDrive(*module, params);
        // No worker: the measured cycle is driven by hand.
        host.services.Withhold<IHostModuleManager>();
        parent.Create(9901, nullptr);
        table.SetWorkspace(&host.project);
        table.SetModule(module);
        table.Create(IDD_VAR_TABLE, &parent);
        // Shown, so that the list has rows on screen to ask for.
        parent.ShowWindow(SW_SHOW);
        AfxPumpMessagesUntil([] { return false; }, 200);
    }
    ~Frame() {
        table.DestroyWindow();
        parent.DestroyWindow();
    }
    tt::TableHost host;
    tt::Module* module = nullptr;
    CDialog parent;
    CVarTable table;
};

void BM_RebuildTree(benchmark::State& state) {
    Frame f(int(state.range(0)), false);
    for (auto _ : state) {
        f.table.StopRefresh();
        f.table.SetModule(f.module);
        f.table.BuildTree();
    }
    state.counters["items"] = double(f.table.GetTree().GetCount());
}
BENCHMARK(BM_RebuildTree)->Arg(500)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_CollectAllVars(benchmark::State& state) {
    tt::TableHost host;
    tt::Module* module = host.AddModule("M1");
    FillDrive(*module, int(state.range(0)));
    CVarTable table;
    table.SetModule(module);
    size_t count = 0;
    for (auto _ : state) {
        std::vector<IVarObjEx*> list;
        table.CollectAllVars(list, TRUE);
        count = list.size();
        benchmark::DoNotOptimize(list.data());
    }
    state.counters["vars"] = double(count);
}
BENCHMARK(BM_CollectAllVars)->Arg(500)->Arg(20000)->Unit(benchmark::kMillisecond);

// One refresh cycle as the frame goes through it, with the list pages of the module.
void BM_RefreshCycle(benchmark::State& state) {
    Frame f(int(state.range(0)), true);
    for (auto _ : state) {
        // The host's cycle reads the last query (no drive: nothing) and calls the frame,
        // whose posted query the pump delivers; then the worker's tick.
        f.host.refresh.RunCycle();
        AfxPumpPendingMessages();
        f.table.SendMessage(UM_REFRESH_TICK);
    }
    state.counters["pages"] =
        double((f.table.GetPage1() != nullptr) + (f.table.GetPage2() != nullptr));
    state.counters["shown"] =
        f.table.GetPage1() != nullptr ? double(f.table.GetPage1()->GetShownCount()) : -1.0;
    // Left waiting: the query of the last cycle alone.
    state.counters["queries"] = double(f.host.refresh.PendingQueries());
    state.counters["items/query"] = double(f.host.refresh.PendingAddresses().size());
}
BENCHMARK(BM_RefreshCycle)->Arg(500)->Arg(20000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
