#include "SimFixture.h"

#include <atomic>
#include <thread>

using namespace simtest;

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
