#include "zorhost/link/BlockPlan.h"

namespace zorhost::link {

std::vector<RegisterBlock> PlanBlocks(std::span<const RegisterRange> ranges, int limit) {
    std::vector<RegisterBlock> blocks;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const RegisterRange& r = ranges[i];
        if (!blocks.empty()) {
            RegisterBlock& b = blocks.back();
            if (b.address + std::uint32_t(b.count) == r.address && b.count + r.count <= limit) {
                b.count += r.count;
                b.last = i + 1;
                continue;
            }
        }
        blocks.push_back({r.address, r.count, i, i + 1});
    }
    return blocks;
}

} // namespace zorhost::link
