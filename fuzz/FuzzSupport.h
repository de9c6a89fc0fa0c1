// What the fuzz targets share: the shipped device descriptions, loaded once, and a scratch
// file for readers that only take a path.
#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace fuzz {

// A shipped description by file name ("zd3s_servo.json"); aborts when it can't be loaded,
// since every input would then test nothing.
std::shared_ptr<const zorhost::device::DeviceDescription> ShippedDevice(const char* fileName);

// `data` written to a file of this process (in TMPDIR, else /tmp) whose path is returned;
// the same path on every call.
const std::string& ScratchFile(const std::uint8_t* data, std::size_t size, const char* suffix);

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
