// The reference host's demo project and services, the projects it refuses, the oscilloscope,
// transfers with their progress, faults and end events, and the refresh service: what a
// cycle reads and stores, its listeners, and a worker's traffic beside the host's tick.
#include "SimFixture.h"
#include "TextOf.h"

#include "module/host/IHostModuleManager.h"

#include <afx/afxwin.h>

#include <algorithm>
#include <atomic>
#include <malloc.h>
#include <thread>

using namespace simtest;

namespace {

template <class I> I* Ask(zorhost::ReferenceHost& host) {
    void* out = nullptr;
    zorhost::HostServices::Query(host.Services().Context(), &I::kIID, &out);
    return static_cast<I*>(out);
}

} // namespace

TEST_F(DemoHost, DemoProjectAndTheServicesThroughTheCallback) {
    EXPECT_EQ(host.ModuleKeys(), (std::vector<CString>{"ZD3S", "ZD4M", "ZV5"}));
    auto* root = Ask<IHostProjectRoot>(host);
    ASSERT_NE(root, nullptr);
    IHostModuleList* list = root->GetProject()->GetWorkspace()->GetModuleList();
    ASSERT_EQ(list->GetModuleCount(), 3);
    for (int i = 0; i < 3; ++i) {
        IHostDeviceModule* m = list->GetModuleAt(i);
        EXPECT_TRUE(m->IsOnline());
        EXPECT_EQ(m->GetAxisIndex(), i + 1);
        EXPECT_FALSE(TextOf(m, &IHostDeviceModule::GetDisplayName).IsEmpty());
    }
    EXPECT_EQ(list->GetModuleAt(3), nullptr);
    IHostDeviceModule* four = list->FindModuleByNumber(2);
    ASSERT_NE(four, nullptr);
    EXPECT_EQ(list->FindModule("ZD4M"), four);
    EXPECT_EQ(list->FindModule("zd4m"), nullptr) << "keys match exactly";
    EXPECT_EQ(four->GetProductInfo()->GetProductKind(), 5);
    EXPECT_GT(four->GetAxisCopyCount(), 0);
    EXPECT_EQ(four->GetVarList()->FindByAddress(0x4229)->GetOwnerModule(), four);
    EXPECT_EQ(four->GetVarList()->GetOwnerModule(), four);
    IHostDeviceModule* inverter = list->GetModuleAt(2);
    EXPECT_EQ(inverter->GetProductInfo()->GetProductKind(), 1);
    EXPECT_EQ(inverter->GetAxisCopyCount(), 0);
    four->SetAccessLevel(2);
    EXPECT_EQ(inverter->GetAccessLevel(), 0) << "levels are per module";
    EXPECT_EQ(Ask<IHostRefreshService>(host), &host.Refresh());
    EXPECT_EQ(Ask<IHostDeviceHelper>(host), &host.DeviceHelper());
    EXPECT_EQ(Ask<IHostTransferService>(host), &host.Transfer());
    EXPECT_EQ(Ask<IHostAccessService>(host), &host.Access());
    EXPECT_EQ(Ask<IHostHelpService>(host), &host.Help());
    EXPECT_NE(Ask<IHostVarPicker>(host), nullptr) << "one of the services the module may ask for";
    EXPECT_NE(Ask<IHostVarUtil>(host), nullptr);
    EXPECT_EQ(Ask<IHostMessageBus>(host), &host.Bus());
    EXPECT_EQ(Ask<IHostUiService>(host), &host.Ui());
    EXPECT_EQ(Ask<IHostProductDb>(host), &host.ProductDb());
    EXPECT_EQ(host.Project()->GetCommState(), &host.CommState());
    host.Ui().SetUiScale(1.5);
    EXPECT_EQ(host.DeviceHelper().GetUiScale(), 1.5) << "one scale for the whole host";

    // A transfer's end goes to the bus and to the program's own handler alike.
    int handled = 0;
    host.SetTransferEndHandler([&](const CString& key, BOOL ok, bool download) {
        handled += key == "ZV5" && ok && !download;
    });
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, "ZV5"));
    EXPECT_EQ(handled, 1);
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_TRUE(ends[0].success);
    host.SetTransferEndHandler(nullptr);
    host.Services().Withhold<IHostDeviceHelper>();
    EXPECT_EQ(Ask<IHostDeviceHelper>(host), nullptr);

    // Connection state: the module follows its drive, also when the drive fails by itself.
    host.SetOnline("ZV5", false);
    EXPECT_FALSE(host.Module("ZV5")->IsOnline());
    host.SetOnline("ZV5", true);
    host.Drive("ZV5")->SetFailure(FailureMode::Offline);
    EXPECT_TRUE(host.Module("ZV5")->IsOnline()) << "noticed at the next tick";
    host.Tick(100);
    EXPECT_FALSE(host.Module("ZV5")->IsOnline());
    EXPECT_EQ(host.Module("NOPE"), nullptr);
    EXPECT_EQ(host.Drive("NOPE"), nullptr);
}

