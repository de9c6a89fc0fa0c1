// A drive on the wire that goes wrong: it stops answering, answers garbage, answers too
// late or drops the connection, before a flow starts or half way through. Every flow ends
// with failure and its event at the first request the drive leaves unanswered, the module
// shows offline, nothing that did not reach the drive counts as done, and the module comes
// back once the drive does.
#include "LinkFixture.h"

#include <functional>

#include "zorhost/services/HostDeviceHelper.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <map>

using namespace linktest;

namespace {

struct Fault {
    const char* name;
    const char* on;
    const char* off; // null: the fault ends by itself
};

// The link waits 300 ms an answer and tries twice; a late answer comes after 1 s.
constexpr Fault kFaults[] = {
    {"silent", "silent on", "silent off"},
    {"garbage", "garbage on", "garbage off"},
    {"late", "latency 1000", "latency 0"},
    {"drop", "drop-after 1", nullptr},
};

// 0: the fault is there before the flow starts; otherwise it comes after that many steps.
constexpr int kStages[] = {0, 120};

// The tries of the one request that meets the fault; a flow asks nothing after it.
constexpr std::uint64_t kTriesAfterFault = 2;
// How long the module may take to show offline once the drive fails.
constexpr int kOffline_ms = 5000;

class LinkFaults : public TcpHost {
protected:
    void SetUp() override {
        TcpHost::SetUp();
        host.SetLinkStateHandler([this] {
            if (!host.Module(kKey)->IsOnline())
                sawOffline = true;
        });
    }
    void TearDown() override {
        host.Transfer().SetStepHook(nullptr);
        TcpHost::TearDown();
    }

    // Starts the fault now (stage 0) or from the flow's step hook.
    void Arm(const Fault& fault, int stage) {
        sawOffline = false;
        requestsAtFault = Requests();
        if (stage == 0) {
            ASSERT_TRUE(sim->Command(fault.on));
        }
        host.Transfer().SetStepHook([this, fault, stage, armed = false](int done, int) mutable {
            if (stage > 0 && !armed && done >= stage) {
                armed = sim->Command(fault.on);
                requestsAtFault = Requests();
            }
        });
    }
    std::uint64_t Requests() { return host.FieldLink(kKey)->Traffic().requests; }
    // Ends the fault and waits for the module to be back.
    void Recover(const Fault& fault) {
        host.Transfer().SetStepHook(nullptr);
        EXPECT_TRUE(AfxPumpMessagesUntil([&] { return sawOffline; }, 3000))
            << "the module showed offline";
        if (fault.off) {
            ASSERT_TRUE(sim->Command(fault.off));
        }
        ASSERT_TRUE(AfxPumpMessagesUntil([&] { return host.Module(kKey)->IsOnline(); }, 8000));
    }

    bool sawOffline = false;
    std::uint64_t requestsAtFault = 0;
};

} // namespace

TEST_F(LinkFaults, UploadEndsWithFailure) {
    for (const Fault& fault : kFaults)
        for (int stage : kStages) {
            SCOPED_TRACE(std::string(fault.name) + " at step " + std::to_string(stage));
            Arm(fault, stage);
            ends.clear();
            host.Transfer().UploadModule(nullptr, kKey);
            EXPECT_LE(Requests() - requestsAtFault, kTriesAfterFault);
            ASSERT_EQ(ends.size(), 1u);
            EXPECT_FALSE(ends[0]);
            Recover(fault);
        }
    host.Transfer().UploadModule(nullptr, kKey);
    EXPECT_TRUE(ends.back()) << "the drive that came back uploads";
}

TEST_F(LinkFaults, DownloadNamesEveryWriteThatDidNotHappen) {
    int round = 0;
    for (const Fault& fault : kFaults)
        for (int stage : kStages) {
            SCOPED_TRACE(std::string(fault.name) + " at step " + std::to_string(stage));
            ++round;
            // Values that differ from the last round's wherever the limits allow.
            Records records;
            std::map<std::uint32_t, std::pair<zorhost::device::DataType, double>> sent;
            records.AddWritable(*device, [&](const zorhost::device::ParameterDef& p) {
                double raw = p.factoryValue;
                if (round % 2 && !p.IsMinLinked() && !p.IsMaxLinked() && raw + 1 <= p.maxValue)
                    raw += 1;
                sent[p.address] = {p.dataType, raw};
                return raw;
            });
            Arm(fault, stage);
            downloads.clear();
            EXPECT_FALSE(host.Transfer().DownloadRecords(nullptr, kKey, records.items));
            EXPECT_LE(Requests() - requestsAtFault, kTriesAfterFault);
            ASSERT_EQ(downloads.size(), 1u);
            EXPECT_FALSE(downloads[0]);
            for (const auto& f : host.Transfer().LastDownloadFailures())
                sent.erase(f.address);
            EXPECT_LT(sent.size(), records.items.size());
            Recover(fault);
            zorhost::link::ModbusLink other(device, TcpLink(sim->Port()));
            ASSERT_TRUE(other.WaitOnline(3000));
            for (const auto& [address, value] : sent) {
                double raw = 0;
                ASSERT_TRUE(zorhost::sim::ReadRaw(other, address, value.first, raw, 300).ok());
                EXPECT_EQ(raw, value.second) << "not named as failed, yet not written: " << address;
            }
        }
}

