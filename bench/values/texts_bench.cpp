// The texts of every column of the live list for a generated 20 000-parameter device, as
// a repaint of all rows asks for them: the cost per cell.
#include "module/ParmiraApp.h"
#include "module/host/HostContract.h"
#include "values/GetVarInfo.h"
#include "values/ValueText.h"
#include "zorhost/HostServices.h"
#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostUiService.h"
#include "zorhost/services/HostVarUtil.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int kParameters = 20000;
constexpr int kColumns = 13;

// The host's text service in Chinese passes texts through as written: the bench prices
// the module's side.

struct Host {
    zorhost::CHostVarUtil util;
    zorhost::CHostUiService ui;
    zorhost::model::CProjectRoot root;
    zorhost::HostServices services;
    zorhost::model::CDeviceModule* module = nullptr;

    bool Build() {
        auto loaded = zorhost::device::GenerateDevice(kParameters);
        if (!loaded)
            return false;
        auto project = std::make_unique<zorhost::model::CProject>();
        module = project->Workspace().Modules().Add(
            std::make_unique<zorhost::model::CDeviceModule>(loaded.device, CString("G1"), 1));
        root.Open(std::move(project));
        services.Register<IHostVarUtil>(&util);
        services.Register<IHostUiService>(&ui);
        services.Register<IHostProjectRoot>(&root);
        theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
        return module != nullptr;
    }
    ~Host() { theApp.SetQueryInterfaceCallback(0, nullptr); }
};

// One row's cells, as the live list's single-axis layout fills them.
size_t RowTexts(CGetVarInfo& info, IVarObjEx* var) {
    IVarAttr* attr = var->GetAttr();
    CString code, name, unit, cell;
    size_t bytes = 0;
    cell.Format("%03d", 1);
    bytes += cell.GetByteLength();
    attr->GetCode(code);
    bytes += code.GetByteLength();
    attr->GetName(name);
    bytes += VarText::Translate(name).GetByteLength();
    bytes += info.CurrentValueText(var).GetByteLength();
    bytes += VarText::UnitText(var).GetByteLength();
    bytes += VarText::FactoryValueText(var).GetByteLength();
    bytes +=
        (attr->IsMinLinked() ? VarText::LinkedLimitText(var, FALSE) : VarText::MinValueText(var))
            .GetByteLength();
    bytes +=
        (attr->IsMaxLinked() ? VarText::LinkedLimitText(var, TRUE) : VarText::MaxValueText(var))
            .GetByteLength();
    bytes += VarText::ModifyModeText(attr).GetByteLength();
    bytes += VarText::DisplayFormatText(var).GetByteLength();
    bytes += VarText::EffectModeText(attr).GetByteLength();
    cell.Format("%u", attr->GetAddress());
    bytes += cell.GetByteLength();
    cell.Format("0x%04X", attr->GetAddress());
    bytes += cell.GetByteLength();
    return bytes;
}

void BM_AllColumnsOfAllRows(benchmark::State& state) {
    Host host;
    if (!host.Build()) {
        state.SkipWithError("generated device failed to load");
        return;
    }
    IVarStore& store = host.module->Store();
    const int count = store.GetCount();
    CGetVarInfo info;
    for (auto _ : state) {
        size_t bytes = 0;
        for (int i = 0; i < count; ++i)
            bytes += RowTexts(info, store.GetAt(i));
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * int64_t(count) * kColumns);
}
BENCHMARK(BM_AllColumnsOfAllRows)->Unit(benchmark::kMillisecond);

// The value column alone: the cell repainted on every refresh tick.
void BM_CurrentValueColumn(benchmark::State& state) {
    Host host;
    if (!host.Build()) {
        state.SkipWithError("generated device failed to load");
        return;
    }
    IVarStore& store = host.module->Store();
    const int count = store.GetCount();
    CGetVarInfo info;
    for (auto _ : state) {
        size_t bytes = 0;
        for (int i = 0; i < count; ++i)
            bytes += info.CurrentValueText(store.GetAt(i)).GetByteLength();
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * int64_t(count));
}
BENCHMARK(BM_CurrentValueColumn)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
