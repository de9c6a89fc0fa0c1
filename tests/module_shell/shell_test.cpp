// The module shell as the host drives it: the real QXParmira.so, loaded once as the host
// does, against the host's own bus, module manager, text service and tab manager and a
// project shaped by each test. Guarded: the exports and registry, the panel's captions,
// opening, closing, host events, missing services, and an unload that gives all back.
#include "FakeProject.h"

#include "module/ModuleResources.h"
#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"
#include "zorhost/HostServices.h"
#include "zorhost/services/HostMessageBus.h"
#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostTabManager.h"
#include "zorhost/services/HostUiService.h"

#include <afx/afxmt.h>
#include <afx/afxqt.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QTabWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

// The module, loaded once per test program.
struct ModuleExports {
    HMODULE handle = nullptr;
    PFN_SetQueryInterfaceCallback setCallback = nullptr;
    PFN_SupportedInterface supported = nullptr;
    PFN_CreateInterFace create = nullptr;
    PFN_SafeRelease release = nullptr;
} g_module;

// The host: its services behind the module's query callback, any of which can be withheld.
class TestHost {
public:
    TestHost() {
        widget.resize(800, 600);
        services.Register<IHostMessageBus>(&bus);
        services.Register<IHostModuleManager>(&manager);
        services.Register<IHostTabManager>(&tabs);
        services.Register<IHostUiService>(&ui);
        services.Register<IHostProjectRoot>(&root);
    }
    // Hands the callback to the module.
    void Attach() { g_module.setCallback(services.Context(), &zorhost::HostServices::Query); }
    // An offline module of the project.
    FakeModule& AddModule(const char* key, const char* name, const char* sub, int axis, int kind) {
        modules.push_back(std::make_unique<FakeModule>());
        FakeModule& m = *modules.back();
        m.key = key;
        m.name = name;
        m.subName = sub;
        m.axisIndex = axis;
        m.product.kind = kind;
        m.online = 0;
        root.modules.push_back(&m);
        return m;
    }
    HWND Tab(int index) const { return tabs.ParentAt(index); }
    CString Caption(int index) const { return AfxFromQString(widget.tabText(index)); }
    // The panel window inside the tab of `parent`, or null.
    QWidget* PanelOf(HWND parent) const {
        QWidget* page = tabs.PageOf(parent);
        if (page == nullptr)
            return nullptr;
        for (QWidget* child : page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (AfxHandleFromWidget(child) != nullptr)
                return child;
        return nullptr;
    }

    QTabWidget widget;
    zorhost::CHostMessageBus bus;
    zorhost::CHostModuleManager manager;
    zorhost::CHostUiService ui;
    FakeProject root;
    std::vector<std::unique_ptr<FakeModule>> modules;
    zorhost::HostServices services;
    // Declared last, so that it closes the panels still open while the services they ask
    // for are there.
    zorhost::CHostTabManager tabs{&widget};
};

// A fresh host per test, attached to the loaded module; instances still alive at the end
// are given back while the host still answers.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(g_module.handle, nullptr);
        host.Attach();
    }
    void TearDown() override {
        for (IQXParmira* p : live) {
            void* v = static_cast<IBaseInterface*>(p);
            g_module.release(&IID_IQXParmira, &v);
        }
        live.clear();
        g_module.setCallback(0, nullptr);
    }

    IQXParmira* Create() {
        auto* p = static_cast<IQXParmira*>(g_module.create(&IID_IQXParmira));
        if (p != nullptr)
            live.push_back(p);
        return p;
    }
    // Gives back through the export; forgets it here when that worked.
    int Destroy(IQXParmira* p) {
        void* v = static_cast<IBaseInterface*>(p);
        const int r = g_module.release(&IID_IQXParmira, &v);
        if (r != 0)
            Forget(p);
        return r;
    }
    void Forget(IQXParmira* p) { live.erase(std::remove(live.begin(), live.end(), p), live.end()); }

    TestHost host;
    std::vector<IQXParmira*> live;
};

class ModuleEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        ModuleExports& m = g_module;
        m.handle = AfxLoadLibrary(PARMIRA_MODULE_PATH);
        ASSERT_NE(m.handle, nullptr) << AfxGetLoadError().GetString();
        m.setCallback = reinterpret_cast<PFN_SetQueryInterfaceCallback>(
            GetProcAddress(m.handle, kExportSetQueryInterfaceCallback));
        m.supported = reinterpret_cast<PFN_SupportedInterface>(
            GetProcAddress(m.handle, kExportSupportedInterface));
        m.create =
            reinterpret_cast<PFN_CreateInterFace>(GetProcAddress(m.handle, kExportCreateInterFace));
        m.release = reinterpret_cast<PFN_SafeRelease>(GetProcAddress(m.handle, kExportSafeRelease));
        ASSERT_TRUE(m.setCallback && m.supported && m.create && m.release);
    }

    // Unloading with a panel still open: the sinks leave the bus, the panel closes.
    void TearDown() override {
        ModuleExports& m = g_module;
        if (m.handle == nullptr)
            return;
        TestHost host;
        host.AddModule("M1", "Drive", "S", 1, 3);
        host.Attach();
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);
        auto* panel = static_cast<IQXParmira*>(m.create(&IID_IQXParmira));
        ASSERT_NE(panel, nullptr);
        panel->ShowPanel(0, "M1");
        ASSERT_EQ(host.tabs.TabCount(), 1);
        const HWND tab = host.Tab(0);
        EXPECT_NE(host.PanelOf(tab), nullptr);
        EXPECT_TRUE(AfxFreeLibrary(m.handle));
        m = ModuleExports{};
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 0);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 0);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
        EXPECT_EQ(host.PanelOf(tab), nullptr);
    }
};

[[maybe_unused]] ::testing::Environment* const g_environment =
    ::testing::AddGlobalTestEnvironment(new ModuleEnvironment);

TEST_F(ShellTest, OnlyTheExactPanelInterfaceIsOfferedAndMade) {
    EXPECT_EQ(g_module.supported(&IID_IQXParmira), 1);
    EXPECT_EQ(g_module.supported(nullptr), 0);
    EXPECT_EQ(g_module.supported(&IID_IHostMessageBus), 0);
    // Every single byte counts, the last ones included.
    for (size_t i = 0; i < sizeof(GUID); ++i) {
        GUID near = IID_IQXParmira;
        reinterpret_cast<unsigned char*>(&near)[i] ^= 0x01;
        EXPECT_EQ(g_module.supported(&near), 0) << "byte " << i;
        EXPECT_EQ(g_module.create(&near), nullptr) << "byte " << i;
    }
    EXPECT_EQ(g_module.create(nullptr), nullptr);
    // Asking for unknown ids added nothing: the offered one is still found, others not.
    EXPECT_EQ(g_module.supported(&IID_IQXParmira), 1);
    GUID first = IID_IQXParmira;
    first.Data1 ^= 0x80000000u;
    EXPECT_EQ(g_module.supported(&first), 0);
}

TEST_F(ShellTest, SafeReleaseFindsOnlyWhatTheRegistryHolds) {
    IQXParmira* p = Create();
    ASSERT_NE(p, nullptr);

    int stranger = 0;
    void* unknown = &stranger;
    EXPECT_EQ(g_module.release(&IID_IQXParmira, &unknown), 0);
    EXPECT_EQ(unknown, &stranger); // untouched

    void* none = nullptr;
    EXPECT_EQ(g_module.release(&IID_IQXParmira, &none), 0);
    EXPECT_EQ(none, nullptr);

    void* held = static_cast<IBaseInterface*>(p);
    void* copy = held;
    // The iid is not read.
    EXPECT_NE(g_module.release(&IID_IHostMessageBus, &held), 0);
    EXPECT_EQ(held, nullptr);
    Forget(p);
    // Gone: a second release of the same address finds nothing.
    EXPECT_EQ(g_module.release(&IID_IQXParmira, &copy), 0);
    EXPECT_NE(copy, nullptr);
}