// The refresh reads on a worker: a cycle never waits for the drive, stores nothing once
// the module is offline, and stores again when the drive is back.
TEST_F(LinkFaults, RefreshNeverHoldsTheWindow) {
    zorhost::CHostRefreshService& refresh = host.Refresh();
    auto cycle = [&] {
        std::unique_ptr<IHostRefreshQuery> query(refresh.NewQuery());
        query->SetModuleKey(kKey);
        int n = 0;
        for (const auto& p : device->parameters)
            if (zorhost::sim::RegisterCount(p.dataType) > 0 && n++ < 200) {
                IHostRefreshItem* item = query->NewItem();
                item->SetAddress(p.address);
                item->SetDataType(int(p.dataType));
                query->AddItem(item);
            }
        refresh.SubmitQuery(query.get());
        const int stored = refresh.RunCycle();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return stored;
    };
    auto storesWithin = [&](int timeout_ms) {
        return AfxPumpMessagesUntil([&] { return cycle() > 0; }, timeout_ms);
    };
    ASSERT_TRUE(storesWithin(3000));
    for (const Fault& fault : kFaults) {
        SCOPED_TRACE(fault.name);
        sawOffline = false;
        ASSERT_TRUE(sim->Command(fault.on));
        EXPECT_TRUE(AfxPumpMessagesUntil(
            [&] {
                cycle();
                return sawOffline;
            },
            kOffline_ms));
        if (!host.Module(kKey)->IsOnline()) {
            EXPECT_EQ(cycle(), 0);
        }
        if (fault.off) {
            ASSERT_TRUE(sim->Command(fault.off));
        }
        EXPECT_TRUE(storesWithin(8000));
    }

    // A drive that keeps silent for longer than a link gives it: a cycle that waited for it
    // would come back with the module offline.
    zorhost::ProjectSetup setup = TcpProject(kKey, sim->Port());
    setup.modules[0].link.timeout_ms = 20000;
    ASSERT_TRUE(host.LoadProject(setup));
    ASSERT_TRUE(storesWithin(3000));
    ASSERT_TRUE(sim->Command("silent on"));
    for (int i = 0; i < 3; ++i)
        cycle();
    EXPECT_TRUE(host.Module(kKey)->IsOnline()) << "a cycle waited for the drive";
}

TEST_F(LinkFaults, TransfersKeepTheWindowTurning) {
    ASSERT_TRUE(sim->Command("latency 20"));
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(5);
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, kKey));
    EXPECT_TRUE(ends.back());
    EXPECT_GT(ticks, 10) << "the upload held the event loop";
    ticks = 0;
    Records records;
    for (const char* code : {"H02-08", "H02-09", "H02-10"})
        records.Add(Address(code), Variant::UI2(100));
    EXPECT_TRUE(host.Transfer().DownloadRecords(nullptr, kKey, records.items));
    EXPECT_GT(ticks, 1) << "the download held the event loop";
}

// The window's events run while a single request or a transfer waits for the drive. A
// project closed from one of them, or a simulator that dies, ends the wait at once with
// failure rather than after the held answer, and nothing the closed project owned is
// touched afterwards (the sanitizer builds run this too).
TEST_F(LinkFaults, AWaitEndsAtOnceWhenTheProjectClosesOrTheDriveDies) {
    constexpr int kHeld_ms = 2000; // the simulator holds every answer this long
    IHostDeviceHelper& helper = host.DeviceHelper();
    const std::uint32_t speed = Address("H02-08");
    const std::pair<const char*, std::function<bool()>> requests[] = {
        {"typed write",
         [&] {
             Variant taken;
             std::vector<CString> errors;
             const BOOL ok = helper.WriteVarDirect(kKey, speed, 18, Variant::UI2(100), taken,
                                                   errors, 0, 300, 1);
             EXPECT_EQ(errors.size(), ok ? 0u : 1u) << "a failure says why";
             return ok != 0;
         }},
        {"access login", [&] { return helper.WriteNamedVar(kKey, "InputPassword", 2468) != 0; }},
        {"recipe read",
         [&] {
             double value = 0;
             return helper.ReadParameter(kKey, speed, value) != 0;
         }},
        {"upload",
         [&] {
             ends.clear();
             host.Transfer().UploadModule(nullptr, kKey);
             return ends.size() != 1 || ends[0];
         }},
    };
    const std::pair<const char*, std::function<void()>> events[] = {
        {"project closed", [&] { host.CloseProject(); }},
        {"simulator killed", [&] { sim->Kill(); }},
    };
    for (const auto& [eventName, event] : events)
        for (const auto& [requestName, request] : requests) {
            SCOPED_TRACE(std::string(requestName) + ", " + eventName);
            sim->Kill(); // the last one may still hold an answer
            sim = std::make_unique<SimProcess>(
                std::vector<std::string>{"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
            ASSERT_TRUE(sim->Started());
            zorhost::ProjectSetup setup = TcpProject(kKey, sim->Port());
            setup.modules[0].link.timeout_ms = 3 * kHeld_ms; // the drive is slow, not gone
            setup.modules[0].link.retries = 0;
            ASSERT_TRUE(host.LoadProject(setup));
            ASSERT_TRUE(host.Module(kKey)->IsOnline());
            ASSERT_TRUE(sim->Command("latency " + std::to_string(kHeld_ms)));
            bool fired = false;
            QTimer::singleShot(50, [&] {
                fired = true;
                event();
            });
            QElapsedTimer clock;
            clock.start();
            EXPECT_FALSE(request());
            EXPECT_TRUE(fired) << "the window's events did not run while the request waited";
            EXPECT_LT(clock.elapsed(), kHeld_ms / 2) << "the wait outlasted its link";
        }
}
