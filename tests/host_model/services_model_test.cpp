// The product database, the project's module state and stored custom groups, the message
// bus's delivery on the user-interface thread, worker threads and the module manager.
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostMessageBus.h"
#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostProductDb.h"
#include "zorhost/services/HostWorkerThread.h"

#include "ShippedDevices.h"
#include "TestFiles.h"
#include "TextOf.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>
#include <future>
#include <thread>

using namespace zorhost::model;
using zorhost::CHostMessageBus;
using zorhost::CHostProductDb;
using zorhost::CHostWorkerThread;

namespace {

TEST(HostProductDb, FindsProductsAndCatalogsByLabelAndVersion) {
    auto servo = LoadShippedDevice("zd3s_servo.json");
    auto axes = LoadShippedDevice("zd4m_four_axis.json");
    ASSERT_TRUE(servo && axes);
    CHostProductDb db;
    db.Add(servo);
    db.Add(axes);
    db.Add(axes);
    EXPECT_EQ(db.Count(), 2);

    CDeviceModule four(axes, "ZD4M", 1), one(servo, "ZD3S", 2);
    IHostProductRecord* record = db.FindProduct(four.GetElecLabel(), four.GetElecLabelSize());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->GetLineId(), 11u);
    EXPECT_EQ(record->GetProductId(), 282u);
    EXPECT_EQ(record->GetSubProductId(), 0u);
    record = db.FindProduct(one.GetElecLabel(), one.GetElecLabelSize());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->GetLineId(), 13u);

    // The module's own catalog: multi-axis for the four-axis drive only.
    IVarCatalog* catalog = db.GetProductCatalog(four.GetElecLabel(), four.GetElecLabelSize(),
                                                TextOf(&four, &CDeviceModule::GetVersionText));
    EXPECT_EQ(catalog, four.GetVarCatalog());
    ASSERT_TRUE(catalog && catalog->GetAxisList());
    EXPECT_TRUE(catalog->GetAxisList()->IsValid());
    const CString version = TextOf(&one, &CDeviceModule::GetVersionText);
    catalog = db.GetProductCatalog(one.GetElecLabel(), one.GetElecLabelSize(), version);
    ASSERT_TRUE(catalog && catalog->GetAxisList());
    EXPECT_FALSE(catalog->GetAxisList()->IsValid());
    EXPECT_EQ(db.GetProductCatalog(one.GetElecLabel(), one.GetElecLabelSize(), "V9.99.99"), catalog)
        << "another firmware of a known type";

    // Unknown and short labels find nothing.
    std::vector<BYTE> label(one.GetElecLabel(), one.GetElecLabel() + one.GetElecLabelSize());
    label[14] ^= 0xFF;
    EXPECT_EQ(db.FindProduct(label.data(), UINT(label.size())), nullptr);
    EXPECT_EQ(db.FindProduct(one.GetElecLabel(), 8), nullptr);
    EXPECT_EQ(db.FindProduct(nullptr, 0), nullptr);
    EXPECT_EQ(db.GetProductCatalog(label.data(), UINT(label.size()), version), nullptr);
}

TEST(HostProjectModel, SubNameAndPrimaryLabelComeFromTheDescription) {
    const std::string json = Slurp(PARMIRA_DEVICES_DIR "/zd3s_servo.json");
    auto withProductKeys = [&](const std::string& keys) {
        std::string text = json;
        size_t at = text.find("\"product\": {");
        EXPECT_NE(at, std::string::npos);
        text.insert(at + 12, keys);
        return zorhost::device::ParseDeviceJson(text, "composite.json");
    };
    // Without them: the model designation of the product name, and no primary label.
    CDeviceModule plain(LoadShippedDevice("zd3s_servo.json"), "P", 1);
    EXPECT_EQ(TextOf(&plain, &CDeviceModule::GetSubName), CString("ZD3-S"));
    EXPECT_EQ(plain.GetPrimaryElecLabel(), nullptr);

    auto r = withProductKeys("\"subName\": \"S3\", \"primaryElectronicLabel\": \"0102 03\", ");
    ASSERT_TRUE(r) << r.error.ToString();
    CDeviceModule module(r.device, "C", 1);
    EXPECT_EQ(TextOf(&module, &CDeviceModule::GetSubName), CString("S3"));
    ASSERT_EQ(module.GetPrimaryElecLabelSize(), 3u);
    EXPECT_EQ(module.GetPrimaryElecLabel()[0], 1);
    EXPECT_EQ(module.GetPrimaryElecLabel()[2], 3);

    r = withProductKeys("\"primaryElectronicLabel\": \"01x2\", ");
    ASSERT_FALSE(r);
    EXPECT_NE(r.error.ToString().find("product.primaryElectronicLabel"), std::string::npos)
        << r.error.ToString();
}

