// A module library for the loader test.
#include <afx/afxres.h>
#include <afx/afxwin.h>

namespace {

void (*g_onExit)(int) = nullptr;

class TestModuleApp : public CWinApp {
public:
    TestModuleApp() : CWinApp("TestModule") {}
    BOOL InitInstance() override {
        // Registered under whatever handle is current while the loader runs us.
        AfxRegisterStringTable(AfxGetResourceHandle(), {{100, "模块字符串"}});
        initHandle = AfxGetResourceHandle();
        return TRUE;
    }
    int ExitInstance() override {
        if (g_onExit)
            g_onExit(AfxGetResourceHandle() == m_hInstance ? 1 : 0);
        return 0;
    }
    HINSTANCE initHandle = nullptr;
};

TestModuleApp theApp;

} // namespace

extern "C" __attribute__((visibility("default"))) void SetExitNotifier(void (*fn)(int)) {
    g_onExit = fn;
}

extern "C" __attribute__((visibility("default"))) HINSTANCE InitHandle() {
    return theApp.initHandle;
}