TEST_F(ShellTest, ReleaseOnTheInstanceTellsTheHostAndEndsIt) {
    host.AddModule("A", "DriveA", "X", 1, 3);
    IQXParmira* p = Create();
    ASSERT_NE(p, nullptr);
    p->ShowPanel(0, "A");
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 1);
    // The host holds the instance as a plug-in interface until told it ends.
    host.manager.RegisterModuleInterface(IID_IQXParmira, p);
    Forget(p);
    p->Release();
    EXPECT_EQ(host.manager.GetModuleInterface(IID_IQXParmira), nullptr);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
    void* v = static_cast<IBaseInterface*>(p);
    EXPECT_EQ(g_module.release(&IID_IQXParmira, &v), 0);
}

TEST_F(ShellTest, NullCallbackCutsTheHostOffButKeepsTheSinksAndARealOneAddsThemAgain) {
    host.AddModule("A", "DriveA", "X", 1, 3);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);
    g_module.setCallback(host.services.Context(), nullptr);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);

    IQXParmira* p = Create(); // the registry doesn't need the host
    ASSERT_NE(p, nullptr);
    p->ShowPanel(0, "A");
    p->OpenRecipeDialog("A");
    p->ExportParameters("/tmp/none.csv", "A");
    host.bus.RaiseLanguageChanged();
    host.bus.RaiseActiveView(5);
    EXPECT_EQ(host.tabs.TabCount(), 0); // nobody asked the host for a tab
    EXPECT_NE(Destroy(p), 0);

    // A second real callback subscribes the sinks again.
    host.Attach();
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 2);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 2);
}

// ---------------------------------------------------------------- the panel
class PanelTest : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        host.AddModule("K0", "Servo", "Sub", 1, 0);
        host.AddModule("K3", "Inverter", "Sub", 2, 3);
    }
    // The label of the panel in tab `index` that names the variable count.
    CString CountLabel(int index) const {
        CWnd* panel = CWnd::FromHandle(AfxHandleFromWidget(host.PanelOf(host.Tab(index))));
        return panel->GetDlgItem(int(IDC_TOTAL_LABEL))->GetWindowTextString();
    }
};

TEST_F(PanelTest, CaptionNamesTheDeviceByProductKind) {
    IQXParmira* p = Create();
    IQXParmira* q = Create();
    IQXParmira* r = Create();
    ASSERT_TRUE(p && q && r);
    p->ShowPanel(7, "K0");
    q->ShowPanel(8, "K3");
    r->ShowPanel(9, "nobody"); // no module: the caption starts empty
    ASSERT_EQ(host.tabs.TabCount(), 3);
    EXPECT_EQ(host.Caption(0), "Servo(Sub_1)参数列表");
    EXPECT_EQ(host.Caption(1), "Inverter(2)参数列表");
    EXPECT_EQ(host.Caption(2), "参数列表");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(host.tabs.ContextOf(host.Tab(i)), uintptr_t(7 + i));
    // Kinds 5 and 7 carry the sub name too; a module without product info has no name.
    host.modules[1]->product.kind = 7;
    host.modules[0]->hasProduct = false;
    IQXParmira* s = Create();
    IQXParmira* t = Create();
    s->ShowPanel(0, "K3");
    t->ShowPanel(0, "K0");
    EXPECT_EQ(host.Caption(3), "Inverter(Sub_2)参数列表");
    EXPECT_EQ(host.Caption(4), "参数列表");
}

// No window from the host means no panel, and the next show makes one, in the host's
// language; once made, a second show only brings its tab to the front, whatever the key.
TEST_F(PanelTest, PanelFillsTheTabRectangleSubscribesAndIsMadeOnce) {
    host.ui.SetLanguage(zorhost::UiLanguage::English);
    IQXParmira* p = Create();
    zorhost::CHostTabManager noTabs(nullptr);
    host.services.Register<IHostTabManager>(&noTabs);
    p->ShowPanel(0, "K0");
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
    host.services.Register<IHostTabManager>(&host.tabs);
    p->ShowPanel(0, "K0");
    ASSERT_EQ(host.tabs.TabCount(), 1);
    QWidget* panel = host.PanelOf(host.Tab(0));
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->geometry(), host.tabs.PageOf(host.Tab(0))->rect());
    EXPECT_EQ(host.Caption(0), "Servo(Sub_1)Parameter list");
    EXPECT_EQ(CountLabel(0), "Total variables:");
    Create()->ShowPanel(0, "K3");
    for (const char* key : {"K3", "nobody"}) {
        host.widget.setCurrentIndex(1);
        p->ShowPanel(0, key);
        EXPECT_EQ(host.tabs.CurrentParent(), host.Tab(0)) << key;
    }
    EXPECT_EQ(host.tabs.TabCount(), 2);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 2);
}