TEST(HostProjectModel, CustomGroupsSurviveTheWorkspaceDatabase) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    auto servo = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(servo);
    CWorkspace workspace(CString(dir.path().toStdString()));
    CDeviceModule* module =
        workspace.Modules().Add(std::make_unique<CDeviceModule>(servo, "ZD3S", 1));
    ASSERT_NE(module, nullptr);
    const CString version = TextOf(module, &CDeviceModule::GetVersionText);
    EXPECT_EQ(workspace.GetDatabase(module->GetElecLabel(), module->GetElecLabelSize(), "V0"),
              nullptr);
    IVarDatabase* db =
        workspace.GetDatabase(module->GetElecLabel(), module->GetElecLabelSize(), version);
    ASSERT_NE(db, nullptr);
    EXPECT_EQ(workspace.GetDatabase(module->GetElecLabel(), module->GetElecLabelSize(), version),
              db);

    IGroupSet* custom = module->GetVarList()->GetGroupRoot(1);
    IGroupNode* g = custom->NewGroup();
    g->SetName("调试");
    g->SetDescription("常用");
    g->AddMember("H00-04");
    g->AddMember("H05-14");
    IGroupNode* sub = custom->NewGroup();
    sub->SetName("sub");
    sub->AddMember("H03-00");
    ASSERT_TRUE(g->AddChild(sub));
    ASSERT_TRUE(custom->AddGroup(g));
    custom->AddMember("H02-22");

    const CString path(dir.filePath("Variables.dat").toStdString());
    ASSERT_TRUE(db->SaveToFile(path));

    // A second module of the same device reads the groups back.
    CVarStore other(servo);
    CVarDatabase reader(other);
    std::string error;
    ASSERT_TRUE(reader.LoadFromFile(path, &error)) << error;
    IGroupSet* back = other.GetGroupRoot(1);
    ASSERT_EQ(back->GetCount(), 1);
    IGroupNode* g2 = back->GetAt(0);
    EXPECT_EQ(TextOf(g2, &IGroupNode::GetName), CString("调试"));
    EXPECT_EQ(TextOf(g2, &IGroupNode::GetDescription), CString("常用"));
    ASSERT_EQ(g2->GetMemberCount(), 2);
    CString text;
    g2->GetMemberAt(1, text);
    EXPECT_EQ(text, CString("H05-14"));
    ASSERT_EQ(g2->GetChildCount(), 1);
    EXPECT_EQ(g2->GetChildAt(0)->GetParent(), g2);
    ASSERT_EQ(back->GetMemberCount(), 1);

    // A broken file is refused and leaves the groups as they were.
    const std::string broken = dir.filePath("broken.dat").toStdString();
    Spit(broken, R"({"format": 1, "groups": [{"description": "no name"}]})");
    EXPECT_FALSE(reader.LoadFromFile(CString(broken), &error));
    EXPECT_NE(error.find("broken.dat"), std::string::npos) << error;
    EXPECT_EQ(back->GetCount(), 1);
    EXPECT_FALSE(reader.LoadFromFile(CString(dir.filePath("missing").toStdString())));
    EXPECT_FALSE(db->SaveToFile(CString(dir.filePath("no/such/dir/x").toStdString())));
}

// A listener of every bus event that records what it heard and on which thread.
class Listener : public IMessage_LanguageChanged,
                 public IMessage_ModuleEvent,
                 public IMessage_ModuleUploadEvent {
public:
    void OnLanguageChanged() override { Heard("language"); }
    void OnModuleNotify1(uintptr_t) override {}
    void OnModuleRemoved(const CString& key) override { Heard("removed " + key.str()); }
    void OnModuleNotify3(uintptr_t) override {}
    void OnModuleRenamed(const CString& key, const CString& name) override {
        Heard("renamed " + key.str() + " " + name.str());
    }
    void OnModuleUploaded(const CString& key, BOOL ok) override {
        Heard("up " + key.str() + (ok ? " ok" : " failed"));
    }
    void OnModuleDownloaded(const CString& key, BOOL ok) override {
        Heard("down " + key.str() + (ok ? " ok" : " failed"));
    }

    std::vector<std::string> heard;
    bool onUiThread = true;
    std::function<void()> onHear;

private:
    void Heard(std::string what) {
        onUiThread = onUiThread && QThread::currentThread() == qApp->thread();
        heard.push_back(std::move(what));
        if (onHear)
            onHear();
    }
};

