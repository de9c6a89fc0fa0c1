// Writing many parameters to a drive at once (downloads): neighbouring parameters go in
// one block write as far as the link allows; a block the drive refuses is written again
// parameter by parameter, so that the failures name exactly the parameters it refused.
#pragma once

#include "zorhost/device/DeviceDescription.h"
#include "zorhost/sim/DriveLink.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zorhost::link {

struct ParameterValue {
    std::uint32_t address = 0;
    device::DataType type = device::DataType::Unknown;
    double raw = 0;
};

struct WriteFailure {
    std::uint32_t address = 0;
    sim::LinkResult result;
};

// Writes `values` (any order), each tried up to `tries` times while the failure is
// transient. Returns the parameters that were not written; when the link goes down,
// every parameter not yet written is among them with status Offline.
std::vector<WriteFailure> WriteInBlocks(sim::DriveLink& link,
                                        std::span<const ParameterValue> values, int timeout_ms,
                                        int tries);

} // namespace zorhost::link