// Each way of closing hands the panel back, leaves the other panel alone, and the next
// ShowPanel builds a new one.
TEST_F(PanelTest, EachWayOfClosingHandsThePanelBack) {
    enum Way { HostsTab, ModuleRemoved, InstanceDestroyed };
    for (Way way : {HostsTab, ModuleRemoved, InstanceDestroyed}) {
        SCOPED_TRACE(way);
        IQXParmira* p = Create();
        IQXParmira* other = Create();
        p->ShowPanel(0, "K0");
        other->ShowPanel(0, "K3");
        const HWND mine = host.Tab(0), others = host.Tab(1);
        ASSERT_NE(host.PanelOf(mine), nullptr);
        if (way == HostsTab) {
            host.tabs.CloseTab(mine);
            p->SelectListPage(1);
            p->SetModuleAccessLevel("K0", 3);
        } else if (way == ModuleRemoved) {
            host.bus.RaiseModuleRemoved("k0"); // keys compare case-sensitively
            host.bus.RaiseModuleRemoved("other");
            EXPECT_NE(host.PanelOf(mine), nullptr);
            host.bus.RaiseModuleRemoved("K0");
            EXPECT_EQ(host.tabs.PageOf(mine), nullptr);
        } else {
            EXPECT_NE(Destroy(p), 0);
            EXPECT_NE(host.tabs.PageOf(mine), nullptr); // the tab is the host's to close
            p = Create();
        }
        EXPECT_EQ(host.PanelOf(mine), nullptr);
        EXPECT_NE(host.PanelOf(others), nullptr);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 1);
        const int open = host.tabs.TabCount();
        p->ShowPanel(0, "K0");
        ASSERT_EQ(host.tabs.TabCount(), open + 1);
        EXPECT_NE(host.PanelOf(host.tabs.CurrentParent()), nullptr);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 2);
        Destroy(p);
        Destroy(other);
        host.tabs.CloseAll();
    }
}

// Renaming the module renames its tab only; a language change puts every caption and
// the panels' texts into the new language, and back.
TEST_F(PanelTest, RenameAndLanguageChangeResetTheCaptions) {
    IQXParmira* p = Create();
    IQXParmira* q = Create();
    p->ShowPanel(0, "K0");
    q->ShowPanel(0, "K3");
    host.bus.RaiseModuleRenamed("K0", "Axis one");
    EXPECT_EQ(host.Caption(0), "[Axis one]参数列表");
    EXPECT_EQ(host.Caption(1), "Inverter(2)参数列表");
    host.bus.RaiseModuleRenamed("K0", "");
    EXPECT_EQ(host.Caption(0), "参数列表");
    host.bus.RaiseModuleRenamed("K0", "Servo(Sub_1)");
    const struct {
        zorhost::UiLanguage language;
        const char* caption;
        const char* label;
    } steps[] = {{zorhost::UiLanguage::English, "Parameter list", "Total variables:"},
                 {zorhost::UiLanguage::Chinese, "参数列表", "变量总数:"}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.caption);
        host.ui.SetLanguage(step.language);
        host.bus.RaiseLanguageChanged();
        EXPECT_NE(host.Caption(1), step.caption); // posted, not done at once
        EXPECT_TRUE(AfxPumpMessagesUntil(
            [&] { return host.Caption(0) == step.caption && host.Caption(1) == step.caption; },
            5000));
        EXPECT_EQ(CountLabel(0), step.label);
        EXPECT_EQ(CountLabel(1), step.label);
    }
    // Active-view notifications reach the panels and change nothing.
    host.bus.RaiseActiveView(1);
    EXPECT_EQ(host.Caption(0), "参数列表");
    // A change posted to a panel that closes before it arrives finds no window.
    host.ui.SetLanguage(zorhost::UiLanguage::English);
    host.bus.RaiseLanguageChanged();
    host.tabs.CloseTab(host.Tab(0));
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return host.Caption(0) == "Parameter list"; }, 5000));
}

