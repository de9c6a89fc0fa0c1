#include "zorhost/link/BlockWrite.h"

#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/RegisterMap.h"

#include <algorithm>

namespace zorhost::link {

namespace {

sim::LinkResult Try(int tries, const auto& request) {
    sim::LinkResult r;
    for (int t = 0; t < std::max(1, tries); ++t) {
        r = request();
        if (!r.transient())
            break;
    }
    return r;
}

} // namespace

std::vector<WriteFailure> WriteInBlocks(sim::DriveLink& link,
                                        std::span<const ParameterValue> values, int timeout_ms,
                                        int tries) {
    std::vector<ParameterValue> sorted(values.begin(), values.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.address < b.address; });
    const std::vector<RegisterRange> ranges = RangesOf(sorted);
    const int limit = std::clamp(link.WriteBlockLimit(), 1, kMaxWriteRegisters);

    std::vector<WriteFailure> failures;
    std::vector<std::uint16_t> words;
    bool offline = false;
    for (const RegisterBlock& block : PlanBlocks(ranges, limit)) {
        if (offline) {
            for (std::size_t k = block.first; k < block.last; ++k)
                failures.push_back({sorted[k].address, {sim::LinkStatus::Offline}});
            continue;
        }
        if (block.last - block.first > 1) {
            words.assign(std::size_t(block.count), 0);
            bool encoded = true;
            std::size_t offset = 0;
            for (std::size_t k = block.first; k < block.last; ++k) {
                const std::size_t n = std::size_t(ranges[k].count);
                encoded = encoded && sim::EncodeRaw(sorted[k].type, sorted[k].raw,
                                                    std::span(words.data() + offset, n));
                offset += n;
            }
            if (encoded) {
                const sim::LinkResult r =
                    Try(tries, [&] { return link.Write(block.address, words, timeout_ms); });
                if (r.ok())
                    continue;
                if (r.status == sim::LinkStatus::Offline) {
                    offline = true;
                    for (std::size_t k = block.first; k < block.last; ++k)
                        failures.push_back({sorted[k].address, r});
                    continue;
                }
            }
        }
        // One by one: a single parameter, or a refused block whose culprit is wanted.
        for (std::size_t k = block.first; k < block.last; ++k) {
            const ParameterValue& v = sorted[k];
            const sim::LinkResult r =
                offline ? sim::LinkResult{sim::LinkStatus::Offline} : Try(tries, [&] {
                    return sim::WriteRaw(link, v.address, v.type, v.raw, timeout_ms);
                });
            if (r.status == sim::LinkStatus::Offline)
                offline = true;
            if (!r.ok())
                failures.push_back({v.address, r});
        }
    }
    return failures;
}

} // namespace zorhost::link
