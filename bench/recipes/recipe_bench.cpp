// Backup and restore of a drive of 1 000 parameters, one request per parameter, on a link
// whose every request takes 4.9 ms (one register at 115200 baud). The floor is the link's
// time for the requests made; the report gives the job's time against it.
#include "module/ParmiraApp.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "sets/TranslateFailedDialog.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"

#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QApplication>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

constexpr int kLatency_us = 4900;

struct Bench {
    explicit Bench(int params) {
        namespace fs = std::filesystem;
        dir = fs::temp_directory_path() / "parmira-recipe-bench";
        fs::remove_all(dir);
        fs::create_directories(dir);
        const fs::path device = dir / "generated.json";
        std::ofstream(device) << zorhost::device::GenerateDeviceJson(params);
        zorhost::ProjectSetup setup;
        zorhost::ModuleSetup station;
        station.deviceFile = device.string();
        station.key = "GEN";
        setup.modules.push_back(station);
        std::string error;
        if (!host.LoadProject(setup, &error))
            std::fprintf(stderr, "%s\n", error.c_str());
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
        host.Drive("GEN")->SetLatency_us(kLatency_us);
        host.Drive("GEN")->SetRealTime(true);
    }
    ~Bench() { theApp.SetQueryInterfaceCallback(0, nullptr); }

    // Runs one job in the dialog; returns its wall time in seconds and the requests made.
    double Run(bool backup, std::uint64_t& requests) {
        const CString path((dir / "recipe.zorparam").string().c_str());
        prompts.ChooseFiles({path});
        double seconds = 0;
        const std::uint64_t before = host.Drive("GEN")->RequestCount();
        COneKeyParseRecipeDialog dlg;
        dlg.SetModule(host.Module("GEN"));
        CAfxModalDriver driver([&](CDialog& d) {
            if (dynamic_cast<CTranslateFailedDialog*>(&d) != nullptr) {
                d.EndDialog(IDOK);
                return;
            }
            auto& recipe = static_cast<COneKeyParseRecipeDialog&>(d);
            const auto start = std::chrono::steady_clock::now();
            if (backup)
                recipe.OnBackup();
            else
                recipe.OnRestore();
            AfxPumpMessagesUntil([&] { return !recipe.IsWorkerRunning(); }, 60000);
            seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            d.EndDialog(IDOK);
        });
        dlg.DoModal();
        requests = host.Drive("GEN")->RequestCount() - before;
        return seconds;
    }

    std::filesystem::path dir;
    zorhost::ReferenceHost host;
    CAfxRecordingResponder prompts;
};

void Report(benchmark::State& state, double seconds, std::uint64_t requests, int params) {
    state.SetIterationTime(seconds);
    const double floor = params * kLatency_us * 1e-6;
    state.counters["requests"] = double(requests);
    state.counters["floor_s"] = floor;
    state.counters["x_floor"] = seconds / floor;
    // Against the time of the requests actually made (a restore skips what can't change).
    state.counters["x_link"] = seconds / (double(requests) * kLatency_us * 1e-6);
}

void BM_RecipeBackup(benchmark::State& state) {
    const int params = int(state.range(0));
    Bench bench(params);
    for (auto _ : state) {
        std::uint64_t requests = 0;
        const double seconds = bench.Run(true, requests);
        Report(state, seconds, requests, params);
    }
}

void BM_RecipeRestore(benchmark::State& state) {
    const int params = int(state.range(0));
    Bench bench(params);
    std::uint64_t requests = 0;
    bench.Run(true, requests); // the recipe to restore
    for (auto _ : state) {
        const double seconds = bench.Run(false, requests);
        Report(state, seconds, requests, params);
    }
}

// The link alone: the same number of reads in a plain loop, no dialog, no worker. What the
// jobs take beyond this is their own cost; what this takes beyond the floor is the
// machine's (waking a sleeping thread on a busy machine).
void BM_LinkReadsOnly(benchmark::State& state) {
    const int params = int(state.range(0));
    Bench bench(params);
    IVarStore* vars = bench.host.Module("GEN")->GetVarList();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        double value = 0;
        for (int i = 0; i < params && i < vars->GetCount(); ++i)
            bench.host.DeviceHelper().ReadParameter("GEN", vars->GetAt(i)->GetInstanceAddress(),
                                                    value);
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        Report(state, seconds, std::uint64_t(params), params);
    }
}

BENCHMARK(BM_LinkReadsOnly)->Arg(1000)->UseManualTime()->Iterations(2)->Unit(benchmark::kSecond);
BENCHMARK(BM_RecipeBackup)->Arg(1000)->UseManualTime()->Iterations(2)->Unit(benchmark::kSecond);
BENCHMARK(BM_RecipeRestore)->Arg(1000)->UseManualTime()->Iterations(2)->Unit(benchmark::kSecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    AfxStartApp(&theApp, "QXParmira");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    AfxStopApp(&theApp);
    return 0;
}
