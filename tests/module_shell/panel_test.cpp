// The panel interface driven by the host: captions, opening, the three ways of closing,
// host events, and every operation with a service missing.
#include "test_host.h"

#include "module/ModuleResources.h"

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
        Module().setCallback(0, nullptr);
    }
    host.Attach();
}

} // namespace
