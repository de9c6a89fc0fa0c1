// An upload and a download of the servo over Modbus TCP on loopback, against the simulator
// served in-process. Counters per transfer: the requests and bytes that went over the
// wire, the fewest block requests those addresses allow, and the time the same traffic
// would take on an RTU line at 115200 baud (8E1: 11 bits a character, 3.5 characters'
// silence after each frame, at least 1.75 ms), in blocks and with one request per
// parameter. Besides, the time one typed write takes from the window thread: the request
// goes out from the link's worker while the window's events are handled.
#include "module/host/IVarAttr.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/ModbusServer.h"
#include "zorhost/link/RegisterMap.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <set>
#include <thread>

namespace {

using namespace zorhost;

constexpr double kBaud = 115200;
constexpr double kCharBits = 11;
constexpr double kGap_ms = 1.75;

double Frame_ms(int bytes) {
    return bytes * kCharBits * 1000.0 / kBaud + kGap_ms;
}
// RTU frames: unit + PDU + CRC.
double RtuRead_ms(int n) {
    return Frame_ms(8) + Frame_ms(5 + 2 * n);
}
double RtuWrite_ms(int n) {
    return Frame_ms(9 + 2 * n) + Frame_ms(8);
}

struct Bench {
    link::DriveServer drives;
    link::ModbusServer server{drives};
    std::thread serving;
    ReferenceHost host;
    std::shared_ptr<const device::DeviceDescription> device;

    Bench() {
        device =
            device::LoadDeviceFile(device::DefaultDeviceDirectory() + "/zd3s_servo.json").device;
        drives.AddDrive(device);
        const int port = server.ListenTcp("127.0.0.1", 0);
        serving = std::thread([this] { server.Serve(); });
        ProjectSetup setup;
        ModuleSetup m;
        m.deviceFile = "zd3s_servo.json";
        m.key = "SERVO";
        m.link.kind = link::LinkKind::ModbusTcp;
        m.link.port = port;
        setup.modules.push_back(m);
        host.LoadProject(setup);
    }
    ~Bench() {
        host.CloseProject();
        server.Stop();
        serving.join();
    }
};

void Report(benchmark::State& state, const link::LinkTraffic& traffic,
            std::span<const link::RegisterRange> ranges, int limit, bool write) {
    const auto blocks = link::PlanBlocks(ranges, limit);
    double blocks_ms = 0, single_ms = 0;
    for (const auto& b : blocks)
        blocks_ms += write ? RtuWrite_ms(b.count) : RtuRead_ms(b.count);
    for (const auto& r : ranges)
        single_ms += write ? RtuWrite_ms(r.count) : RtuRead_ms(r.count);
    const double n = double(state.iterations());
    state.counters["parameters"] = double(ranges.size());
    state.counters["requests"] = double(traffic.requests) / n;
    state.counters["bytes"] = double(traffic.bytesOut + traffic.bytesIn) / n;
    state.counters["min_blocks"] = double(blocks.size());
    state.counters["ratio"] = double(traffic.requests) / n / double(blocks.size());
    state.counters["rtu_block_ms"] = blocks_ms;
    state.counters["rtu_single_ms"] = single_ms;
    state.counters["rtu_gain"] = single_ms / blocks_ms;
}

link::LinkTraffic Since(const link::LinkTraffic& now, const link::LinkTraffic& before) {
    return {now.requests - before.requests, now.bytesOut - before.bytesOut,
            now.bytesIn - before.bytesIn};
}

void BM_UploadServoOverTcp(benchmark::State& state) {
    Bench b;
    link::ModbusLink& link = *b.host.FieldLink("SERVO");
    std::vector<IVarObjEx*> all;
    b.host.Transfer().GetModuleVars("SERVO", all);
    std::vector<link::RegisterRange> ranges;
    for (IVarObjEx* v : all) {
        IVarAttr* a = v->GetAttr();
        if (a->IsTransferable() && a->GetModifyMode() != int(device::ModifyMode::NotListed))
            ranges.push_back(
                {v->GetInstanceAddress(), sim::RegisterSpan(device::DataType(a->GetDataType()))});
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const auto& x, const auto& y) { return x.address < y.address; });
    const link::LinkTraffic before = link.Traffic();
    for (auto _ : state)
        if (!b.host.Transfer().UploadModule(nullptr, "SERVO"))
            state.SkipWithError("upload refused");
    Report(state, Since(link.Traffic(), before), ranges, link::kMaxReadRegisters, false);
}
BENCHMARK(BM_UploadServoOverTcp)->Unit(benchmark::kMillisecond);

void BM_DownloadServoOverTcp(benchmark::State& state) {
    Bench b;
    link::ModbusLink& link = *b.host.FieldLink("SERVO");
    // Argument: the access level the download runs at (the factory level after a login).
    const int level = int(state.range(0));
    if (level >= sim::SimulatedDrive::kFactoryAuthority)
        b.host.DeviceHelper().WriteNamedVar("SERVO", "InputPassword",
                                            sim::SimulatedDrive::kFactoryCode);
    std::vector<std::unique_ptr<CParamRecord>> owned;
    std::vector<IRWDataItem*> records;
    std::vector<link::RegisterRange> ranges;
    // What a parameter file brings to a stopped drive (the rules of RecordsFromFile), at
    // the level the download runs at; the access-code registers take codes, not values.
    std::set<std::uint32_t> codes;
    for (const auto& v : b.device->namedVariables)
        codes.insert(v.address);
    for (const auto& p : b.device->parameters)
        if ((p.modifyMode == device::ModifyMode::Any ||
             p.modifyMode == device::ModifyMode::AtStandstill) &&
            !p.IsFixed() && p.displayFormat != device::DisplayFormat::Hidden &&
            p.accessLevel <= level && !codes.count(p.address) &&
            sim::RegisterCount(p.dataType) > 0) {
            auto& r = owned.emplace_back(std::make_unique<CParamRecord>());
            r->SetRecordAddress(p.address);
            r->SetRecordValue(RawToVariant(p.dataType, p.factoryValue));
            records.push_back(r.get());
            ranges.push_back({p.address, sim::RegisterCount(p.dataType)});
        }
    std::sort(ranges.begin(), ranges.end(),
              [](const auto& x, const auto& y) { return x.address < y.address; });
    const link::LinkTraffic before = link.Traffic();
    for (auto _ : state)
        if (!b.host.Transfer().DownloadRecords(nullptr, "SERVO", records))
            state.SkipWithError("a write was refused");
    Report(state, Since(link.Traffic(), before), ranges, link::kMaxWriteRegisters, true);
}
BENCHMARK(BM_DownloadServoOverTcp)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

void BM_TypedWriteOverTcp(benchmark::State& state) {
    Bench b;
    const std::uint32_t address = b.device->parameters[b.device->FindByCode("H02-08")].address;
    IHostDeviceHelper& helper = b.host.DeviceHelper();
    std::uint16_t value = 0;
    for (auto _ : state) {
        Variant taken;
        std::vector<CString> errors;
        value = std::uint16_t((value + 1) % 500);
        if (!helper.WriteVarDirect("SERVO", address, int(device::DataType::UInt16),
                                   Variant::UI2(value), taken, errors, 0, 300, 1))
            state.SkipWithError("the write was refused");
    }
}
BENCHMARK(BM_TypedWriteOverTcp)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
