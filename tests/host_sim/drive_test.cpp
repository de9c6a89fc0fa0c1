// The simulated drive as the host reaches it: register codecs, monitoring values, link
// faults, access codes, and the device helper's typed reads and writes.
#include "SimFixture.h"

using namespace simtest;
using zorhost::device::DataType;
namespace sim = zorhost::sim;

namespace {

// A typed write as the frame makes it (200 ms a try, three tries): what it took and said.
struct Written {
    BOOL ok = 0;
    Variant taken;
    std::vector<CString> errors;
    std::string Why() const {
        std::string all;
        for (const CString& e : errors)
            all += e.str() + "|";
        return all;
    }
};

Written Write(IHostDeviceHelper& helper, const char* key, UINT address, int type,
              const Variant& value) {
    Written w;
    w.ok = helper.WriteVarDirect(key, address, type, value, w.taken, w.errors, 1, 200, 3);
    return w;
}

} // namespace

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

TEST_F(DemoHost, RefusedWritesLeaveTheDriveValueAndSayWhy) {
    IHostDeviceHelper& helper = host.DeviceHelper();
    SimulatedDrive& d = *host.Drive("ZD3S");
    struct Case {
        const char* code;
        Variant value;
        const char* why; // part of the drive's reason
        bool running;
    } cases[] = {
        {"H02-09", Variant::UI2(20), "超出范围(50~1000)", false},   // below the minimum
        {"H02-09", Variant::UI2(1001), "超出范围(50~1000)", false}, // above the maximum
        {"H01-15", Variant::I2(0), "不可修改", false},              // 不可修改
        {"H02-00", Variant::UI2(1), "运行中不可修改", true},        // 停机修改 while running
        {"H02-09", Variant::I4(-1), "超出范围(0~65535)", false},    // not a u16 at all
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        d.SetRunning(c.running);
        const UINT a = Address("ZD3S", c.code);
        const double before = Peek("ZD3S", a);
        const Written w =
            Write(helper, "ZD3S", a, Var("ZD3S", a)->GetAttr()->GetDataType(), c.value);
        EXPECT_FALSE(w.ok);
        EXPECT_EQ(Peek("ZD3S", a), before);
        ASSERT_EQ(w.errors.size(), 1u) << w.Why();
        EXPECT_NE(w.errors[0].str().find(c.why), std::string::npos) << w.Why();
        EXPECT_EQ(w.errors[0].str().rfind(c.code, 0), 0u) << "the text names the parameter";
        EXPECT_TRUE(w.taken.IsEmpty());
    }

    // The same parameter at standstill, and within its limits, is taken.
    d.SetRunning(false);
    const UINT a = Address("ZD3S", "H02-00");
    const Written taken = Write(helper, "ZD3S", a, 18, Variant::UI2(1));
    EXPECT_TRUE(taken.ok);
    EXPECT_TRUE(taken.errors.empty()) << taken.Why();
    EXPECT_EQ(Peek("ZD3S", a), 1);
    EXPECT_EQ(taken.taken, Variant::UI2(1));

    // Limits linked to another parameter follow that parameter's live value.
    const UINT linked = Address("ZD3S", "H06-08"), limit = Address("ZD3S", "H06-02");
    ASSERT_TRUE(d.PokeRaw(limit, 3000));
    EXPECT_FALSE(helper.WriteParameter("ZD3S", linked, 3001));
    EXPECT_TRUE(helper.WriteParameter("ZD3S", linked, 3000));
    ASSERT_TRUE(d.PokeRaw(limit, 4000));
    EXPECT_TRUE(helper.WriteParameter("ZD3S", linked, 3500));

    host.SetEnglish(true);
    EXPECT_EQ(Write(helper, "ZD3S", Address("ZD3S", "H02-09"), 18, Variant::UI2(5)).errors,
              std::vector<CString>{"H02-09: value out of range (50 to 1000)"});
}

