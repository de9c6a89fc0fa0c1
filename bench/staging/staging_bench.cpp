#include "files/RecipeWorkbook.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"

#include <afx/afxres.h>
#include <workbook/Workbook.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

namespace {

const std::string kWorkbook =
    std::string(PARMIRA_SOURCE_DIR) + "/tests/workbook/data/recipe_5000.xlsx";

void BM_ReadWorkbook5000Rows(benchmark::State& state) {
    size_t rows = 0;
    for (auto _ : state) {
        workbook::Workbook book;
        book.Open(kWorkbook);
        rows = book.Sheets().empty() ? 0 : size_t(book.Sheets()[0].LastUsedRow());
    }
    state.counters["rows"] = double(rows);
}
BENCHMARK(BM_ReadWorkbook5000Rows)->Unit(benchmark::kMillisecond);

void BM_ReadRecipeWorkbook5000Rows(benchmark::State& state) {
    zorhost::ReferenceHost host;
    host.LoadDemo();
    theApp.m_hResource = AfxCreateResourceHandle("staging-bench");
    RegisterModuleResources(theApp.m_hResource);
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    size_t records = 0;
    for (auto _ : state) {
        RecipeRecordMap map;
        ReadRecipeWorkbook(CString(kWorkbook.c_str()), map);
        records = map.empty() ? 0 : map.begin()->second.size();
        DeleteRecipeRecords(map);
    }
    state.counters["records"] = double(records);
    theApp.SetQueryInterfaceCallback(0, nullptr);
    AfxFreeResourceHandle(theApp.m_hResource);
    theApp.m_hResource = nullptr;
}
BENCHMARK(BM_ReadRecipeWorkbook5000Rows)->Unit(benchmark::kMillisecond);

// Every writable parameter of a 20 000-parameter drive in one download.
void BM_DownloadRecords20000(benchmark::State& state) {
    const std::string path =
        (std::filesystem::temp_directory_path() / "parmira-staging-bench-20000.json").string();
    std::ofstream(path) << zorhost::device::GenerateDeviceJson(20000);
    zorhost::ReferenceHost host;
    zorhost::ProjectSetup setup;
    setup.modules = {{path, "BIG", "", 1, true}};
    if (!host.LoadProject(setup)) {
        state.SkipWithError("project");
        return;
    }
    zorhost::model::CDeviceModule* module = host.Module("BIG");
    std::vector<IRWDataItem*> records;
    zorhost::CHostParamRecordFactory factory;
    for (int i = 0; i < module->Store().GetCount(); ++i) {
        IVarObjEx* var = module->Store().GetAt(i);
        IVarAttr* attr = var->GetAttr();
        if (attr == nullptr || attr->GetModifyMode() == 2)
            continue;
        IRWDataItem* record = factory.NewParamRecord();
        record->SetRecordAddress(var->GetInstanceAddress());
        record->SetRecordType(attr->GetDataType());
        record->SetRecordValue(attr->GetFactoryValue());
        records.push_back(record);
    }
    for (auto _ : state)
        host.Transfer().DownloadRecords(nullptr, "BIG", records);
    state.counters["records"] = double(records.size());
    state.counters["failed"] = double(host.Transfer().LastDownloadFailures().size());
    for (IRWDataItem* r : records)
        delete r;
}
BENCHMARK(BM_DownloadRecords20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