// The module asks for its services afresh for every cell it draws, thousands of times a
// second with panels open: the answer must not keep anything per question.
TEST_F(DemoHost, QueriesKeepNothingPerCall) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers' allocators are not glibc's heap";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the sanitizers' allocators are not glibc's heap";
#endif
#endif
    // Large blocks are mapped apart from the arena; both count.
    auto inUse = [] {
        const struct mallinfo2 m = mallinfo2();
        return m.uordblks + m.hblkhd;
    };
    Ask<IHostUiService>(host);
    const std::size_t before = inUse();
    for (int i = 0; i < 100'000; ++i)
        ASSERT_NE(Ask<IHostUiService>(host), nullptr);
    EXPECT_LT(inUse(), before + 64 * 1024) << "the heap grows with queries";
}

TEST(ReferenceHostProject, BrokenProjectsAreRefusedWhole) {
    zorhost::ReferenceHost host;
    std::string error;
    zorhost::ProjectSetup setup = zorhost::ReferenceHost::DemoProject();
    setup.modules[1].deviceFile = "no_such_device.json";
    EXPECT_FALSE(host.LoadProject(setup, &error));
    EXPECT_NE(error.find("no_such_device.json"), std::string::npos) << error;
    EXPECT_EQ(host.Project(), nullptr);
    EXPECT_TRUE(host.ModuleKeys().empty());

    // A key or a number is taken once.
    setup = zorhost::ReferenceHost::DemoProject();
    setup.modules[2].key = "ZD3S";
    EXPECT_FALSE(host.LoadProject(setup, &error));
    EXPECT_NE(error.find("ZD3S"), std::string::npos) << error;
    EXPECT_EQ(host.Drive("ZD3S"), nullptr);
    setup = zorhost::ReferenceHost::DemoProject();
    setup.modules[2].number = 1;
    EXPECT_FALSE(host.LoadProject(setup, &error));

    // Two modules of one product share its description but not their drives.
    setup = zorhost::ReferenceHost::DemoProject();
    setup.modules[1] = {"zd3s_servo.json", "SECOND", "Second servo", 0, false, {}};
    setup.listStyle = 1;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    EXPECT_EQ(&host.Drive("ZD3S")->Device(), &host.Drive("SECOND")->Device());
    EXPECT_FALSE(host.Module("SECOND")->IsOnline());
    EXPECT_EQ(host.Module("SECOND")->GetAxisIndex(), 2);
    EXPECT_EQ(host.Project()->GetWorkspace()->GetListStyle(), 1);
    const UINT a = host.Drive("ZD3S")->Device().parameters[10].address;
    ASSERT_TRUE(host.Drive("ZD3S")->PokeRaw(a, 1));
    double other = -1;
    ASSERT_TRUE(host.Drive("SECOND")->PeekRaw(a, other));
    EXPECT_EQ(other, host.Drive("SECOND")->Device().parameters[10].factoryValue);
}

TEST_F(DemoHost, OscilloscopeWindowAndBusyState) {
    auto* manager = Ask<IHostModuleManager>(host);
    auto* scope =
        static_cast<IOscilloscopePanel*>(manager->GetModuleInterface(IOscilloscopePanel::kIID));
    ASSERT_NE(scope, nullptr);
    EXPECT_EQ(scope->GetWindow(), nullptr) << "no window before it is first shown";
    // Seen as the module sees it: through the window framework.
    auto visible = [&] {
        HWND h = scope->GetWindow();
        CWnd* w = h && ::IsWindow(h) ? CWnd::FromHandle(h) : nullptr;
        return w && w->IsWindowVisible();
    };
    host.Oscilloscope().Show(true);
    EXPECT_NE(scope->GetWindow(), nullptr);
    EXPECT_TRUE(host.Oscilloscope().IsVisible());
    EXPECT_TRUE(visible());
    host.Oscilloscope().Show(false);
    EXPECT_FALSE(host.Oscilloscope().IsVisible());
    EXPECT_FALSE(visible());
    EXPECT_NE(scope->GetWindow(), nullptr) << "the window outlives being hidden";

    EXPECT_FALSE(host.CommState().IsOscilloscopeRunning());
    host.Drive("ZD4M")->StartOscilloscope();
    EXPECT_TRUE(host.CommState().IsOscilloscopeRunning());
    EXPECT_TRUE(host.Oscilloscope().IsBusy());
    host.Drive("ZD4M")->StopOscilloscope();
    EXPECT_FALSE(host.CommState().IsOscilloscopeRunning());
}