// Every operation, with each service missing in turn: nothing breaks, and what can't be
// done is left out.
TEST_F(PanelTest, EveryOperationEndsQuietlyWithAnyServiceWithheld) {
    const GUID services[] = {IID_IHostMessageBus, IID_IHostModuleManager, IID_IHostProjectRoot,
                             IID_IHostTabManager, IID_IHostUiService};
    // The recipe dialog opens modally where the module is found; it is closed at once.
    CAfxModalDriver closeDialogs([](CDialog& d) { d.EndDialog(IDCANCEL); });
    for (const GUID& missing : services) {
        TestHost h;
        h.AddModule("K0", "Servo", "Sub", 1, 0);
        h.services.Withhold(missing);
        h.Attach();
        IQXParmira* p = Create();
        ASSERT_NE(p, nullptr);
        p->ShowPanel(0, "K0");
        const CString caption = h.tabs.TabCount() > 0 ? h.Caption(0) : CString();
        p->ShowPanel(0, "K0");
        p->OpenRecipeDialog("K0");
        p->ExportParameters("/tmp/parmira-shell-none.csv", "K0");
        p->SelectListPage(1);
        p->SetModuleAccessLevel("K0", 2);
        p->Reserved5();
        p->Reserved9(1, 2, 3);
        p->Reserved10(4);
        h.bus.RaiseLanguageChanged();
        h.bus.RaiseActiveView(1);
        AfxPumpPendingMessages();
        EXPECT_EQ(h.tabs.TabCount(), missing == IID_IHostTabManager ? 0 : 1);
        if (missing == IID_IHostUiService) {
            EXPECT_EQ(caption, "Servo(Sub_1)");
        }
        if (missing == IID_IHostProjectRoot) {
            EXPECT_EQ(caption, "参数列表");
        }
        h.bus.RaiseModuleRenamed("K0", "N");
        h.bus.RaiseModuleRemoved("K0");
        if (missing == IID_IHostMessageBus) {
            for (const GUID& event :
                 {IID_IMessage_LanguageChanged, IID_IMessage_MDIActive, IID_IMessage_ModuleEvent})
                EXPECT_EQ(h.bus.ListenerCount(event), 0);
        }
        // Without the project the panel doesn't know its module, so removal can't close it.
        if (missing == IID_IHostProjectRoot) {
            EXPECT_NE(h.PanelOf(h.Tab(0)), nullptr);
        }
        EXPECT_NE(Destroy(p), 0);
        EXPECT_EQ(h.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
        g_module.setCallback(0, nullptr);
    }
    host.Attach();
}

// The boundary is the four exports: nothing else of ours may be visible to the host.
TEST(ModuleSymbols, OnlyTheFourEntriesAreExported) {
    if (std::system("command -v nm >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "nm is not installed";
    const std::string cmd = std::string("nm -D --defined-only '") + PARMIRA_MODULE_PATH + "'";
    FILE* pipe = popen(cmd.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> names;
    char line[1024];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        char addr[64], type[8], name[900];
        if (std::sscanf(line, "%63s %7s %899s", addr, type, name) == 3)
            names.insert(name);
    }
    ASSERT_EQ(pclose(pipe), 0);
    // Markers the linker puts into every shared object.
    for (const char* linker : {"_edata", "_end", "__bss_start", "_init", "_fini"})
        names.erase(linker);
    const std::set<std::string> expected{"CreateInterFace", "SafeRelease",
                                         "SetQueryInterfaceCallback", "SupportedInterface"};
    EXPECT_EQ(names, expected);
}

} // namespace
