// The recipe tests run the module's code against the reference host: a project of the
// shipped single-axis servo, its simulated drive, and every host service.
#pragma once

#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "zorhost/ReferenceHost.h"

#include "ModuleScope.h"
#include "TempDir.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

class COneKeyParseRecipeDialog;

class RecipeTest : public ::testing::Test {
protected:
    static constexpr const char* kKey = "ZD3S";

    void SetUp() override;
    void TearDown() override;

    zorhost::model::CDeviceModule* Module() { return host.Module(kKey); }
    zorhost::sim::SimulatedDrive& Drive() { return *host.Drive(kKey); }
    IVarObjEx* Var(const char* code) {
        IVarObjEx* var = Module()->GetVarList()->FindByCode(code);
        EXPECT_NE(var, nullptr) << code;
        return var;
    }
    UINT Address(const char* code) {
        IVarObjEx* var = Var(code);
        return var != nullptr ? var->GetInstanceAddress() : 0;
    }
    // Opens the recipe dialog the way the host does and lets `act` work inside it; the
    // dialog is closed afterwards unless `act` closed it. Failure lists opened on the way
    // are read into `failed` (codes, in order) and closed.
    void RunRecipeDialog(const std::function<void(COneKeyParseRecipeDialog&)>& act,
                         std::vector<std::vector<std::string>>* failed = nullptr);

    zorhost::ReferenceHost host;
    TempDir temp; // the test's own folder
    CAfxRecordingResponder prompts;
};
