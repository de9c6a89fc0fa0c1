// The application object linked in directly (never started here): listener lists, their
// fan-out through the sinks, and the accessors that ask the callback afresh each time.
#include "module/MessageSinks.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostTabManager.h"

#include <afx/afxres.h>
#include <afx/afxwin.h>
#include <zorhost/HostServices.h>
#include <zorhost/files/MemoryStream.h>
#include <zorhost/services/HostModuleManager.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Listener : IMessage_LanguageChanged {
    void OnLanguageChanged() override {
        ++heard;
        for (IMessage_LanguageChanged* l : removeOnHear)
            theApp.RemoveLanguageListener(l);
    }
    int heard = 0;
    std::vector<IMessage_LanguageChanged*> removeOnHear;
};

struct ViewListener : IMessage_MDIActive {
    void OnActiveViewNotify1(uintptr_t v) override { first.push_back(v); }
    void OnActiveViewNotify2(uintptr_t v) override {
        second.push_back(v);
        theApp.RemoveActiveViewListener(this);
    }
    std::vector<uintptr_t> first, second;
};

class AppTest : public ::testing::Test {
protected:
    void TearDown() override {
        theApp.languageListeners.RemoveAll();
        theApp.activeViewListeners.RemoveAll();
        theApp.SetQueryInterfaceCallback(0, nullptr);
    }
};

// Listeners are added and removed once each; a listener that takes itself (and the one
// after it) out while hearing the event must not make the walk read past the end or call
// a removed listener.
TEST_F(AppTest, FanOutSurvivesListenersRemovingThemselves) {
    Listener a, b, c;
    // Added once and removed once.
    EXPECT_FALSE(theApp.AddLanguageListener(nullptr));
    EXPECT_FALSE(theApp.RemoveLanguageListener(nullptr));
    EXPECT_TRUE(theApp.AddLanguageListener(&a));
    EXPECT_FALSE(theApp.AddLanguageListener(&a));
    EXPECT_TRUE(theApp.RemoveLanguageListener(&a));
    EXPECT_FALSE(theApp.RemoveLanguageListener(&a));
    EXPECT_EQ(theApp.languageListeners.GetCount(), 0);

    b.removeOnHear = {&b, &c};
    for (Listener* l : {&a, &b, &c})
        ASSERT_TRUE(theApp.AddLanguageListener(l));
    CMessageLanguageChanged sink(&theApp);
    sink.OnLanguageChanged();
    EXPECT_EQ(a.heard, 1);
    EXPECT_EQ(b.heard, 1);
    EXPECT_EQ(c.heard, 0); // taken out by b before its turn
    EXPECT_EQ(theApp.languageListeners.GetCount(), 1);
    sink.OnLanguageChanged();
    EXPECT_EQ(a.heard, 2);
    EXPECT_EQ(b.heard, 1);

    ViewListener v1, v2;
    theApp.AddActiveViewListener(&v1);
    theApp.AddActiveViewListener(&v2);
    CMessageMDIActive views(&theApp);
    views.OnActiveViewNotify1(7);
    EXPECT_EQ(v1.first, (std::vector<uintptr_t>{7}));
    EXPECT_EQ(v2.first, (std::vector<uintptr_t>{7}));
    views.OnActiveViewNotify2(8);
    views.OnActiveViewNotify2(9);
    // The walk goes by index: v2 moved into v1's place as v1 left, so it hears only the next.
    EXPECT_EQ(v1.second, (std::vector<uintptr_t>{8}));
    EXPECT_EQ(v2.second, (std::vector<uintptr_t>{9}));
    EXPECT_EQ(theApp.activeViewListeners.GetCount(), 0);
}

// Services are asked of the callback at every use, and host objects are made through the
// module manager.
TEST_F(AppTest, AccessorsAskTheCallbackEveryTime) {
    EXPECT_EQ(theApp.GetModuleManager(), nullptr); // no callback yet
    zorhost::HostServices host;
    zorhost::CHostModuleManager manager;
    host.Register<IHostModuleManager>(&manager);
    theApp.SetQueryInterfaceCallback(host.Context(), &zorhost::HostServices::Query);
    EXPECT_EQ(theApp.GetModuleManager(), &manager);
    IMemoryStream* stream = theApp.CreateMemoryStream();
    ASSERT_NE(dynamic_cast<zorhost::files::CMemoryStream*>(stream), nullptr);
    stream->Release();
    // A service the host takes back is gone at the next use.
    host.Withhold<IHostModuleManager>();
    EXPECT_EQ(theApp.GetModuleManager(), nullptr);
    EXPECT_EQ(theApp.GetTabManager(), nullptr);
    EXPECT_EQ(theApp.CreateMemoryStream(), nullptr);
}

// Started by hand, the module registers its texts and panel under its own handle and
// gives everything back when stopped.
TEST_F(AppTest, StartingRegistersResourcesUnderTheModulesHandle) {
    const HINSTANCE before = AfxGetResourceHandle();
    ASSERT_NE(AfxStartApp(&theApp, "QXParmira"), nullptr);
    ASSERT_NE(theApp.m_hResource, nullptr);
    EXPECT_NE(theApp.m_hResource, before);
    CString text;
    EXPECT_TRUE(AfxLoadStringFrom(theApp.m_hResource, 1952, text));
    EXPECT_EQ(text, "参数列表");
    EXPECT_FALSE(AfxLoadStringFrom(before, 1952, text));
    const DlgTemplate* panel = AfxFindDialogTemplate(theApp.m_hResource, 1951);
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->style & WS_CHILD);
    AfxStopApp(&theApp);
    EXPECT_EQ(theApp.m_pInterfaceManager, nullptr);
    EXPECT_EQ(theApp.m_pLanguageSink, nullptr);
    EXPECT_EQ(theApp.m_pActiveViewSink, nullptr);
    EXPECT_EQ(theApp.m_pfnQuery, nullptr);
}

} // namespace
