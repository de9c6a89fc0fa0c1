// The module's flows over real Modbus stacks: TCP to zordrive-sim, RTU over a
// pseudo-terminal, and an outside client reading the simulator; and how requests are cut
// into blocks and words ordered on the wire.
#include "LinkFixture.h"

#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/ModbusLink.h"
#include "zorhost/services/HostDeviceHelper.h"

#include <unistd.h>

using namespace linktest;
using namespace zorhost::link;
using zorhost::device::DataType;
using zorhost::device::ParameterDef;
using zorhost::sim::LinkStatus;
using zorhost::sim::ReadRaw;
using zorhost::sim::WriteRaw;

// What the module does every day, over a real protocol stack: a typed value reaches the
// drive, a 32-bit value keeps its sign, and an upload brings the drive's values in blocks.
// (Access codes travel as any other write; what the drive makes of them is the simulated
// drive's own test.)
TEST_F(TcpHost, KeyFlowsCrossModbusTcp) {
    ASSERT_TRUE(host.Module(kKey)->IsOnline());
    IHostDeviceHelper& helper = host.DeviceHelper();
    Variant result;
    std::vector<CString> errors;
    ASSERT_TRUE(helper.WriteVarDirect(kKey, Address("H02-08"), 18, Variant::UI2(321), result,
                                      errors, 0, 300, 1));
    EXPECT_TRUE(errors.empty());
    ASSERT_TRUE(helper.WriteVarDirect(kKey, Address("H05-34"), 3, Variant::I4(-123456), result,
                                      errors, 0, 300, 1));
    // Read back over a connection of its own.
    ModbusLink other(device, TcpLink(sim->Port()));
    ASSERT_TRUE(other.WaitOnline(3000));
    double raw = 0;
    ASSERT_TRUE(ReadRaw(other, Address("H02-08"), DataType::UInt16, raw, 300).ok());
    EXPECT_EQ(raw, 321);
    ASSERT_TRUE(ReadRaw(other, Address("H05-34"), DataType::Int32, raw, 300).ok());
    EXPECT_EQ(raw, -123456);

    ASSERT_TRUE(WriteRaw(other, Address("H02-09"), DataType::UInt16, 777, 300).ok());
    const LinkTraffic before = host.FieldLink(kKey)->Traffic();
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, kKey));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_TRUE(ends[0]);
    {
        IVarObjEx* v = host.Module(kKey)->Store().FindByAddress(Address("H02-09"));
        ASSERT_NE(v, nullptr);
        EXPECT_EQ(v->GetValue(), Variant::UI2(777));
        v = host.Module(kKey)->Store().FindByAddress(Address("H05-34"));
        EXPECT_EQ(v->GetValue(), Variant::I4(-123456));
    }
    const auto requests = host.FieldLink(kKey)->Traffic().requests - before.requests;
    EXPECT_LT(requests, 60u) << "an upload of the servo goes in blocks";
}

// A refusal crosses the wire with the drive's own reason, limits included; a refused
// address inside an upload block fails only its own parameter.
TEST_F(TcpHost, RefusalsCarryTheDrivesReason) {
    IHostDeviceHelper& helper = host.DeviceHelper();
    struct Case {
        const char* code;
        double value;
        const char* reason;
    };
    ASSERT_TRUE(sim->Command("run 1 on"));
    for (const Case& c :
         {Case{"H02-08", 600, "设定值超出范围(0~500)"}, Case{"H00-01", 1, "该参数不可修改"},
          Case{"H02-00", 2, "运行中不可修改"}}) {
        Variant result;
        std::vector<CString> errors;
        EXPECT_FALSE(helper.WriteVarDirect(kKey, Address(c.code), 18, Variant::UI2(c.value), result,
                                           errors, 0, 300, 1))
            << c.code;
        ASSERT_EQ(errors.size(), 1u) << c.code;
        EXPECT_NE(errors[0].str().find(c.reason), std::string::npos) << errors[0].str();
    }
    EXPECT_TRUE(host.Module(kKey)->IsOnline()) << "a refusal is no lost link";

    ASSERT_TRUE(helper.WriteParameter(kKey, Address("H02-08"), 123));
    ASSERT_TRUE(sim->Command("refuse " + std::to_string(Address("H02-09"))));
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, kKey));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_FALSE(ends[0]);
    // The one refused read is named, and it is no lost link.
    const auto& failed = host.Transfer().LastUploadFailures();
    ASSERT_EQ(failed.size(), 1u);
    EXPECT_EQ(failed[0].address, Address("H02-09"));
    EXPECT_EQ(failed[0].reason.str().rfind("H02-09: ", 0), 0u) << failed[0].reason.str();
    EXPECT_FALSE(host.Transfer().LastUploadWentOffline());
    EXPECT_EQ(host.Module(kKey)->Store().FindByAddress(Address("H02-08"))->GetValue(),
              Variant::UI2(123))
        << "the neighbours of the refused parameter are read singly";
}

