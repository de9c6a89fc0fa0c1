// Loads the module once for the whole program, as the host does, and unloads it at the
// end, checking that unloading gives back everything the module holds at the host.
#include "test_host.h"

#include <afx/afxwin.h>

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
        ASSERT_EQ(host.tabs.tabs.size(), 1u);
        EXPECT_NE(host.tabs.PanelOf(host.tabs.tabs[0]->handle), nullptr);
        EXPECT_TRUE(AfxFreeLibrary(m.handle));
        m = ModuleExports{};
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 0);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 0);
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
        EXPECT_EQ(host.tabs.PanelOf(host.tabs.tabs[0]->handle), nullptr);
    }
};

[[maybe_unused]] ::testing::Environment* const g_module =
    ::testing::AddGlobalTestEnvironment(new ModuleEnvironment);

} // namespace
