// A small drive for the value-text suites: a device description written for them (in
// data/), opened in the reference host as module "M1" beside the shipped four-axis drive
// "M4", each with its simulated drive, so that what a drive holds, refuses or fails to
// answer is the drive's own. Over the host's device helper a recorder keeps the requests;
// the translator is scripted.
#pragma once

#include "DriveWrites.h"
#include "FakeDeviceHelper.h"
#include "FakeUiService.h"

#include "module/ParmiraApp.h"
#include "zorhost/ReferenceHost.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <string>

class ValuesTest : public ::testing::Test {
protected:
    void SetUp() override {
        ui.strings[2037] = "<2037>";
        zorhost::ProjectSetup setup;
        setup.modules.resize(2);
        setup.modules[0].deviceFile = PARMIRA_SOURCE_DIR "/tests/values/data/values_device.json";
        setup.modules[0].key = "M1";
        setup.modules[1].deviceFile = "zd4m_four_axis.json";
        setup.modules[1].key = "M4";
        std::string error;
        ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
        drive = host.Drive("M1");
        host.Services().Register<IHostDeviceHelper>(&helper);
        host.Services().Register<IHostUiService>(&ui);
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    }
    void TearDown() override { theApp.SetQueryInterfaceCallback(0, nullptr); }

    // The variable of `code` in a module (fails the test when absent).
    IVarObjEx* Var(const char* code, const char* module = "M1") {
        IVarObjEx* var = host.Module(module)->Store().FindByCode(code);
        EXPECT_NE(var, nullptr) << code;
        return var;
    }
    // What M1's drive holds for `code`.
    double OnDrive(const char* code) {
        double raw = -12345;
        EXPECT_TRUE(drive->PeekRaw(Var(code)->GetInstanceAddress(), raw)) << code;
        return raw;
    }
    // The writes M1's drive was asked for since the last call.
    size_t DriveWrites() { return TakeWrites(*drive).size(); }

    zorhost::ReferenceHost host;
    zorhost::sim::SimulatedDrive* drive = nullptr;
    FakeDeviceHelper helper{host.DeviceHelper()}; // the host's, with a record of the requests
    FakeUiService ui;                             // strings: only <2037>, as a caption
};
