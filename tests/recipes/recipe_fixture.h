// The recipe tests run the module's code against the reference host: a project of the
// shipped single-axis servo, its simulated drive, and every host service.
#pragma once

#include "module/host/IVarObjEx.h"
#include "zorhost/ReferenceHost.h"

#include "ModuleScope.h"
#include "TempDir.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <string>

class RecipeTest : public ::testing::Test {
protected:
    static constexpr const char* kKey = "ZD3S";

    void SetUp() override;
    void TearDown() override;

    zorhost::model::CDeviceModule* Module() { return host.Module(kKey); }
    zorhost::sim::SimulatedDrive& Drive() { return *host.Drive(kKey); }
    IVarObjEx* Var(const char* code);
    UINT Address(const char* code);

    zorhost::ReferenceHost host;
    TempDir temp; // the test's own folder
    CAfxRecordingResponder prompts;
};