TEST_F(DemoHost, DirectAccessTriesAgainOnlyWhenTryingCanHelp) {
    auto& helper = host.DeviceHelper();
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT a = Address("ZD3S", "H02-08");
    Variant value;

    d.SetFailure(FailureMode::FailWrites, {a});
    d.TakeRequests();
    Written w = Write(helper, "ZD3S", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_EQ(d.TakeRequests().size(), 3u) << "a communication error is tried again";
    EXPECT_NE(w.errors.at(0).str().find("通讯错误"), std::string::npos);
    d.ClearFailures();

    EXPECT_FALSE(Write(helper, "ZD3S", a, 18, Variant::UI2(9999)).ok);
    EXPECT_EQ(d.TakeRequests().size(), 1u) << "a refusal will not change its mind";

    d.SetFailure(FailureMode::Slow);
    EXPECT_FALSE(helper.ReadVarDirect("ZD3S", a, 18, value, 200, 2));
    EXPECT_EQ(d.TakeRequests().size(), 2u);
    EXPECT_TRUE(helper.ReadVarDirect("ZD3S", a, 18, value, 5000, 1)) << "a patient caller waits";
    EXPECT_EQ(value, Variant::UI2(250));
    d.ClearFailures();

    // A recipe's access is one request, not the tries of an interactive write.
    d.SetFailure(FailureMode::FailWrites, {a});
    d.SetFailure(FailureMode::FailReads, {a});
    d.TakeRequests();
    double number = 0;
    EXPECT_FALSE(helper.WriteParameter("ZD3S", a, 100));
    EXPECT_FALSE(helper.ReadParameter("ZD3S", a, number));
    EXPECT_FALSE(helper.WriteParameterAs("ZD3S", a, 18, 100));
    EXPECT_EQ(d.TakeRequests().size(), 3u);
    d.ClearFailures();

    host.SetOnline("ZD3S", false);
    w = Write(helper, "ZD3S", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_NE(w.errors.at(0).str().find("设备离线"), std::string::npos);
    EXPECT_FALSE(helper.ReadParameter("ZD3S", a, number));
    host.SetOnline("ZD3S", true);

    w = Write(helper, "NOPE", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_EQ(w.errors.size(), 1u);

    // 32-bit values travel whole, signed ones with their sign.
    const UINT wide = Address("ZD3S", "H05-34"); // i32
    w = Write(helper, "ZD3S", wide, 3, Variant::I4(-1000000));
    EXPECT_TRUE(w.ok) << w.Why();
    EXPECT_TRUE(helper.ReadVarDirect("ZD3S", wide, 3, value, 200, 3));
    EXPECT_EQ(value, Variant::I4(-1000000));
    EXPECT_TRUE(helper.ReadParameter("ZD3S", wide, number));
    EXPECT_EQ(number, -1000000);
}

TEST_F(DemoHost, PasswordRegistersAndAuthorityOfTheDrive) {
    auto& helper = host.DeviceHelper();
    IHostDeviceModule* servo = host.Module("ZD3S");
    EXPECT_EQ(helper.GetProtocolKind(servo), 2);
    EXPECT_EQ(helper.GetProtocolKind(host.Module("ZD4M")), 1);
    EXPECT_EQ(helper.GetProtocolKind(host.Module("ZV5")), 0);
    EXPECT_EQ(helper.GetProtocolKind(nullptr), -1);

    IVarObjEx* authority = helper.FindNamedVar(servo, "Authority");
    ASSERT_NE(authority, nullptr);
    EXPECT_EQ(authority->GetInstanceAddress(), Address("ZD3S", "H0B-40"));
    EXPECT_EQ(helper.FindNamedVar(servo, "NoSuchName"), nullptr);
    EXPECT_EQ(helper.FindNamedVar(host.Module("ZV5"), "Authority"), nullptr);

    auto readAuthority = [&] {
        Variant v;
        EXPECT_TRUE(helper.ReadVarDirect("ZD3S", authority->GetInstanceAddress(), 18, v, 200, 1));
        return v.uiVal;
    };
    SimulatedDrive& d = *host.Drive("ZD3S");
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority);

    // A factory-level parameter is the drive's to refuse until the code is given.
    const UINT motorCode = Address("ZD3S", "H00-00");
    const Written refused = Write(helper, "ZD3S", motorCode, 18, Variant::UI2(2000));
    EXPECT_FALSE(refused.ok);
    EXPECT_NE(refused.errors.at(0).str().find("权限不足"), std::string::npos);

    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kFactoryCode - 1));
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority) << "a wrong code grants nothing";
    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kFactoryCode));
    EXPECT_EQ(readAuthority(), 3);
    EXPECT_EQ(Peek("ZD3S", Address("ZD3S", "H02-19")), 0) << "codes are not kept readable";
    EXPECT_TRUE(Write(helper, "ZD3S", motorCode, 18, Variant::UI2(2000)).ok);

    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kLogoutCode));
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority);
    EXPECT_FALSE(helper.WriteParameter("ZD3S", motorCode, 2001));

    // The cyclic read carries "Authority" to the variable the module polls.
    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "TempAuthority", SimulatedDrive::kFactoryCode));
    Submit(host.Refresh(), "ZD3S", {authority});
    host.Refresh().RunCycle();
    EXPECT_EQ(authority->GetValue(), Variant::UI2(3));
    EXPECT_EQ(d.Authority(), 3);

    // On the four-axis drive H02-41 of any axis takes the code, as the recipes write it.
    SimulatedDrive& m = *host.Drive("ZD4M");
    EXPECT_EQ(m.Authority(), SimulatedDrive::kBaseAuthority);
    EXPECT_TRUE(helper.WriteParameterAs("ZD4M", 0x2229, 18, SimulatedDrive::kFactoryCode));
    EXPECT_EQ(m.Authority(), 3);
    // The inverter keeps its levels in the tool: its drive refuses nothing for them.
    const auto& rated = Param("ZV5", "H01-06");
    ASSERT_EQ(rated.accessLevel, 3);
    EXPECT_TRUE(helper.WriteParameter("ZV5", rated.address, rated.factoryValue));
}