TEST_F(DemoHost, UploadReadsTheModuleIntoItsVariablesAndEndsWithTheEvent) {
    IHostTransferService& transfer = host.Transfer();
    SimulatedDrive& d = *host.Drive("ZD4M");
    const UINT a = Address("ZD4M", "H0B-00", 2);
    ASSERT_TRUE(d.PokeRaw(a, 777));
    d.TakeRequests();

    std::vector<IVarObjEx*> all;
    EXPECT_TRUE(transfer.GetModuleVars("ZD4M", all));
    EXPECT_EQ(int(all.size()), host.Module("ZD4M")->Store().GetCount());
    EXPECT_FALSE(transfer.GetModuleVars("NOPE", all));

    EXPECT_TRUE(transfer.UploadModule(nullptr, "ZD4M"));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_EQ(ends[0].key, CString("ZD4M"));
    EXPECT_TRUE(ends[0].success);
    EXPECT_FALSE(ends[0].download);
    EXPECT_EQ(Var("ZD4M", a)->GetValue(), Variant::I2(777));
    EXPECT_EQ(Var("ZD4M", a)->GetLastReadValue(), Variant::I2(777));

    // What takes no part in transfers isn't asked for.
    std::size_t transferable = 0;
    for (IVarObjEx* v : all)
        transferable += v->GetAttr()->IsTransferable() && v->GetAttr()->GetModifyMode() != 3;
    EXPECT_EQ(d.TakeRequests().size(), transferable);
    EXPECT_LT(transferable, all.size());
}

TEST_F(DemoHost, GoingOfflineMidUploadStillEndsWithTheEvent) {
    auto& transfer = host.Transfer();
    SimulatedDrive& d = *host.Drive("ZD3S");
    std::vector<IVarObjEx*> vars;
    transfer.GetModuleVars("ZD3S", vars);
    vars.resize(40);
    // A value on the drive that differs from the variable's, so a read would show.
    auto changeOnDrive = [&](IVarObjEx* v) {
        const double factory = host.VarUtil().VariantAsDouble(v->GetAttr()->GetFactoryValue());
        const double raw = factory == 1 ? 0 : 1;
        EXPECT_TRUE(d.PokeRaw(v->GetInstanceAddress(), raw));
        return raw;
    };
    changeOnDrive(vars[30]);
    const Variant lastBefore = vars[30]->GetValue();
    int steps = 0;
    transfer.SetStepHook([&](int done, int) {
        steps = done;
        if (done == 10)
            d.SetFailure(FailureMode::Offline);
    });
    d.TakeRequests();
    EXPECT_TRUE(transfer.UploadVars(nullptr, "ZD3S", vars));
    ASSERT_EQ(ends.size(), 1u) << "exactly one end";
    EXPECT_FALSE(ends[0].success);
    EXPECT_EQ(steps, 10) << "the transfer stops at the first unanswered request";
    EXPECT_TRUE(transfer.LastUploadWentOffline());
    EXPECT_EQ(d.TakeRequests().size(), 11u);
    EXPECT_EQ(vars[30]->GetValue(), lastBefore);
    transfer.SetStepHook(nullptr);

    // Already offline, or unknown: ended at once, and still announced.
    EXPECT_TRUE(transfer.UploadModule(nullptr, "ZD3S"));
    EXPECT_FALSE(transfer.UploadModule(nullptr, "NOPE"));
    EXPECT_FALSE(transfer.SyncModuleAttributes(nullptr, "ZV5", 7));
    ASSERT_EQ(ends.size(), 4u);
    for (const auto& e : ends)
        EXPECT_FALSE(e.success);

    // A read that fails somewhere spoils the result, not the other values.
    d.ClearFailures();
    const UINT bad = vars[5]->GetInstanceAddress();
    d.SetFailure(FailureMode::FailReads, {bad});
    const double changed = changeOnDrive(vars[20]);
    EXPECT_TRUE(transfer.UploadVars(nullptr, "ZD3S", vars));
    EXPECT_FALSE(ends.back().success);
    EXPECT_EQ(host.VarUtil().VariantAsDouble(vars[20]->GetValue()), changed);

    d.ClearFailures();
    EXPECT_TRUE(transfer.SyncModuleAttributes(nullptr, "ZD3S", 2));
    EXPECT_TRUE(ends.back().success);
    EXPECT_EQ(transfer.UploadsEnded(), int(ends.size()));
}

