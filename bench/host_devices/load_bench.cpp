// Loading a large generated description: time per parameter and memory per parameter.

#include "zorhost/device/DeviceGenerator.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <string>

using namespace zorhost::device;

namespace {

std::size_t HeapInUse() {
    return mallinfo2().uordblks;
}

void BM_LoadGeneratedDevice(benchmark::State& state) {
    const int count = int(state.range(0));
    const std::string json = GenerateDeviceJson(count);
    std::size_t retained = 0, heapBytes = 0;
    for (auto _ : state) {
        std::size_t before = HeapInUse();
        LoadResult r = ParseDeviceJson(json, "<bench>");
        if (!r) {
            state.SkipWithError(r.error.ToString().c_str());
            return;
        }
        retained = HeapInUse() - before; // what the loaded description keeps on the heap
        heapBytes = r.device->HeapBytes();
        benchmark::DoNotOptimize(r.device->parameters.data());
    }
    state.counters["params"] = count;
    state.counters["json_bytes_per_param"] = double(json.size()) / count;
    state.counters["heap_bytes_per_param"] = double(retained) / count;
    state.counters["counted_bytes_per_param"] = double(heapBytes) / count;
    state.counters["sizeof_ParameterDef"] = double(sizeof(ParameterDef));
    // Shown as time per parameter (the inverse of a per-iteration rate).
    state.counters["time_per_param"] = benchmark::Counter(
        double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_LoadGeneratedDevice)->Arg(20000)->Arg(60000)->Unit(benchmark::kMillisecond);

void BM_GenerateDeviceJson(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(GenerateDeviceJson(int(state.range(0))));
}
BENCHMARK(BM_GenerateDeviceJson)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_FindByCodeAndAddress(benchmark::State& state) {
    LoadResult r = GenerateDevice(20000);
    if (!r) {
        state.SkipWithError(r.error.ToString().c_str());
        return;
    }
    const DeviceDescription& d = *r.device;
    std::uint32_t i = 0;
    for (auto _ : state) {
        const ParameterDef& p = d.parameters[i];
        benchmark::DoNotOptimize(d.FindByCode(d.Code(p)));
        benchmark::DoNotOptimize(d.FindByAddress(p.address));
        i = (i + 7919) % std::uint32_t(d.parameters.size());
    }
}
BENCHMARK(BM_FindByCodeAndAddress);

} // namespace

BENCHMARK_MAIN();
