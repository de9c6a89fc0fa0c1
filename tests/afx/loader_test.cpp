#include <afx/afxwin.h>

#include <gtest/gtest.h>

namespace {
int g_exitSeen = -1;
void OnExit(int handleWasCurrent) {
    g_exitSeen = handleWasCurrent;
}
} // namespace

TEST(LoaderTest, LoadsAModuleRunsItsAppAndUnloadsIt) {
    const HINSTANCE before = AfxGetResourceHandle();
    HMODULE h = AfxLoadLibrary(AFX_TEST_MODULE);
    ASSERT_NE(h, nullptr) << AfxGetLoadError().GetString();
    EXPECT_EQ(AfxGetResourceHandle(), before); // restored after InitInstance
    auto initHandle = reinterpret_cast<HINSTANCE (*)()>(GetProcAddress(h, "InitHandle"));
    ASSERT_NE(initHandle, nullptr);
    EXPECT_EQ(initHandle(), h); // the module's handle was current in InitInstance
    CString text;
    EXPECT_TRUE(AfxLoadStringFrom(h, 100, text));
    EXPECT_EQ(text, "模块字符串");
    EXPECT_FALSE(AfxLoadStringFrom(before, 100, text));
    auto notifier = reinterpret_cast<void (*)(void (*)(int))>(GetProcAddress(h, "SetExitNotifier"));
    ASSERT_NE(notifier, nullptr);
    notifier(&OnExit);
    EXPECT_EQ(GetProcAddress(h, "NoSuchExport"), nullptr);
    EXPECT_TRUE(AfxFreeLibrary(h));
    EXPECT_EQ(g_exitSeen, 1);
    EXPECT_EQ(AfxLoadLibrary("/nonexistent/libnothing.so"), nullptr);
    EXPECT_FALSE(AfxGetLoadError().IsEmpty());
}

namespace {
class LinkedApp : public CWinApp {
public:
    LinkedApp() : CWinApp("Linked") {}
    BOOL InitInstance() override {
        during = AfxGetResourceHandle();
        AfxRegisterString(m_hInstance, 7, "seven");
        return ok;
    }
    int ExitInstance() override {
        exitDuring = AfxGetResourceHandle();
        return 3;
    }
    bool ok = true;
    HINSTANCE during = nullptr;
    HINSTANCE exitDuring = nullptr;
};
} // namespace

TEST(LoaderTest, StaticallyLinkedAppStartsUnderItsOwnHandle) {
    LinkedApp app;
    HINSTANCE h = AfxStartApp(&app, "linked");
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(app.during, h);
    EXPECT_EQ(AfxGetApp(), &app);
    CString s;
    EXPECT_TRUE(AfxLoadStringFrom(h, 7, s));
    EXPECT_EQ(AfxStopApp(&app), 3);
    EXPECT_EQ(app.exitDuring, h);
    EXPECT_EQ(app.m_hInstance, nullptr);

    LinkedApp failing;
    failing.ok = false;
    EXPECT_EQ(AfxStartApp(&failing, "failing"), nullptr);
    EXPECT_EQ(failing.m_hInstance, nullptr);
}
