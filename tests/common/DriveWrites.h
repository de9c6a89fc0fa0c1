// What a simulated drive was asked to write: the one reading of its request log that
// suites share.
#pragma once

#include "zorhost/sim/SimulatedDrive.h"

#include <vector>

// The addresses written since the last look at the drive's requests, in order.
inline std::vector<UINT> TakeWrites(zorhost::sim::SimulatedDrive& drive) {
    std::vector<UINT> addresses;
    for (const zorhost::sim::DriveRequest& r : drive.TakeRequests())
        if (r.kind == zorhost::sim::DriveRequest::Write)
            addresses.push_back(r.address);
    return addresses;
}
