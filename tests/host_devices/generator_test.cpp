// Generated devices load through the ordinary loader and have the size asked for.

#include "zorhost/device/DeviceGenerator.h"

#include <gtest/gtest.h>

#include <set>

using namespace zorhost::device;

namespace {

TEST(DeviceGenerator, LargeSingleAxisDeviceLoadsWithTheAskedSize) {
    LoadResult r = GenerateDevice(20000);
    ASSERT_TRUE(r) << r.error.ToString();
    const DeviceDescription& d = *r.device;
    ASSERT_EQ(d.parameters.size(), 20000u);
    std::size_t members = 0;
    for (std::uint32_t g : d.groupSet.roots)
        members += d.groups[g].members.size();
    EXPECT_EQ(members, 20000u);
    std::set<int> kinds;
    int linked = 0;
    for (const ParameterDef& p : d.parameters) {
        if (const ValueInfo* info = d.ValueInfoOf(p))
            kinds.insert(int(info->kind));
        linked += p.IsMaxLinked();
    }
    EXPECT_EQ(kinds, (std::set<int>{1, 2, 3, 4}));
    EXPECT_GT(linked, 0);
    // Lookups reach the last parameter.
    const ParameterDef& last = d.parameters.back();
    EXPECT_EQ(d.FindByCode(d.Code(last)), 19999u);
    EXPECT_EQ(d.FindByAddress(last.address), 19999u);
}

// One in eight parameters is 32-bit and takes two addresses, so 65 536 no longer fit; counts
// beyond two-digit indexes use wider groups.
TEST(DeviceGenerator, CountsUpToTheAddressSpaceUseWiderGroups) {
    LoadResult full = GenerateDevice(58000);
    ASSERT_TRUE(full) << full.error.ToString();
    EXPECT_EQ(full.device->parameters.size(), 58000u);
    EXPECT_NE(full.device->FindByCode("H00-254"), kNoIndex);
    EXPECT_TRUE(GenerateDeviceJson(65536).empty());
    EXPECT_FALSE(GenerateDevice(0));
}

TEST(DeviceGenerator, MultiAxisSplitsTheCountOverItsAxes) {
    GeneratorOptions options;
    options.axisCount = 4;
    LoadResult r = GenerateDevice(4000, options);
    ASSERT_TRUE(r) << r.error.ToString();
    ASSERT_EQ(r.device->axes.size(), 4u);
    EXPECT_EQ(r.device->parameters.size(), 4000u);
    for (int a = 0; a < 4; ++a) {
        EXPECT_EQ(r.device->AxisParameters(a).size(), 1000u);
        EXPECT_EQ(r.device->axes[a].addressBase, std::uint32_t(a) * 0x4000);
    }
    EXPECT_TRUE(GenerateDeviceJson(4001, options).empty()); // not divisible by the axes
}

TEST(DeviceGenerator, SameSeedSameDevice) {
    GeneratorOptions a, b;
    b.seed = 2;
    EXPECT_EQ(GenerateDeviceJson(500, a), GenerateDeviceJson(500, a));
    EXPECT_NE(GenerateDeviceJson(500, a), GenerateDeviceJson(500, b));
}

} // namespace
