// Parameter files at 20 000 parameters, against the reference host: the module's table
// writer, the host's .zorparam save and open, and the table read back.
#include "files/ParamTableWriter.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IVarStore.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamTableReader.h"

#include <afx/afxres.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <fstream>
#include <memory>

namespace {

constexpr int kParameters = 20000;

// One host with one generated drive for all benchmarks.
struct Bench {
    QTemporaryDir dir;
    zorhost::ReferenceHost host;
    zorhost::model::CDeviceModule* module = nullptr;
    std::vector<IVarObjEx*> all;

    Bench() {
        const std::string device = dir.path().toStdString() + "/big.json";
        std::ofstream(device) << zorhost::device::GenerateDeviceJson(kParameters);
        zorhost::ProjectSetup setup;
        zorhost::ModuleSetup m;
        m.deviceFile = device;
        m.key = "BIG";
        setup.modules.push_back(m);
        std::string error;
        if (!host.LoadProject(setup, &error))
            std::abort();
        module = host.Module("BIG");
        HINSTANCE h = AfxCreateResourceHandle("files-bench");
        theApp.m_hResource = h;
        RegisterModuleResources(h);
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
        IVarStore* store = module->GetVarList();
        for (int i = 0; i < store->GetCount(); ++i)
            all.push_back(store->GetAt(i));
    }
    std::string Path(const char* name) const { return dir.path().toStdString() + "/" + name; }
};

Bench& B() {
    static Bench bench;
    return bench;
}

void BM_WriteParamTable(benchmark::State& state) {
    Bench& b = B();
    const CString path(b.Path("table.csv"));
    for (auto _ : state)
        if (!WriteParamTableRows(path, b.all, b.module, FALSE))
            state.SkipWithError("not written");
    state.SetItemsProcessed(state.iterations() * int64_t(b.all.size()));
}
BENCHMARK(BM_WriteParamTable)->Unit(benchmark::kMillisecond);

// The save of the whole module: the file takes copies of every variable and group, then
// writes itself.
void BM_SaveZorparam(benchmark::State& state) {
    Bench& b = B();
    const CString path(b.Path("module.zorparam"));
    for (auto _ : state) {
        zorhost::files::CParamFile file;
        file.GetVarList()->CopyFrom(b.module->GetVarList());
        if (!file.Save(path))
            state.SkipWithError("not saved");
    }
    state.SetItemsProcessed(state.iterations() * kParameters);
}
BENCHMARK(BM_SaveZorparam)->Unit(benchmark::kMillisecond);

void BM_OpenZorparam(benchmark::State& state) {
    Bench& b = B();
    const CString path(b.Path("open.zorparam"));
    {
        zorhost::files::CParamFile file;
        file.GetVarList()->CopyFrom(b.module->GetVarList());
        file.Save(path);
    }
    const bool bound = state.range(0) != 0;
    for (auto _ : state) {
        zorhost::files::CParamFile file;
        file.LoadContext(bound ? b.module : nullptr);
        if (!file.Open(path))
            state.SkipWithError("not opened");
    }
    state.SetItemsProcessed(state.iterations() * kParameters);
}
BENCHMARK(BM_OpenZorparam)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ReadParamTable(benchmark::State& state) {
    Bench& b = B();
    const CString path(b.Path("read.csv"));
    WriteParamTableRows(path, b.all, b.module, FALSE);
    const bool bound = state.range(0) != 0;
    for (auto _ : state) {
        zorhost::files::CParamFile file;
        std::string error;
        if (!zorhost::files::ReadParamTable(path, file, bound ? b.module : nullptr, &error))
            state.SkipWithError(error.c_str());
    }
    state.SetItemsProcessed(state.iterations() * kParameters);
}
BENCHMARK(BM_ReadParamTable)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
