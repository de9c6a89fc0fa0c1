// Two drives of one generated device, both read once: set 1 takes the current values of
// the first, set 2 the factory values of the second. Indexed and Linear run side by side;
// the ratio of their times is what the index buys.
#include "module/host/IVarObjEx.h"
#include "sets/VarCompare.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/device/DeviceGenerator.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>

namespace {

struct Drives {
    zorhost::ReferenceHost host;
    std::vector<IVarObjEx*> set1, set2;
    std::string file;
};

Drives& DrivesOf(int params) {
    static std::map<int, std::unique_ptr<Drives>> made;
    auto& d = made[params];
    if (d)
        return *d;
    d = std::make_unique<Drives>();
    char name[] = "/tmp/parmira-bench-compare-XXXXXX";
    const int fd = ::mkstemp(name);
    if (fd >= 0)
        ::close(fd);
    d->file = std::string(name) + ".json";
    std::ofstream(d->file) << zorhost::device::GenerateDeviceJson(params);
    std::remove(name);
    zorhost::ProjectSetup setup;
    for (const char* key : {"A", "B"}) {
        zorhost::ModuleSetup m;
        m.deviceFile = d->file;
        m.key = key;
        setup.modules.push_back(m);
    }
    std::string error;
    if (!d->host.LoadProject(setup, &error))
        std::fprintf(stderr, "bench_compare: %s\n", error.c_str());
    for (const char* key : {"A", "B"})
        d->host.Transfer().UploadModule(nullptr, key);
    d->host.Transfer().GetModuleVars("A", d->set1);
    d->host.Transfer().GetModuleVars("B", d->set2);
    std::remove(d->file.c_str());
    return *d;
}

// What the run leaves for later: every text of every row, as a save of the whole list
// makes them. Rows on screen make only theirs.
size_t MakeTexts(IHostVarUtil* util, const CVarCompareRstList& rows) {
    size_t chars = 0;
    for (int i = 0; i < rows.GetCount(); ++i)
        for (int column = CVarCompareRst::Group1; column <= CVarCompareRst::Value2; ++column)
            chars += size_t(rows.GetAt(i)->GetText(util, column).GetLength());
    return chars;
}

void Compare(benchmark::State& state, CVarCompare::SearchMode mode, bool texts) {
    Drives& d = DrivesOf(int(state.range(0)));
    size_t rows = 0;
    std::atomic<bool> stop{false};
    for (auto _ : state) {
        CVarCompare compare(&d.host.VarUtil());
        compare.SetSearchMode(mode);
        // As in the dialog: the stop question is asked at every variable and search step.
        compare.SetStopTest([&] { return stop.load(std::memory_order_relaxed); });
        CVarCompareRstList same, diff;
        compare.Run(d.set1, VarSourceCurrent, d.set2, VarSourceFactory, same, diff);
        rows = size_t(same.GetCount() + diff.GetCount());
        if (texts) {
            benchmark::DoNotOptimize(MakeTexts(&d.host.VarUtil(), same));
            benchmark::DoNotOptimize(MakeTexts(&d.host.VarUtil(), diff));
        }
        state.PauseTiming();
        same.DeleteAll();
        diff.DeleteAll();
        state.ResumeTiming();
    }
    state.counters["rows"] = double(rows);
    state.counters["params"] = double(d.set1.size());
}

void BM_CompareIndexed(benchmark::State& state) {
    Compare(state, CVarCompare::SearchIndexed, false);
}
void BM_CompareIndexedAllTexts(benchmark::State& state) {
    Compare(state, CVarCompare::SearchIndexed, true);
}
void BM_CompareLinear(benchmark::State& state) {
    Compare(state, CVarCompare::SearchLinear, false);
}

BENCHMARK(BM_CompareIndexed)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareIndexedAllTexts)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareLinear)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
