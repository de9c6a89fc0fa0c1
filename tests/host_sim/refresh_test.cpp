// The refresh service over the demo drives: what a cycle reads and stores, its listeners,
// and a worker's traffic beside the host's tick.
#include "SimFixture.h"

#include <algorithm>
#include <atomic>
#include <thread>

using namespace simtest;

TEST_F(DemoHost, RefreshCycleReadsExactlyTheAddressesAskedAndStoresThem) {
    auto* refresh = host.Services().Get<IHostRefreshService>();
    ASSERT_NE(refresh, nullptr);
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT small = Address("ZD3S", "H02-08"), wide = Address("ZD3S", "H05-23"),
               speed = Address("ZD3S", "H0B-00");
    ASSERT_TRUE(d.PokeRaw(small, 321));
    ASSERT_TRUE(d.PokeRaw(wide, 3000000));
    d.SetRunning(true);
    d.Step(500);
    const double driveSpeed = Peek("ZD3S", speed);
    d.TakeRequests();

    Submit(*refresh, "ZD3S", {Var("ZD3S", small), Var("ZD3S", wide), Var("ZD3S", speed)});
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
