#include "ShippedDevices.h"
#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/RegisterMap.h"

#include <gtest/gtest.h>

using namespace zorhost::link;

namespace {

struct PlanCase {
    const char* name;
    std::vector<RegisterRange> ranges;
    int limit;
    std::vector<std::pair<std::uint32_t, int>> blocks; // address, registers
};

} // namespace

TEST(BlockPlan, NeighboursShareARequestUpToTheLimit) {
    const PlanCase cases[] = {
        {"one run", {{10, 1}, {11, 2}, {13, 1}}, 125, {{10, 4}}},
        {"a gap splits", {{10, 1}, {12, 1}}, 125, {{10, 1}, {12, 1}}},
        {"an overlap splits", {{10, 2}, {11, 1}}, 125, {{10, 2}, {11, 1}}},
        {"limit reached", {{0, 2}, {2, 2}, {4, 2}}, 4, {{0, 4}, {4, 2}}},
        {"a 32-bit value is never cut", {{0, 1}, {1, 2}}, 2, {{0, 1}, {1, 2}}},
        {"limit one: one request each", {{0, 1}, {1, 1}}, 1, {{0, 1}, {1, 1}}},
        {"nothing", {}, 125, {}},
    };
    for (const PlanCase& c : cases) {
        const auto blocks = PlanBlocks(c.ranges, c.limit);
        std::vector<std::pair<std::uint32_t, int>> got;
        std::size_t covered = 0;
        for (const auto& b : blocks) {
            got.emplace_back(b.address, b.count);
            EXPECT_EQ(b.first, covered) << c.name;
            covered = b.last;
        }
        EXPECT_EQ(covered, c.ranges.size()) << c.name;
        EXPECT_EQ(got, c.blocks) << c.name;
    }
}

// A product that sends the high word first has the words of each multi-register value
// turned on the wire, and only those.
TEST(RegisterMap, HighWordFirstTurnsOnlyMultiRegisterValues) {
    auto loaded = LoadShippedDevice("zd3s_servo.json");
    ASSERT_NE(loaded, nullptr);
    auto device = std::make_shared<zorhost::device::DeviceDescription>(*loaded);
    // H05-22 (u16), H05-23 (u32, two registers), H05-25 (u16).
    const std::uint32_t a = device->parameters[device->FindByCode("H05-22")].address;
    std::uint16_t words[4] = {1, 2, 3, 4};
    SwapToWireOrder(*device, a, words);
    EXPECT_EQ(std::vector<std::uint16_t>(words, words + 4),
              (std::vector<std::uint16_t>{1, 2, 3, 4}));
    device->product.wordOrder = zorhost::device::WordOrder::HighFirst;
    SwapToWireOrder(*device, a, words);
    EXPECT_EQ(std::vector<std::uint16_t>(words, words + 4),
              (std::vector<std::uint16_t>{1, 3, 2, 4}));
    // A value cut by the block's end is left alone rather than half turned.
    std::uint16_t cut[2] = {1, 2};
    SwapToWireOrder(*device, a, cut);
    EXPECT_EQ(cut[1], 2);
}
