#include "SimFixture.h"
#include "TextOf.h"

#include "module/host/IHostModuleManager.h"

#include <afx/afxwin.h>

#include <malloc.h>

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