TEST_F(DemoHost, ProgressFollowsTheUploadAndCancelEndsIt) {
    struct Progress : zorhost::TransferProgress {
        int total = -1, last = 0, ends = 0, cancelAt = 0;
        void Begin(const CString&, int t) override { total = t; }
        bool Advance(int done) override {
            EXPECT_EQ(done, last + 1);
            last = done;
            return done != cancelAt;
        }
        void End() override { ++ends; }
    } progress;
    host.Transfer().SetProgress(&progress);
    SimulatedDrive& d = *host.Drive("ZV5");

    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, "ZV5"));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_TRUE(ends[0].success);
    EXPECT_GT(progress.total, 0);
    EXPECT_EQ(progress.last, progress.total);
    EXPECT_EQ(progress.ends, 1);

    progress = {};
    progress.cancelAt = 5;
    d.TakeRequests();
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, "ZV5"));
    ASSERT_EQ(ends.size(), 2u);
    EXPECT_FALSE(ends[1].success);
    EXPECT_EQ(progress.last, 5);
    EXPECT_EQ(progress.ends, 1) << "the display goes away also when cancelled";
    EXPECT_EQ(d.TakeRequests().size(), 5u) << "nothing is read after the cancel";
    host.Transfer().SetProgress(nullptr);
}

TEST_F(DemoHost, RefreshCycleReadsExactlyTheAddressesAskedAndStoresThem) {
    IHostRefreshService& refresh = host.Refresh();
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT small = Address("ZD3S", "H02-08"), wide = Address("ZD3S", "H05-23"),
               speed = Address("ZD3S", "H0B-00");
    ASSERT_TRUE(d.PokeRaw(small, 321));
    ASSERT_TRUE(d.PokeRaw(wide, 3000000));
    d.SetRunning(true);
    d.Step(500);
    const double driveSpeed = Peek("ZD3S", speed);
    d.TakeRequests();

    Submit(refresh, "ZD3S", {Var("ZD3S", small), Var("ZD3S", wide), Var("ZD3S", speed)});
    EXPECT_EQ(d.TakeRequests().size(), 0u) << "nothing is read before the cycle";
    EXPECT_EQ(host.Refresh().RunCycle(), 3);

    const auto requests = d.TakeRequests();
    ASSERT_EQ(requests.size(), 3u);
    std::vector<std::pair<UINT, int>> seen;
    for (const auto& r : requests) {
        EXPECT_EQ(r.kind, zorhost::sim::DriveRequest::Read);
        seen.push_back({r.address, r.count});
    }
    std::sort(seen.begin(), seen.end());
    std::vector<std::pair<UINT, int>> asked = {{small, 1}, {wide, 2}, {speed, 1}};
    std::sort(asked.begin(), asked.end());
    EXPECT_EQ(seen, asked) << "a 32-bit value is one request of two registers";

    EXPECT_EQ(Var("ZD3S", small)->GetValue(), Variant::UI2(321));
    EXPECT_EQ(Var("ZD3S", small)->GetLastReadValue(), Variant::UI2(321));
    EXPECT_EQ(Var("ZD3S", wide)->GetValue(), Variant::UI4(3000000));
    EXPECT_EQ(Var("ZD3S", speed)->GetValue(), Variant::I2(std::int16_t(driveSpeed)));
    EXPECT_NE(driveSpeed, 0);

    // The next cycle reads only what the next query asks; one cycle's query is spent.
    EXPECT_EQ(host.Refresh().RunCycle(), 0);
    EXPECT_TRUE(d.TakeRequests().empty());
    // Another module's variables stay untouched by this one's query.
    EXPECT_EQ(host.Drive("ZD4M")->TakeRequests().size(), 0u);
}

