#pragma once

#include "zorhost/device/DeviceLoader.h"

#include <cstdint>
#include <string>

namespace zorhost::device {

struct GeneratorOptions {
    std::uint32_t lineId = 200;
    std::uint32_t productId = 1;
    int axisCount = 0; // 0: single-axis; else the parameters are split over the axes
    int parametersPerGroup = 100;
    std::uint32_t seed = 1; // same seed, same device
};

// JSON text of a valid device with exactly parameterCount parameters, as many as fit 256
// groups of up to 256 addresses (one in eight is 32-bit and takes two addresses). Returns an
// empty text for a count that can't be laid out.
std::string GenerateDeviceJson(int parameterCount, const GeneratorOptions& options = {});

// The same, loaded through the ordinary loader.
LoadResult GenerateDevice(int parameterCount, const GeneratorOptions& options = {});

} // namespace zorhost::device
