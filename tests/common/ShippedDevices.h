// The device descriptions shipped in devices/, loaded for host model tests.
#pragma once

#include <zorhost/device/DeviceLoader.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

inline std::shared_ptr<const zorhost::device::DeviceDescription>
LoadShippedDevice(const char* file) {
    auto r = zorhost::device::LoadDeviceFile(std::string(PARMIRA_DEVICES_DIR) + "/" + file);
    EXPECT_TRUE(r) << r.error.ToString();
    return r.device;
}
