#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostWorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using zorhost::CHostWorkerThread;

namespace {

struct Job {
    CHostWorkerThread* worker = nullptr;
    std::atomic<int> laps{0};
    std::atomic<bool> ended{false};
    std::atomic<bool> sawUserData{false};
    int slowMs = 0; // keeps running this long after the stop request
};

UINT Loop(void* arg) {
    auto* job = static_cast<Job*>(arg);
    job->sawUserData = job->worker->GetUserData() == job;
    while (!job->worker->Wait(1))
        ++job->laps;
    std::this_thread::sleep_for(std::chrono::milliseconds(job->slowMs));
    job->ended = true;
    return 0;
}

TEST(HostWorkerThread, ReleaseReturnsOnlyAfterTheFunctionEnded) {
    Job job;
    auto* w = new CHostWorkerThread;
    job.worker = w;
    job.slowMs = 50;
    w->SetUserData(&job);
    ASSERT_TRUE(w->Start(&Loop, 0, &job));
    EXPECT_FALSE(w->Start(&Loop, 0, &job)) << "one start per object";
    while (job.laps < 3)
        std::this_thread::yield();
    EXPECT_FALSE(w->IsStopRequested());
    w->Release();
    EXPECT_TRUE(job.ended);
    EXPECT_TRUE(job.sawUserData);
}

TEST(HostWorkerThread, WaitWakesEarlyOnStopAndTimeoutLeavesTheObjectToTheThread) {
    CHostWorkerThread probe;
    auto t0 = std::chrono::steady_clock::now();
    EXPECT_FALSE(probe.Wait(20));
    EXPECT_GE(std::chrono::steady_clock::now() - t0, std::chrono::milliseconds(20));
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        probe.RequestStop(1);
    });
    t0 = std::chrono::steady_clock::now();
    EXPECT_TRUE(probe.Wait(10000));
    EXPECT_LT(std::chrono::steady_clock::now() - t0, std::chrono::seconds(5));
    stopper.join();

    // A worker that outlives the wait: Release returns, the thread finishes and frees it
    // (the sanitizer build would report a leak or a use after free otherwise).
    Job job;
    auto* w = new CHostWorkerThread;
    job.worker = w;
    job.slowMs = 100;
    w->SetWaitTimeout(5);
    ASSERT_TRUE(w->Start(&Loop, 0, &job));
    w->Release();
    EXPECT_FALSE(job.ended);
    while (!job.ended)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

} // namespace

namespace {

TEST(HostModuleManager, MakesWorkersAndKeepsPluginInterfaces) {
    zorhost::CHostModuleManager manager;
    IBaseInterface* made = manager.CreateInstance(IID_IHostWorkerThread);
    ASSERT_NE(made, nullptr);
    auto* worker = static_cast<IHostWorkerThread*>(made);
    Job job;
    job.worker = static_cast<CHostWorkerThread*>(worker);
    ASSERT_TRUE(worker->Start(&Loop, 0, &job));
    worker->Release();
    EXPECT_TRUE(job.ended);
    EXPECT_EQ(manager.CreateInstance(GuidFromString("00000000-0000-0000-0000-000000000001")),
              nullptr);

    const GUID iid = GuidFromString("12345678-0000-0000-0000-00000000ABCD");
    IBaseInterface plugin, other;
    EXPECT_EQ(manager.GetModuleInterface(iid), nullptr);
    manager.RegisterModuleInterface(iid, &plugin);
    EXPECT_EQ(manager.GetModuleInterface(iid), &plugin);
    IBaseInterface* p = &other;
    EXPECT_FALSE(manager.ReleaseInstance(iid, &p)) << "not the instance the host holds";
    p = &plugin;
    EXPECT_TRUE(manager.ReleaseInstance(iid, &p));
    EXPECT_EQ(manager.GetModuleInterface(iid), nullptr);
    EXPECT_FALSE(manager.ReleaseInstance(iid, &p));
}

} // namespace
