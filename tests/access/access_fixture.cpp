#include "access_fixture.h"

#include "module/ParmiraApp.h"

namespace {

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

} // namespace

void AccessTest::Open(std::vector<TestModule> modules) {
    zorhost::ProjectSetup setup;
    for (const TestModule& m : modules) {
        zorhost::ModuleSetup station;
        station.deviceFile = m.file;
        station.key = m.key;
        station.online = m.online;
        setup.modules.push_back(station);
    }
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    frame.module = nullptr;
    frame.workspace.clear();
    for (const TestModule& m : modules) {
        auto* module = host.Module(m.key);
        ASSERT_NE(module, nullptr) << m.key;
        module->SetAccessLevel(m.level);
        if (frame.module == nullptr)
            frame.module = module;
        frame.workspace.push_back(module);
    }
}

void AccessTest::ReadAuthority() {
    IVarObjEx* var = host.DeviceHelper().FindNamedVar(frame.module, "Authority");
    ASSERT_NE(var, nullptr);
    IHostRefreshQuery* query = host.Refresh().NewQuery();
    query->SetModuleKey(Key());
    IHostRefreshItem* item = query->NewItem();
    item->SetAddress(var->GetInstanceAddress());
    item->SetDataType(var->GetAttr()->GetDataType());
    item->SetLength(var->GetAttr()->GetValueLength());
    if (!query->AddItem(item))
        delete item;
    host.Refresh().SubmitQuery(query);
    delete query;
    host.Refresh().RunCycle();
}

void AccessTest::DriveReports(int level) {
    const auto* named = host.Module(Key())->Store().Device().FindNamedVariable("Authority");
    ASSERT_NE(named, nullptr);
    ASSERT_TRUE(host.Drive(Key())->PokeRaw(named->address, level));
    ReadAuthority();
}
