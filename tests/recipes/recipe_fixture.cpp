#include "recipe_fixture.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarStore.h"

namespace {

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

} // namespace

void RecipeTest::SetUp() {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup station;
    station.deviceFile = "zd3s_servo.json";
    station.key = kKey;
    setup.modules.push_back(station);
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    ModuleScope::Attach(host.Services());
}

void RecipeTest::TearDown() {
    ModuleScope::Detach();
}

IVarObjEx* RecipeTest::Var(const char* code) {
    IVarObjEx* var = Module()->GetVarList()->FindByCode(code);
    EXPECT_NE(var, nullptr) << code;
    return var;
}

UINT RecipeTest::Address(const char* code) {
    IVarObjEx* var = Var(code);
    return var != nullptr ? var->GetInstanceAddress() : 0;
}
