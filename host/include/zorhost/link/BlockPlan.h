// Grouping of parameters into block requests: neighbouring registers go into one request
// of at most `limit` registers, so that a bulk transfer costs as few round trips as the
// addresses allow.
#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zorhost::link {

struct RegisterRange {
    std::uint32_t address = 0;
    int count = 0; // registers
};

struct RegisterBlock {
    std::uint32_t address = 0;
    int count = 0;         // registers
    std::size_t first = 0; // the ranges [first, last) of the sorted input it covers
    std::size_t last = 0;
};

// `ranges` sorted by address. A block only holds ranges that follow each other without a
// gap or overlap, and never more than `limit` registers; a range longer than the limit
// gets a block of its own.
std::vector<RegisterBlock> PlanBlocks(std::span<const RegisterRange> ranges, int limit);

// The registers of each item (anything with an `address` and a `type`), in the items' order.
template <class Items> std::vector<RegisterRange> RangesOf(const Items& items) {
    std::vector<RegisterRange> ranges;
    ranges.reserve(std::size(items));
    for (const auto& item : items)
        ranges.push_back({item.address, device::RegisterSpan(item.type)});
    return ranges;
}

} // namespace zorhost::link