TEST(HostMessageBus, DeliversToSubscribersInOrderAndHonoursUnsubscribe) {
    CHostMessageBus bus;
    Listener a, b;
    const GUID kModule = IMessage_ModuleEvent::kIID;
    EXPECT_TRUE(bus.Subscribe(kModule, AsSink<IMessage_ModuleEvent>(&a)));
    EXPECT_TRUE(bus.Subscribe(kModule, AsSink<IMessage_ModuleEvent>(&b)));
    EXPECT_TRUE(bus.Subscribe(kModule, AsSink<IMessage_ModuleEvent>(&a)));
    EXPECT_TRUE(
        bus.Subscribe(IMessage_LanguageChanged::kIID, AsSink<IMessage_LanguageChanged>(&b)));
    EXPECT_FALSE(bus.Subscribe(IMessage_ModuleEvent::kIID, nullptr));
    EXPECT_FALSE(bus.Subscribe(IHostMessageBus::kIID, AsSink<IMessage_ModuleEvent>(&a)))
        << "not an event";

    bus.RaiseModuleRenamed("M1", "Drive 1");
    EXPECT_EQ(a.heard, (std::vector<std::string>{"renamed M1 Drive 1", "renamed M1 Drive 1"}))
        << "subscribed twice, heard twice";
    EXPECT_EQ(b.heard, (std::vector<std::string>{"renamed M1 Drive 1"}));

    EXPECT_TRUE(bus.Unsubscribe(kModule, AsSink<IMessage_ModuleEvent>(&a)));
    EXPECT_EQ(bus.ListenerCount(kModule), 2);
    bus.RaiseModuleRemoved("M1");
    EXPECT_EQ(a.heard.size(), 3u) << "one subscription left";
    bus.RaiseLanguageChanged();
    EXPECT_EQ(b.heard.back(), "language");
    EXPECT_TRUE(bus.Unsubscribe(kModule, AsSink<IMessage_ModuleEvent>(&a)));
    EXPECT_FALSE(bus.Unsubscribe(kModule, AsSink<IMessage_ModuleEvent>(&a)));
}

TEST(HostMessageBus, ListenersMayUnsubscribeThemselvesOrOthersDuringDelivery) {
    CHostMessageBus bus;
    const GUID kUpload = IMessage_ModuleUploadEvent::kIID;
    Listener first, second, third;
    for (Listener* l : {&first, &second, &third})
        bus.Subscribe(kUpload, AsSink<IMessage_ModuleUploadEvent>(l));
    // The first one leaves and takes the second with it; a late subscriber waits for the
    // next event.
    Listener late;
    first.onHear = [&] {
        bus.Unsubscribe(kUpload, AsSink<IMessage_ModuleUploadEvent>(&first));
        bus.Unsubscribe(kUpload, AsSink<IMessage_ModuleUploadEvent>(&second));
        bus.Subscribe(kUpload, AsSink<IMessage_ModuleUploadEvent>(&late));
    };
    bus.RaiseModuleUploaded("M2", 1);
    EXPECT_EQ(first.heard.size(), 1u);
    EXPECT_TRUE(second.heard.empty()) << "removed before its turn";
    EXPECT_EQ(third.heard, (std::vector<std::string>{"up M2 ok"}));
    EXPECT_TRUE(late.heard.empty());
    bus.RaiseModuleDownloaded("M2", 0);
    EXPECT_EQ(first.heard.size(), 1u);
    EXPECT_EQ(late.heard, (std::vector<std::string>{"down M2 failed"}));
    EXPECT_EQ(third.heard.back(), "down M2 failed");
}

TEST(HostMessageBus, EventsRaisedOnAWorkerArriveOnTheUiThread) {
    CHostMessageBus bus;
    Listener l;
    bus.Subscribe(IMessage_ModuleUploadEvent::kIID, AsSink<IMessage_ModuleUploadEvent>(&l));
    std::thread([&] {
        for (int i = 0; i < 20; ++i)
            bus.RaiseModuleUploaded(CString("M" + std::to_string(i)), 1);
    }).join();
    EXPECT_TRUE(l.heard.empty()) << "queued, not called on the worker";
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return l.heard.size() == 20; }, 5000));
    EXPECT_TRUE(l.onUiThread);
    EXPECT_EQ(l.heard.front(), "up M0 ok");
    EXPECT_EQ(l.heard.back(), "up M19 ok") << "in the order raised";

    // An event still queued when its listener leaves is not delivered to it.
    std::thread([&] { bus.RaiseModuleUploaded("late", 1); }).join();
    bus.Unsubscribe(IMessage_ModuleUploadEvent::kIID, AsSink<IMessage_ModuleUploadEvent>(&l));
    QCoreApplication::processEvents();
    EXPECT_EQ(l.heard.size(), 20u);

    // Nor are the queued events of a bus that is gone.
    {
        CHostMessageBus gone;
        gone.Subscribe(IMessage_LanguageChanged::kIID, AsSink<IMessage_LanguageChanged>(&l));
        std::thread([&] { gone.RaiseLanguageChanged(); }).join();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(l.heard.size(), 20u);
}

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
