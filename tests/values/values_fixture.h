// A small drive for the value-text suites: a device description written for them (in
// data/), loaded into the reference host's project chain (module "M1"), with the host's
// value service, a device helper whose reads and writes the tests script, and a translator.
#pragma once

#include "FakeDeviceHelper.h"
#include "FakeUiService.h"

#include "module/ParmiraApp.h"
#include "module/host/HostContract.h"
#include "zorhost/HostServices.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostVarUtil.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <memory>

class ValuesTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The variable of `code` in module M1 (fails the test when absent).
    IVarObjEx* Var(const char* code);
    IVarAttr* Attr(const char* code) { return Var(code)->GetAttr(); }

    zorhost::CHostVarUtil util;
    FakeDeviceHelper helper; // direct reads and writes as the test scripts them
    FakeUiService ui;        // strings: only <2037>, as a translated caption
    zorhost::model::CProjectRoot root;
    zorhost::HostServices services;

private:
    zorhost::model::CDeviceModule* m_module = nullptr;
};
