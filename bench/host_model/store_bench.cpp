// What a large device costs the host: loading its description, building a project module
// with every model object (catalog, attributes, value meanings, groups, axes, connectors,
// variables, function and per-unit tables), and the lookups the module makes most.
#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostProductDb.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

// Live heap bytes: every block carries its size in front, so frees are counted too.
static std::atomic<long long> g_live{0};
static constexpr std::size_t kHeader = alignof(std::max_align_t);

void* operator new(std::size_t size) {
    auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (!block)
        throw std::bad_alloc();
    std::memcpy(block, &size, sizeof size);
    g_live += (long long)size;
    return block + kHeader;
}
void operator delete(void* p) noexcept {
    if (!p)
        return;
    auto* block = static_cast<unsigned char*>(p) - kHeader;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    g_live -= (long long)size;
    std::free(block);
}
void operator delete(void* p, std::size_t) noexcept {
    operator delete(p);
}

namespace {

using zorhost::device::GeneratorOptions;
using zorhost::model::CDeviceModule;
using zorhost::model::CProject;

constexpr int kParameters = 20000;

GeneratorOptions Options(int axes) {
    GeneratorOptions o;
    o.axisCount = int(axes);
    return o;
}

void BM_LoadGeneratedDevice(benchmark::State& state) {
    std::string json =
        zorhost::device::GenerateDeviceJson(kParameters, Options(int(state.range(0))));
    long long bytes = 0;
    for (auto _ : state) {
        long long before = g_live.load();
        auto r = zorhost::device::ParseDeviceJson(json, "generated.json");
        if (!r)
            state.SkipWithError(r.error.ToString().c_str());
        bytes = g_live.load() - before;
        benchmark::DoNotOptimize(r.device.get());
    }
    state.counters["description_bytes_per_param"] = double(bytes) / kParameters;
}
BENCHMARK(BM_LoadGeneratedDevice)->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond);

// A project with one module of the device: the first module of a device also makes the
// shared catalog; a second one of the same device only adds its own variables and tables.
void BM_BuildProject(benchmark::State& state) {
    auto r = zorhost::device::GenerateDevice(kParameters, Options(int(state.range(0))));
    if (!r) {
        state.SkipWithError(r.error.ToString().c_str());
        return;
    }
    long long firstBytes = 0, secondBytes = 0;
    for (auto _ : state) {
        long long before = g_live.load();
        auto project = std::make_unique<CProject>();
        zorhost::CHostProductDb db;
        db.Add(r.device);
        auto* first =
            project->Workspace().Modules().Add(std::make_unique<CDeviceModule>(r.device, "M1", 1));
        long long middle = g_live.load();
        auto* second =
            project->Workspace().Modules().Add(std::make_unique<CDeviceModule>(r.device, "M2", 2));
        firstBytes = middle - before;
        secondBytes = g_live.load() - middle;
        benchmark::DoNotOptimize(first->GetVarList()->FindByAddress(0));
        benchmark::DoNotOptimize(second->GetVarCatalog());
    }
    state.counters["first_module_bytes_per_param"] = double(firstBytes) / kParameters;
    state.counters["next_module_bytes_per_param"] = double(secondBytes) / kParameters;
    state.counters["time_per_param"] =
        benchmark::Counter(double(kParameters), benchmark::Counter::kIsIterationInvariantRate |
                                                    benchmark::Counter::kInvert);
}
BENCHMARK(BM_BuildProject)->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond);

// Every variable found by its key and by its address, as a full list refresh does.
void BM_LookupEveryVariable(benchmark::State& state) {
    auto r = zorhost::device::GenerateDevice(kParameters, Options(int(state.range(0))));
    if (!r) {
        state.SkipWithError(r.error.ToString().c_str());
        return;
    }
    CDeviceModule module(r.device, "M1", 1);
    IVarStore* store = module.GetVarList();
    std::vector<CString> keys;
    std::vector<UINT> addresses;
    for (int i = 0; i < store->GetCount(); ++i) {
        CString key;
        store->GetAt(i)->GetInstanceGuid(key);
        keys.push_back(key);
        addresses.push_back(store->GetAt(i)->GetInstanceAddress());
    }
    for (auto _ : state) {
        for (size_t i = 0; i < keys.size(); ++i) {
            benchmark::DoNotOptimize(store->FindByCode(keys[i]));
            benchmark::DoNotOptimize(store->FindByAddress(addresses[i]));
        }
    }
    state.SetItemsProcessed(state.iterations() * (long long)keys.size());
}
BENCHMARK(BM_LookupEveryVariable)->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
