// The demo project in an in-process host, with helpers to reach a parameter by code.
#pragma once

#include "zorhost/ReferenceHost.h"

#include <gtest/gtest.h>

#include <string>

namespace simtest {

using zorhost::sim::FailureMode;
using zorhost::sim::SimulatedDrive;

class DemoHost : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        host.SetTransferEndHandler([this](const CString& key, BOOL success, bool download) {
            ends.push_back({key, success, download});
        });
    }

    const zorhost::device::ParameterDef& Param(const char* key, const char* code, int axis = -1) {
        const auto& d = host.Drive(key)->Device();
        const std::uint32_t i = d.FindByCode(code, axis);
        EXPECT_NE(i, zorhost::device::kNoIndex) << code;
        return d.parameters[i];
    }
    UINT Address(const char* key, const char* code, int axis = -1) {
        return Param(key, code, axis).address;
    }
    double Peek(const char* key, UINT address) {
        double raw = -12345;
        EXPECT_TRUE(host.Drive(key)->PeekRaw(address, raw)) << address;
        return raw;
    }
    IVarObjEx* Var(const char* key, UINT address) {
        return host.Module(key)->Store().FindByAddress(address);
    }

    struct End {
        CString key;
        BOOL success;
        bool download;
    };
    zorhost::ReferenceHost host;
    std::vector<End> ends;
};

} // namespace simtest
