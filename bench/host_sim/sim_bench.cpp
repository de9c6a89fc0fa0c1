// Host-side cost of the simulated traffic (latency set to 0): what one refresh cycle of a
// screenful of rows, a whole-module upload and a checked direct write cost the host.
#include "module/host/IVarAttr.h"
#include "zorhost/ReferenceHost.h"

#include <benchmark/benchmark.h>

namespace {

struct Demo {
    zorhost::ReferenceHost host;
    Demo() {
        host.LoadDemo();
        for (const CString& key : host.ModuleKeys())
            host.Drive(key)->SetLatency(0);
    }
};

void BM_RefreshCycle(benchmark::State& state) {
    Demo demo;
    auto& refresh = demo.host.Refresh();
    zorhost::model::CVarStore& store = demo.host.Module("ZD3S")->Store();
    const int rows = int(state.range(0));
    for (auto _ : state) {
        std::unique_ptr<IHostRefreshQuery> q(refresh.NewQuery());
        q->SetKind(1);
        q->SetModuleKey("ZD3S");
        for (int i = 0; i < rows; ++i) {
            IVarAttr* a = store.GetAt(i % store.GetCount())->GetAttr();
            IHostRefreshItem* item = q->NewItem();
            item->SetAddress(a->GetAddress());
            item->SetDataType(a->GetDataType());
            item->SetLength(a->GetValueLength());
            q->AddItem(item);
        }
        refresh.SubmitQuery(q.get());
        benchmark::DoNotOptimize(refresh.RunCycle());
        demo.host.Drive("ZD3S")->TakeRequests();
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(BM_RefreshCycle)->Arg(31)->Arg(200);

void BM_UploadModule(benchmark::State& state) {
    Demo demo;
    const CString key = state.range(0) == 0 ? "ZD3S" : "ZD4M";
    for (auto _ : state) {
        demo.host.Transfer().UploadModule(nullptr, key);
        demo.host.Drive(key)->TakeRequests();
    }
    state.SetItemsProcessed(state.iterations() * demo.host.Module(key)->Store().GetCount());
}
BENCHMARK(BM_UploadModule)->Arg(0)->Arg(1);

void BM_WriteVarDirect(benchmark::State& state) {
    Demo demo;
    auto& helper = demo.host.DeviceHelper();
    const auto& d = demo.host.Drive("ZD3S")->Device();
    const UINT address = d.parameters[d.FindByCode("H02-08")].address;
    std::vector<CString> errors;
    Variant result;
    int value = 0;
    for (auto _ : state) {
        helper.WriteVarDirect("ZD3S", address, 18, Variant::UI2(std::uint16_t(value++ % 500)),
                              result, errors, 1, 200, 3);
        demo.host.Drive("ZD3S")->TakeRequests();
    }
}
BENCHMARK(BM_WriteVarDirect);

void BM_DriveStep(benchmark::State& state) {
    Demo demo;
    zorhost::sim::SimulatedDrive& drive = *demo.host.Drive("ZD4M");
    drive.SetRunning(true);
    drive.StartOscilloscope();
    for (auto _ : state)
        drive.Step(10);
}
BENCHMARK(BM_DriveStep);

} // namespace
BENCHMARK_MAIN();
