// The exports and the registry: what the host can ask before any panel exists. The module
// is loaded once for the whole program, as the host does, and unloaded at the end, checking
// that unloading gives back everything the module holds at the host.
#include "test_host.h"

#include <afx/afxwin.h>

#include <cstdio>
#include <set>
#include <string>

namespace {

class ModuleEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        ModuleExports& m = Module();
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
        ModuleExports& m = Module();
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

[[maybe_unused]] ::testing::Environment* const g_module =
    ::testing::AddGlobalTestEnvironment(new ModuleEnvironment);

TEST_F(ShellTest, OnlyTheExactPanelInterfaceIsOfferedAndMade) {
    EXPECT_EQ(Module().supported(&IID_IQXParmira), 1);
    EXPECT_EQ(Module().supported(nullptr), 0);
    EXPECT_EQ(Module().supported(&IID_IHostMessageBus), 0);
    // Every single byte counts, the last ones included.
    for (size_t i = 0; i < sizeof(GUID); ++i) {
        GUID near = IID_IQXParmira;
        reinterpret_cast<unsigned char*>(&near)[i] ^= 0x01;
        EXPECT_EQ(Module().supported(&near), 0) << "byte " << i;
        EXPECT_EQ(Module().create(&near), nullptr) << "byte " << i;
    }
    EXPECT_EQ(Module().create(nullptr), nullptr);
    // Asking for unknown ids added nothing: the offered one is still found, others not.
    EXPECT_EQ(Module().supported(&IID_IQXParmira), 1);
    GUID first = IID_IQXParmira;
    first.Data1 ^= 0x80000000u;
    EXPECT_EQ(Module().supported(&first), 0);
}

TEST_F(ShellTest, SafeReleaseFindsOnlyWhatTheRegistryHolds) {
    IQXParmira* p = Create();
    ASSERT_NE(p, nullptr);

    int stranger = 0;
    void* unknown = &stranger;
    EXPECT_EQ(Module().release(&IID_IQXParmira, &unknown), 0);
    EXPECT_EQ(unknown, &stranger); // untouched

    void* none = nullptr;
    EXPECT_EQ(Module().release(&IID_IQXParmira, &none), 0);
    EXPECT_EQ(none, nullptr);

    void* held = static_cast<IBaseInterface*>(p);
    void* copy = held;
    // The iid is not read.
    EXPECT_NE(Module().release(&IID_IHostMessageBus, &held), 0);
    EXPECT_EQ(held, nullptr);
    Forget(p);
    // Gone: a second release of the same address finds nothing.
    EXPECT_EQ(Module().release(&IID_IQXParmira, &copy), 0);
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
    EXPECT_EQ(Module().release(&IID_IQXParmira, &v), 0);
}

TEST_F(ShellTest, NullCallbackCutsTheHostOffButKeepsTheSinksAndARealOneAddsThemAgain) {
    host.AddModule("A", "DriveA", "X", 1, 3);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);
    Module().setCallback(host.services.Context(), nullptr);
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