// A download writes neighbours in blocks; the one value the drive refuses is the only
// failure, named with the drive's reason, and the rest of its block still arrives.
TEST_F(TcpHost, DownloadInBlocksNamesExactlyTheRefusedParameter) {
    Records records;
    records.AddWritable(*device, [&](const ParameterDef& p) {
        if (p.address == Address("H02-08"))
            return 600.0; // above its limit of 500
        return p.address == Address("H02-09") ? 60.0 : p.factoryValue;
    });
    ASSERT_GT(records.items.size(), 100u);
    ModbusLink& link = *host.FieldLink(kKey);
    const auto before = link.Traffic().requests;
    EXPECT_FALSE(host.Transfer().DownloadRecords(nullptr, kKey, records.items));
    const auto& failures = host.Transfer().LastDownloadFailures();
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0].address, Address("H02-08"));
    EXPECT_NE(failures[0].reason.str().find("H02-08: 设定值超出范围(0~500)"), std::string::npos)
        << failures[0].reason.str();
    EXPECT_LT(link.Traffic().requests - before, records.items.size() / 3);
    double raw = 0;
    ASSERT_TRUE(ReadRaw(link, Address("H02-09"), DataType::UInt16, raw, 300).ok());
    EXPECT_EQ(raw, 60);
}

// The host runs and stops a drive on the wire by its run command; the drive's own rules
// follow (a parameter changed only at a stop is refused while it runs). A drive that dies
// takes the module offline, and it is found again when it comes back on its port.
// (A death mid-flow is the business of the link fault tests.)
TEST_F(TcpHost, RunCommandCrossesTheLinkAndADeadDriveIsFoundAgain) {
    IHostDeviceHelper& helper = host.DeviceHelper();
    for (bool running : {true, false}) {
        SCOPED_TRACE(running ? "running" : "stopped");
        ASSERT_TRUE(host.SetRunning(kKey, running).ok());
        double state = -1;
        ASSERT_TRUE(
            ReadRaw(*host.FieldLink(kKey), kRunRegister, DataType::UInt16, state, 300).ok());
        EXPECT_EQ(state, running ? 1 : 0);
        EXPECT_EQ(helper.WriteParameter(kKey, Address("H02-00"), 2), running ? 0 : 1);
    }
    const int port = sim->Port();
    sim->Kill();
    EXPECT_FALSE(host.SetRunning(kKey, true).ok()) << "no success over a dead link";
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return !host.Module(kKey)->IsOnline(); }, 3000));
    EXPECT_EQ(host.FieldLink(kKey)->Read(0, std::span<std::uint16_t>(), 0).status,
              LinkStatus::Refused)
        << "a request without registers never goes out";
    std::uint16_t word = 0;
    EXPECT_EQ(host.FieldLink(kKey)->Read(0, std::span(&word, 1), 0).status, LinkStatus::Offline);

    sim = std::make_unique<SimProcess>(
        std::vector<std::string>{"--tcp", "127.0.0.1:" + std::to_string(port), "zd3s_servo.json"});
    ASSERT_TRUE(sim->Started());
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return host.Module(kKey)->IsOnline(); }, 5000));
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, kKey));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_TRUE(ends[0]);
}

// Two drives on one line, each under its own unit id, over a pseudo-terminal pair.
TEST(ModbusRtu, ReadsAndWritesAParameterOverAPseudoTerminal) {
    SimProcess sim({"--rtu", "pty", "zd3s_servo.json", "zv5_inverter.json"});
    ASSERT_FALSE(sim.Path().empty()) << sim.FirstLine();
    auto inverter = LoadShippedDevice("zv5_inverter.json");
    ASSERT_NE(inverter, nullptr);
    LinkSettings s;
    s.kind = LinkKind::ModbusRtu;
    s.device = sim.Path();
    s.unit = 2;
    s.timeout_ms = 300;
    ModbusLink line(inverter, s);
    ASSERT_TRUE(line.WaitOnline(3000));

    const ParameterDef& p = inverter->parameters[inverter->FindByCode("H00-08")];
    double raw = -1;
    ASSERT_TRUE(ReadRaw(line, p.address, p.dataType, raw, 300).ok());
    EXPECT_EQ(raw, p.factoryValue);
    ASSERT_TRUE(WriteRaw(line, p.address, p.dataType, p.maxValue, 300).ok());
    ASSERT_TRUE(ReadRaw(line, p.address, p.dataType, raw, 300).ok());
    EXPECT_EQ(raw, p.maxValue);
}

// A Modbus client none of our code wrote reads what the device description says.
TEST(Interop, MbpollReadsTheFactoryValueFromTheSimulator) {
    if (::access("/usr/bin/mbpoll", X_OK) != 0)
        GTEST_SKIP() << "mbpoll is not installed (scripts/setup.sh installs it)";
    SimProcess sim({"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
    ASSERT_GT(sim.Port(), 0) << sim.FirstLine();
    auto servo = LoadShippedDevice("zd3s_servo.json");
    ASSERT_NE(servo, nullptr);
    const auto& p = servo->parameters[servo->FindByCode("H02-09")];
    // mbpoll counts references from 1.
    const std::string reference = std::to_string(p.address + 1);
    const std::string out =
        RunCapture({"/usr/bin/mbpoll", "-m", "tcp", "-p", std::to_string(sim.Port()), "-a", "1",
                    "-r", reference, "-c", "1", "-t", "4", "-1", "-o", "1", "127.0.0.1"},
                   10000);
    const std::string expected = "[" + reference + "]: \t" + std::to_string(int(p.factoryValue));
    EXPECT_NE(out.find(expected), std::string::npos) << out;
}

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
