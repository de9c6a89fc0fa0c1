#include "recipe_fixture.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarStore.h"

#include <filesystem>

namespace {

// The module's resources are registered once for the whole run, as the loader would.
class ModuleStart : public ::testing::Environment {
public:
    void SetUp() override { AfxStartApp(&theApp, "QXParmira"); }
    void TearDown() override { AfxStopApp(&theApp); }
};
[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStart);

} // namespace

void RecipeTest::SetUp() {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup station;
    station.deviceFile = "zd3s_servo.json";
    station.key = kKey;
    setup.modules.push_back(station);
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
}

void RecipeTest::TearDown() {
    theApp.SetQueryInterfaceCallback(0, nullptr);
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

double RecipeTest::Peek(const char* code) {
    double raw = -1;
    EXPECT_TRUE(Drive().PeekRaw(Address(code), raw)) << code;
    return raw;
}

std::string RecipeTest::TempDir() {
    namespace fs = std::filesystem;
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const fs::path dir =
        fs::temp_directory_path() / (std::string("parmira-recipes-") + info->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir.string();
}
