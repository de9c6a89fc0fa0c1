// The exports and the registry: what the host can ask before any panel exists.
#include "test_host.h"

#include <cstdio>
#include <set>
#include <string>

namespace {

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
    Forget(p);
    p->Release();
    ASSERT_EQ(host.manager.released.size(), 1u);
    EXPECT_EQ(host.manager.released[0], static_cast<IBaseInterface*>(p));
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
    void* v = static_cast<IBaseInterface*>(p);
    EXPECT_EQ(Module().release(&IID_IQXParmira, &v), 0);
}

TEST_F(ShellTest, NullCallbackCutsTheHostOffButKeepsTheSinksAndARealOneAddsThemAgain) {
    host.AddModule("A", "DriveA", "X", 1, 3);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);
    Module().setCallback(reinterpret_cast<uintptr_t>(&host), nullptr);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_LanguageChanged), 1);
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_MDIActive), 1);
    const size_t asked = host.asked.size();

    IQXParmira* p = Create(); // the registry doesn't need the host
    ASSERT_NE(p, nullptr);
    p->ShowPanel(0, "A");
    p->OpenRecipeDialog("A");
    p->ExportParameters("/tmp/none.csv", "A");
    host.bus.RaiseLanguageChanged();
    host.bus.RaiseActiveView(5);
    EXPECT_TRUE(host.tabs.tabs.empty());
    EXPECT_EQ(host.asked.size(), asked); // nobody asked the host anything
    EXPECT_NE(Destroy(p), 0);

    // A second real callback subscribes the sinks again.
    Module().setCallback(reinterpret_cast<uintptr_t>(&host), &TestHost::Query);
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
