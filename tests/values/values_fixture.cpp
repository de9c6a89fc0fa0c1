#include "values_fixture.h"

#include "zorhost/device/DeviceLoader.h"

void ValuesTest::SetUp() {
    ui.strings = FakeUiService::Strings::None;
    ui.stringOverrides[2037] = "<2037>";
    auto loaded =
        zorhost::device::LoadDeviceFile(PARMIRA_SOURCE_DIR "/tests/values/data/values_device.json");
    ASSERT_TRUE(loaded) << loaded.error.ToString();
    auto project = std::make_unique<zorhost::model::CProject>();
    m_module = project->Workspace().Modules().Add(
        std::make_unique<zorhost::model::CDeviceModule>(loaded.device, CString("M1"), 1));
    ASSERT_NE(m_module, nullptr);
    root.Open(std::move(project));
    services.Register<IHostVarUtil>(&util);
    services.Register<IHostDeviceHelper>(&helper);
    services.Register<IHostUiService>(&ui);
    services.Register<IHostProjectRoot>(&root);
    theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
}

void ValuesTest::TearDown() {
    theApp.SetQueryInterfaceCallback(0, nullptr);
}

IVarObjEx* ValuesTest::Var(const char* code) {
    IVarObjEx* var = m_module ? m_module->Store().FindByCode(code) : nullptr;
    EXPECT_NE(var, nullptr) << code;
    return var;
}
