#include "SimFixture.h"

using namespace simtest;
using zorhost::device::DataType;
namespace sim = zorhost::sim;

TEST(RegisterCodec, ValuesSurviveTheirRegistersAtTheTypeLimits) {
    struct Case {
        DataType type;
        double raw;
        int words;
    } cases[] = {
        {DataType::Int16, -32768, 1},        {DataType::UInt16, 65535, 1},
        {DataType::Int32, -2147483648.0, 2}, {DataType::UInt32, 4294967295.0, 2},
        {DataType::Int8, -128, 1},           {DataType::Float, -1.5, 2},
        {DataType::Double, 1e300, 4},        {DataType::Bool, 1, 1},
    };
    for (const Case& c : cases) {
        std::uint16_t w[4] = {};
        ASSERT_EQ(sim::RegisterCount(c.type), c.words);
        ASSERT_TRUE(sim::EncodeRaw(c.type, c.raw, std::span(w, size_t(c.words)))) << c.raw;
        EXPECT_EQ(sim::DecodeRaw(c.type, std::span<const std::uint16_t>(w, size_t(c.words))),
                  c.raw);
    }
    std::uint16_t two[2] = {};
    ASSERT_TRUE(sim::EncodeRaw(DataType::UInt32, 0x00020001, two));
    EXPECT_EQ(two[0], 1) << "low word first";
    EXPECT_EQ(two[1], 2);

    std::uint16_t one[1] = {};
    EXPECT_FALSE(sim::EncodeRaw(DataType::UInt16, 65536, one));
    EXPECT_FALSE(sim::EncodeRaw(DataType::UInt16, -1, one));
    EXPECT_FALSE(sim::EncodeRaw(DataType::Int16, 1.5, one)) << "integers take no fractions";
    EXPECT_FALSE(sim::EncodeRaw(DataType::Int32, 1, one)) << "a 32-bit value needs two";
    EXPECT_EQ(sim::RegisterCount(DataType::String), 0);
}

TEST_F(DemoHost, MonitoringValuesFollowTheRunStateAndTheScopeSamples) {
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT speed = Address("ZD3S", "H0B-00"), bus = Address("ZD3S", "H0B-22"),
               current = Address("ZD3S", "H0B-21");
    EXPECT_NEAR(Peek("ZD3S", bus), 5400, 30) << "a new drive is powered up already";
    d.Step(1000);
    EXPECT_EQ(Peek("ZD3S", speed), 0) << "a stopped drive stands";
    const double idleBus = Peek("ZD3S", bus);
    EXPECT_NEAR(idleBus, 5400, 30) << "about 540.0 V with one decimal";

    d.StartOscilloscope();
    d.SetRunning(true);
    d.Step(100);
    const double early = Peek("ZD3S", speed);
    for (int i = 0; i < 40; ++i)
        d.Step(100);
    const double late = Peek("ZD3S", speed);
    EXPECT_GT(early, 0);
    EXPECT_GT(late, early) << "the speed ramps up";
    EXPECT_NEAR(late, 1500, 10);
    EXPECT_GT(Peek("ZD3S", current), 0);
    EXPECT_LT(Peek("ZD3S", bus), idleBus - 50) << "the bus sags under load";
    EXPECT_TRUE(d.IsOscilloscopeRunning());
    EXPECT_EQ(d.OscilloscopeSamples().size(), 41u);

    d.SetRunning(false);
    for (int i = 0; i < 60; ++i)
        d.Step(100);
    EXPECT_EQ(Peek("ZD3S", speed), 0) << "and comes to rest again";
    EXPECT_EQ(Peek("ZD3S", current), 0);
    d.StopOscilloscope();
    d.Step(100);
    EXPECT_EQ(d.OscilloscopeSamples().size(), 101u) << "a stopped scope keeps its trace";

    // Every axis of the four-axis drive moves on its own.
    SimulatedDrive& m = *host.Drive("ZD4M");
    m.SetRunning(true);
    for (int i = 0; i < 30; ++i)
        m.Step(100);
    for (int axis = 0; axis < 4; ++axis)
        EXPECT_GT(Peek("ZD4M", Address("ZD4M", "H0B-00", axis)), 0) << axis;
    EXPECT_NE(Peek("ZD4M", Address("ZD4M", "H0B-00", 0)),
              Peek("ZD4M", Address("ZD4M", "H0B-00", 3)));
}

