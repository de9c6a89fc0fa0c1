// The panel interface driven by the host: captions, opening, the three ways of closing,
// host events, and every operation with a service missing.
#include "test_host.h"

#include <afx/afxmt.h>
#include <afx/afxtest.h>

namespace {

class PanelTest : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        host.AddModule("K0", "Servo", "Sub", 1, 0);
        host.AddModule("K3", "Inverter", "Sub", 2, 3);
    }
    FakeTab& Tab(size_t i) { return *host.tabs.tabs.at(i); }
    bool HasPanel(size_t i) { return host.tabs.PanelOf(Tab(i).handle) != nullptr; }
};

TEST_F(PanelTest, CaptionNamesTheDeviceByProductKind) {
    IQXParmira* p = Create();
    IQXParmira* q = Create();
    IQXParmira* r = Create();
    ASSERT_TRUE(p && q && r);
    p->ShowPanel(7, "K0");
    q->ShowPanel(8, "K3");
    r->ShowPanel(9, "nobody"); // no module: the caption starts empty
    ASSERT_EQ(host.tabs.tabs.size(), 3u);
    EXPECT_EQ(Tab(0).caption, "Servo(Sub_1)参数列表");
    EXPECT_EQ(Tab(1).caption, "Inverter(2)参数列表");
    EXPECT_EQ(Tab(2).caption, "参数列表");
    EXPECT_EQ(host.tabs.contexts, (std::vector<uintptr_t>{7, 8, 9}));
    for (const CString& extra : host.tabs.extras)
        EXPECT_TRUE(extra.IsEmpty());
    // Kinds 5 and 7 carry the sub name too; a module without product info has no name.
    host.modules[1]->product.kind = 7;
    host.modules[0]->hasProduct = false;
    IQXParmira* s = Create();
    IQXParmira* t = Create();
    s->ShowPanel(0, "K3");
    t->ShowPanel(0, "K0");
    EXPECT_EQ(Tab(3).caption, "Inverter(Sub_2)参数列表");
    EXPECT_EQ(Tab(4).caption, "参数列表");
}

// No window from the host means no panel, and the next show is no activation; once made,
// a second show only activates the tab, whatever the key.
TEST_F(PanelTest, PanelFillsTheTabRectangleSubscribesAndIsMadeOnce) {
    IQXParmira* p = Create();
    host.tabs.failCreate = true;
    p->ShowPanel(0, "K0");
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
    host.tabs.failCreate = false;
    host.tabs.rect = RECT{3, 4, 503, 304};
    p->ShowPanel(0, "K0");
    EXPECT_TRUE(host.tabs.activated.empty());
    ASSERT_EQ(host.tabs.tabs.size(), 2u);
    QWidget* panel = host.tabs.PanelOf(Tab(1).handle);
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->geometry(), QRect(3, 4, 500, 300));
    // The panel, its frame and its pages each keep a translator of their own.
    EXPECT_GE(host.ui.translatorsMade, 1);
    EXPECT_EQ(host.ui.retranslations, host.ui.translatorsMade);
    p->ShowPanel(0, "K3");
    p->ShowPanel(0, "nobody");
    ASSERT_EQ(host.tabs.tabs.size(), 2u);
    EXPECT_EQ(host.tabs.activated, (std::vector<HWND>{Tab(1).handle, Tab(1).handle}));
    EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 1);
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
        ASSERT_TRUE(HasPanel(0));
        if (way == HostsTab) {
            host.tabs.CloseTab(Tab(0).handle);
            p->SelectListPage(1);
            p->SetModuleAccessLevel("K0", 3);
        } else if (way == ModuleRemoved) {
            host.bus.RaiseModuleRemoved("k0"); // keys compare case-sensitively
            host.bus.RaiseModuleRemoved("other");
            EXPECT_TRUE(HasPanel(0));
            host.bus.RaiseModuleRemoved("K0");
            EXPECT_FALSE(Tab(0).open);
        } else {
            EXPECT_NE(Destroy(p), 0);
            EXPECT_TRUE(Tab(0).open); // the tab is the host's to close
            p = Create();
        }
        EXPECT_FALSE(HasPanel(0));
        EXPECT_TRUE(HasPanel(1));
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 1);
        p->ShowPanel(0, "K0");
        EXPECT_TRUE(host.tabs.activated.empty());
        ASSERT_EQ(host.tabs.tabs.size(), 3u);
        EXPECT_TRUE(HasPanel(2));
        EXPECT_EQ(host.bus.ListenerCount(IID_IMessage_ModuleEvent), 2);
        Destroy(p);
        Destroy(other);
        for (auto& tab : host.tabs.tabs)
            host.tabs.CloseTab(tab->handle);
        host.tabs.tabs.clear();
    }
}