TEST_F(DemoHost, RefreshSkipsWhatCannotBeReadAndOfflineModules) {
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT a = Address("ZD3S", "H02-08"), b = Address("ZD3S", "H02-09");
    IVarObjEx* va = Var("ZD3S", a);
    IVarObjEx* vb = Var("ZD3S", b);
    const Variant before = va->GetValue();
    d.PokeRaw(a, 111);
    d.PokeRaw(b, 222);
    d.SetFailure(FailureMode::FailReads, {a});
    Submit(host.Refresh(), "ZD3S", {va, vb});
    EXPECT_EQ(host.Refresh().RunCycle(), 1);
    EXPECT_EQ(va->GetValue(), before) << "a failed read keeps the old value";
    EXPECT_EQ(vb->GetValue(), Variant::UI2(222));
    d.ClearFailures();

    host.SetOnline("ZD3S", false);
    EXPECT_FALSE(host.Module("ZD3S")->IsOnline());
    d.TakeRequests();
    Submit(host.Refresh(), "ZD3S", {va});
    EXPECT_EQ(host.Refresh().RunCycle(), 0);
    EXPECT_TRUE(d.TakeRequests().empty()) << "no traffic to a module that is offline";
    EXPECT_EQ(va->GetValue(), before);

    Submit(host.Refresh(), "NOPE", {va});
    Submit(host.Refresh(), "", {});
    EXPECT_EQ(host.Refresh().RunCycle(), 0);
}

TEST_F(DemoHost, ListenersHearEachCycleAndMayLeaveFromTheirCall) {
    auto& refresh = host.Refresh();
    RefreshListener a, b, c;
    refresh.AddRefreshListener(&a);
    refresh.AddRefreshListener(&b);
    refresh.AddRefreshListener(&c);
    b.then = [&] { refresh.RemoveRefreshListener(&b); };
    // The usual answer to the event: the next query, submitted from the call.
    a.then = [&] { Submit(refresh, "ZD3S", {Var("ZD3S", Address("ZD3S", "H02-08"))}); };
    host.Tick(100);
    EXPECT_EQ(a.calls, 1);
    EXPECT_EQ(b.calls, 1);
    EXPECT_EQ(c.calls, 1) << "the one after a leaver is not skipped";
    EXPECT_EQ(refresh.PendingQueries(), 1u);
    host.Tick(100);
    EXPECT_EQ(a.calls, 2);
    EXPECT_EQ(b.calls, 1);
    EXPECT_EQ(c.calls, 2);
    refresh.RemoveRefreshListener(&a);
    refresh.RemoveRefreshListener(&c);
    refresh.RemoveRefreshListener(&c); // twice is harmless
    EXPECT_EQ(refresh.ListenerCount(), 0u);
}

// Recipes read and write one parameter at a time on a worker while the user-interface
// thread keeps ticking: drive steps, refresh cycles and the worker's traffic share the drive.
TEST_F(DemoHost, WorkerTrafficBesideTheHostTick) {
    auto& helper = host.DeviceHelper();
    const UINT a = Address("ZD3S", "H02-08"), speed = Address("ZD3S", "H0B-00");
    host.Drive("ZD3S")->SetRunning(true);
    std::atomic<bool> done{false};
    std::atomic<int> failures{0};
    std::thread worker([&] {
        for (int i = 0; i < 300; ++i) {
            double v = -1;
            if (!helper.WriteParameter("ZD3S", a, i % 500) || !helper.ReadParameter("ZD3S", a, v) ||
                v != i % 500)
                ++failures;
        }
        done = true;
    });
    IVarObjEx* speedVar = Var("ZD3S", speed);
    while (!done) {
        Submit(host.Refresh(), "ZD3S", {speedVar});
        host.Tick(10);
    }
    worker.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(Peek("ZD3S", a), 299);
}

TEST_F(DemoHost, AListenerRemovedFromAnotherThreadHearsNothingAfterwards) {
    std::atomic<bool> removed{false};
    std::atomic<int> lateCalls{0};
    RefreshListener listener;
    listener.then = [&] { lateCalls += removed ? 1 : 0; };
    host.Refresh().AddRefreshListener(&listener);
    std::thread other([&] {
        while (listener.calls < 20)
            std::this_thread::yield();
        host.Refresh().RemoveRefreshListener(&listener);
        removed = true;
    });
    while (!removed)
        host.Refresh().RunCycle();
    other.join();
    for (int i = 0; i < 10; ++i)
        host.Refresh().RunCycle();
    EXPECT_EQ(lateCalls, 0);
    EXPECT_GE(listener.calls, 20);
}