TEST_F(DemoHost, LinkFaultsAndLatencyAsTheCallerSeesThem) {
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT a = Address("ZD3S", "H02-08");
    std::uint16_t w[1];
    EXPECT_TRUE(d.Read(a, w, 200).ok());
    EXPECT_EQ(w[0], 250) << "factory value";

    d.SetLatency(300);
    EXPECT_EQ(d.Read(a, w, 200).status, sim::LinkStatus::Timeout);
    EXPECT_TRUE(d.Read(a, w, 500).ok());
    d.SetLatency_us(4900); // whole milliseconds, rounded up
    EXPECT_EQ(d.Latency(), 5);
    EXPECT_TRUE(d.Read(a, w, 5).ok());
    EXPECT_EQ(d.Read(a, w, 4).status, sim::LinkStatus::Timeout);
    d.SetLatency(1);
    d.SetFailure(FailureMode::Slow);
    EXPECT_EQ(d.Read(a, w, 500).status, sim::LinkStatus::Timeout);
    d.ClearFailure(FailureMode::Slow);

    d.SetFailure(FailureMode::FailReads, {a});
    EXPECT_EQ(d.Read(a, w, 200).status, sim::LinkStatus::Error);
    EXPECT_TRUE(d.Read(a + 1, w, 200).ok()) << "only the given address fails";
    std::uint16_t two[2];
    EXPECT_EQ(d.Read(a - 1, two, 200).status, sim::LinkStatus::Error)
        << "a block that covers it fails too";
    d.SetFailure(FailureMode::FailWrites, {a + 1});
    w[0] = 100;
    EXPECT_TRUE(d.Write(a, w, 200).ok()) << "read faults leave writes alone";
    EXPECT_EQ(d.Write(a + 1, w, 200).status, sim::LinkStatus::Error);
    // A refusal is the drive's answer: nothing to try again.
    d.SetFailure(FailureMode::RefuseWrites, {a + 2});
    const sim::LinkResult refused = d.Write(a + 2, w, 200);
    EXPECT_EQ(refused.status, sim::LinkStatus::Refused);
    EXPECT_EQ(refused.refusal, sim::Refusal::AccessDenied);
    EXPECT_FALSE(refused.transient());
    EXPECT_TRUE(d.Read(a + 2, w, 200).ok());

    d.SetFailure(FailureMode::Offline);
    EXPECT_FALSE(d.IsOnline());
    EXPECT_TRUE(d.IsConnected());
    EXPECT_EQ(d.Read(a + 1, w, 200).status, sim::LinkStatus::Offline);
    d.ClearFailures();
    EXPECT_TRUE(d.IsOnline());
    EXPECT_FALSE(d.HasFailure(FailureMode::RefuseWrites));
    EXPECT_TRUE(d.Write(a + 2, w, 200).ok());
    EXPECT_TRUE(d.Read(a, w, 200).ok());
    EXPECT_EQ(w[0], 100);

    EXPECT_EQ(d.Read(0xFFF0, w, 200).refusal, sim::Refusal::IllegalAddress);
    const UINT wide = Address("ZD3S", "H05-23"); // u32
    EXPECT_EQ(d.Write(wide, w, 200).refusal, sim::Refusal::WrongLength);
    EXPECT_EQ(d.Write(wide + 1, w, 200).refusal, sim::Refusal::IllegalAddress)
        << "the high word is no parameter of its own";
}

TEST_F(DemoHost, AnAccessCodeOpensTheTopLevelAndReachesADriveThatKeepsItsOwn) {
    std::string why;
    EXPECT_FALSE(host.EnterAccessCode("ZD3S", "1357", &why));
    EXPECT_EQ(why, "the access code is not accepted");
    EXPECT_EQ(host.Module("ZD3S")->GetAccessLevel(), 0);
    EXPECT_FALSE(host.EnterAccessCode("ZD3S", "24x", &why));

    const std::string code = std::to_string(SimulatedDrive::kFactoryCode);
    ASSERT_TRUE(host.EnterAccessCode("ZD3S", code, &why)) << why;
    EXPECT_EQ(host.Module("ZD3S")->GetAccessLevel(), SimulatedDrive::kFactoryAuthority);
    EXPECT_EQ(host.Drive("ZD3S")->Authority(), SimulatedDrive::kFactoryAuthority)
        << "the servo keeps a level of its own: the code went to the drive";
    // The inverter's level lives in the tool alone; its drive is left as it was.
    ASSERT_TRUE(host.EnterAccessCode("ZV5", code, &why)) << why;
    EXPECT_EQ(host.Module("ZV5")->GetAccessLevel(), SimulatedDrive::kFactoryAuthority);
}