// Renaming the module renames its tab only; a language change resets every caption.
TEST_F(PanelTest, RenameAndLanguageChangeResetTheCaptions) {
    IQXParmira* p = Create();
    IQXParmira* q = Create();
    p->ShowPanel(0, "K0");
    q->ShowPanel(0, "K3");
    host.bus.RaiseModuleRenamed("K0", "Axis one");
    EXPECT_EQ(Tab(0).caption, "[Axis one]参数列表");
    EXPECT_EQ(Tab(1).caption, "Inverter(2)参数列表");
    host.bus.RaiseModuleRenamed("K0", "");
    EXPECT_EQ(Tab(0).caption, "参数列表");
    host.bus.RaiseModuleRenamed("K0", "Servo(Sub_1)");
    const int retranslated = host.ui.retranslations;
    host.bus.RaiseLanguageChanged();
    // Posted, not done at once.
    EXPECT_EQ(Tab(0).caption, "[Servo(Sub_1)]参数列表");
    EXPECT_TRUE(AfxPumpMessagesUntil(
        [&] { return Tab(0).caption == "参数列表" && Tab(1).caption == "参数列表"; }, 5000));
    // Each panel retranslates at least its own window; frame and pages follow their own
    // language events.
    EXPECT_TRUE(
        AfxPumpMessagesUntil([&] { return host.ui.retranslations >= retranslated + 2; }, 5000));
    EXPECT_EQ(host.ui.windowRetranslations, 2);
    // Active-view notifications reach the panels and change nothing.
    host.bus.RaiseActiveView(1);
    EXPECT_EQ(Tab(0).caption, "参数列表");
}

TEST_F(PanelTest, LanguageChangeAfterThePanelClosedDoesNothing) {
    IQXParmira* p = Create();
    p->ShowPanel(0, "K0");
    host.bus.RaiseLanguageChanged();
    host.tabs.CloseTab(Tab(0).handle); // the posted message finds no window
    const int retranslated = host.ui.retranslations;
    AfxPumpPendingMessages();
    EXPECT_EQ(host.ui.retranslations, retranslated);
    EXPECT_EQ(host.ui.windowRetranslations, 0);
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
        h.Withhold(missing);
        h.Attach();
        IQXParmira* p = Create();
        ASSERT_NE(p, nullptr);
        p->ShowPanel(0, "K0");
        const CString caption = h.tabs.tabs.empty() ? CString() : h.tabs.tabs[0]->caption;
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
        h.bus.RaiseModuleRenamed("K0", "N");
        h.bus.RaiseModuleRemoved("K0");

        if (missing == IID_IHostTabManager) {
            EXPECT_TRUE(h.tabs.tabs.empty());
        } else {
            ASSERT_EQ(h.tabs.tabs.size(), 1u);
            if (missing == IID_IHostUiService) {
                EXPECT_EQ(caption, "Servo(Sub_1)");
            }
            if (missing == IID_IHostProjectRoot) {
                EXPECT_EQ(caption, "参数列表");
            }
        }
        if (missing == IID_IHostMessageBus) {
            for (const GUID& event :
                 {IID_IMessage_LanguageChanged, IID_IMessage_MDIActive, IID_IMessage_ModuleEvent})
                EXPECT_EQ(h.bus.ListenerCount(event), 0);
        }
        // Without the project the panel doesn't know its module, so removal can't close it.
        if (missing == IID_IHostProjectRoot) {
            EXPECT_TRUE(h.tabs.PanelOf(h.tabs.tabs[0]->handle) != nullptr);
        }
        EXPECT_NE(Destroy(p), 0);
        EXPECT_EQ(h.bus.ListenerCount(IID_IMessage_ModuleEvent), 0);
        Module().setCallback(0, nullptr);
    }
    host.Attach();
}

} // namespace
