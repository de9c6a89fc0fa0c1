#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zorhost::device {

struct LoadError {
    std::string file;
    std::string place; // "line 3, column 7" for broken JSON, else a path such as
                       // parameters[12] "H02-41" .type
    std::string message;
    std::string ToString() const; // "file: place: message"
};

// Either a complete, validated description or an error; never both, never a partial one.
struct LoadResult {
    std::shared_ptr<const DeviceDescription> device;
    LoadError error;
    explicit operator bool() const { return device != nullptr; }
};

LoadResult LoadDeviceFile(const std::string& path);
// sourceName is only used in messages and kept as DeviceDescription::sourceFile.
LoadResult ParseDeviceJson(std::string_view json, const std::string& sourceName);

// The folder of the shipped descriptions: $ZOR_DEVICES_DIR when set, else the devices/
// folder of the program's tree (see InstallLayout.h).
std::string DefaultDeviceDirectory();

bool IsSameDeviceType(const std::uint8_t* a, std::size_t aSize, const std::uint8_t* b,
                      std::size_t bSize);

} // namespace zorhost::device
