#include "SimProcess.h"

#include "ShippedDevices.h"
#include "zorhost/link/ModbusLink.h"

#include <gtest/gtest.h>

using namespace linktest;
using namespace zorhost;

// Two drives on one line, each under its own unit id, over a pseudo-terminal pair.
TEST(ModbusRtu, ReadsAndWritesAParameterOverAPseudoTerminal) {
    SimProcess sim({"--rtu", "pty", "zd3s_servo.json", "zv5_inverter.json"});
    ASSERT_FALSE(sim.Path().empty()) << sim.FirstLine();
    auto inverter = LoadShippedDevice("zv5_inverter.json");
    ASSERT_NE(inverter, nullptr);
    link::LinkSettings s;
    s.kind = link::LinkKind::ModbusRtu;
    s.device = sim.Path();
    s.unit = 2;
    s.timeout_ms = 300;
    link::ModbusLink line(inverter, s);
    ASSERT_TRUE(line.WaitOnline(3000));

    const device::ParameterDef& p = inverter->parameters[inverter->FindByCode("H00-08")];
    double raw = -1;
    ASSERT_TRUE(sim::ReadRaw(line, p.address, p.dataType, raw, 300).ok());
    EXPECT_EQ(raw, p.factoryValue);
    ASSERT_TRUE(sim::WriteRaw(line, p.address, p.dataType, p.maxValue, 300).ok());
    ASSERT_TRUE(sim::ReadRaw(line, p.address, p.dataType, raw, 300).ok());
    EXPECT_EQ(raw, p.maxValue);
    const sim::LinkResult refused = sim::WriteRaw(line, p.address, p.dataType, p.maxValue + 1, 300);
    EXPECT_EQ(refused.refusal, sim::Refusal::OutOfRange);
    EXPECT_EQ(refused.high, p.maxValue);
    EXPECT_GT(line.Traffic().requests, 0u);
}
