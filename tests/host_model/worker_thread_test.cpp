#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostWorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

using zorhost::CHostWorkerThread;

namespace {

struct Job {
    CHostWorkerThread* worker = nullptr;
    std::atomic<bool> ended{false};
    std::atomic<bool> sawUserData{false};
    std::shared_future<void> gate; // when set, the function holds until it is ready
};

UINT Loop(void* arg) {
    auto* job = static_cast<Job*>(arg);
    job->sawUserData = job->worker->GetUserData() == job;
    while (!job->worker->Wait(1)) {
    }
    if (job->gate.valid()) {
        job->gate.wait();
    } else {
        // Work that outlasts the stop request: a Release without a time-out waits for it.
        volatile unsigned sum = 0;
        for (unsigned i = 0; i < 20'000'000; ++i)
            sum = sum + i;
    }
    job->ended = true;
    return 0;
}

// Tells when the thread has deleted the object it was left.
struct ObservedWorker : CHostWorkerThread {
    std::promise<void>* freed = nullptr;
    ~ObservedWorker() override { freed->set_value(); }
};

TEST(HostWorkerThread, WaitWakesOnStopAndTimeoutLeavesTheObjectToTheThread) {
    CHostWorkerThread probe;
    EXPECT_FALSE(probe.Wait(0));
    // Without the wake-up this wait would last a minute and the suite's time limit fails it.
    std::thread stopper([&] { probe.RequestStop(1); });
    EXPECT_TRUE(probe.Wait(60000));
    stopper.join();

    // A worker that outlives the wait: Release returns, the thread finishes and frees it
    // (the sanitizer build would report a leak or a use after free otherwise).
    std::promise<void> gate, freed;
    Job job;
    auto* w = new ObservedWorker;
    w->freed = &freed;
    job.worker = w;
    job.gate = gate.get_future().share();
    w->SetWaitTimeout(0);
    ASSERT_TRUE(w->Start(&Loop, 0, &job));
    w->Release();
    EXPECT_FALSE(job.ended) << "the function is still held";
    gate.set_value();
    freed.get_future().wait();
    EXPECT_TRUE(job.ended);
}

TEST(HostModuleManager, MakesWorkersAndKeepsPluginInterfaces) {
    zorhost::CHostModuleManager manager;
    auto* worker = static_cast<IHostWorkerThread*>(manager.CreateInstance(IID_IHostWorkerThread));
    ASSERT_NE(worker, nullptr);
    Job job;
    job.worker = static_cast<CHostWorkerThread*>(worker);
    worker->SetUserData(&job);
    ASSERT_TRUE(worker->Start(&Loop, 0, &job));
    EXPECT_FALSE(worker->Start(&Loop, 0, &job)) << "one start per object";
    worker->Release();
    EXPECT_TRUE(job.ended) << "Release returned before the function ended";
    EXPECT_TRUE(job.sawUserData);
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
