// The module's file code against the reference host with the demo drives; the module's
// strings under a handle of the test.
#pragma once

#include "ModuleScope.h"
#include "TestFiles.h"

#include "zorhost/ReferenceHost.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <string>

namespace ft {

class FilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        ASSERT_TRUE(dir.isValid());
        module = host.Module("ZD3S");
        ASSERT_NE(module, nullptr);
        ModuleScope::Attach(host.Services());
    }
    void TearDown() override { host.ModuleManager().SetProgressObserver(nullptr); }
    std::string Path(const char* name) const { return dir.path().toStdString() + "/" + name; }

    zorhost::ReferenceHost host;
    ModuleScope scope{"files-test"};
    QTemporaryDir dir;
    zorhost::model::CDeviceModule* module = nullptr; // the servo
};

} // namespace ft
