// A small drive for the value-text suites: a device description written for them (in
// data/), loaded into the reference host's project chain (module "M1"), with the host's
// value service, a device helper whose reads and writes the tests script, and a translator.
#pragma once

#include "FakeDeviceHelper.h"
#include "FakeUiService.h"

#include "module/ParmiraApp.h"
#include "module/host/HostContract.h"
#include "zorhost/HostServices.h"
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostVarUtil.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <memory>

class ValuesTest : public ::testing::Test {
protected:
    void SetUp() override {
        ui.strings = FakeUiService::Strings::None;
        ui.stringOverrides[2037] = "<2037>";
        auto loaded = zorhost::device::LoadDeviceFile(PARMIRA_SOURCE_DIR
                                                      "/tests/values/data/values_device.json");
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
    void TearDown() override { theApp.SetQueryInterfaceCallback(0, nullptr); }

    // The variable of `code` in module M1 (fails the test when absent).
    IVarObjEx* Var(const char* code) {
        IVarObjEx* var = m_module ? m_module->Store().FindByCode(code) : nullptr;
        EXPECT_NE(var, nullptr) << code;
        return var;
    }
    IVarAttr* Attr(const char* code) { return Var(code)->GetAttr(); }

    zorhost::CHostVarUtil util;
    FakeDeviceHelper helper; // direct reads and writes as the test scripts them
    FakeUiService ui;        // strings: only <2037>, as a translated caption
    zorhost::model::CProjectRoot root;
    zorhost::HostServices services;

private:
    zorhost::model::CDeviceModule* m_module = nullptr;
};
