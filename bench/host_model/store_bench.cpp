#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/model/VarStore.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>

// Bytes asked of the heap, to price the live store per parameter.
static std::atomic<long long> g_allocated{0};

void* operator new(std::size_t size) {
    g_allocated += (long long)size;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

namespace {

constexpr int kParameters = 20000;

void BM_LoadGeneratedDevice(benchmark::State& state) {
    for (auto _ : state) {
        auto r = zorhost::device::GenerateDevice(kParameters);
        if (!r)
            state.SkipWithError("generation failed");
        benchmark::DoNotOptimize(r.device.get());
    }
}
BENCHMARK(BM_LoadGeneratedDevice)->Unit(benchmark::kMillisecond);

void BM_BuildStore(benchmark::State& state) {
    auto r = zorhost::device::GenerateDevice(kParameters);
    if (!r) {
        state.SkipWithError("generation failed");
        return;
    }
    long long bytes = 0;
    for (auto _ : state) {
        long long before = g_allocated.load();
        zorhost::model::CVarStore store(r.device);
        bytes = g_allocated.load() - before;
        benchmark::DoNotOptimize(store.FindByAddress(0));
    }
    state.counters["store_bytes_per_param"] = double(bytes) / kParameters;
    state.counters["description_bytes_per_param"] = double(r.device->HeapBytes()) / kParameters;
}
BENCHMARK(BM_BuildStore)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
