// A small host for the module shell: the host's message bus, fakes of the other services
// the shell asks for, a query callback that can withhold any of them, the loaded module's
// four exports, and a fixture giving each test a fresh host.
#pragma once

#include "FakeModuleManager.h"
#include "FakeProject.h"
#include "FakeUiService.h"

#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"
#include "zorhost/services/HostMessageBus.h"

#include <afx/afxqt.h>

#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

// The module, loaded once per test program.
struct ModuleExports {
    HMODULE handle = nullptr;
    PFN_SetQueryInterfaceCallback setCallback = nullptr;
    PFN_SupportedInterface supported = nullptr;
    PFN_CreateInterFace create = nullptr;
    PFN_SafeRelease release = nullptr;
};
inline ModuleExports& Module() {
    static ModuleExports exports;
    return exports;
}

struct FakeTab {
    QWidget* widget = nullptr;
    HWND handle = nullptr;
    CString caption;
    bool open = true;
};

class FakeTabs : public IHostTabManager {
public:
    ~FakeTabs() override {
        for (auto& tab : tabs)
            CloseTab(tab->handle);
    }
    BOOL CreateTab(HWND& parent, RECT& r, uintptr_t viewContext, const CString& caption,
                   const CString& extra) override {
        contexts.push_back(viewContext);
        extras.push_back(extra);
        tabs.push_back(std::make_unique<FakeTab>());
        FakeTab& tab = *tabs.back();
        tab.caption = caption;
        tab.open = !failCreate;
        if (failCreate) {
            parent = nullptr;
            return FALSE;
        }
        tab.widget = new QWidget;
        tab.widget->resize(800, 600);
        tab.handle = parent = AfxWrapHostWidget(tab.widget);
        r = rect;
        return TRUE;
    }
    void ActivateTab(HWND parent) override { activated.push_back(parent); }
    void RenameTab(HWND parent, const CString& caption) override {
        if (FakeTab* tab = Find(parent))
            tab->caption = caption;
    }
    void CloseTab(HWND parent) override {
        FakeTab* tab = Find(parent);
        if (tab == nullptr)
            return;
        tab->open = false;
        AfxReleaseHostWidget(tab->handle);
        delete tab->widget;
        tab->widget = nullptr;
    }

    FakeTab* Find(HWND parent) {
        for (auto& tab : tabs)
            if (tab->open && tab->handle == parent)
                return tab.get();
        return nullptr;
    }
    // The panel window inside an open tab, or null.
    QWidget* PanelOf(HWND parent) {
        FakeTab* tab = Find(parent);
        if (tab == nullptr)
            return nullptr;
        for (QWidget* child : tab->widget->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (AfxHandleFromWidget(child) != nullptr)
                return child;
        return nullptr;
    }

    std::vector<std::unique_ptr<FakeTab>> tabs;
    std::vector<uintptr_t> contexts;
    std::vector<CString> extras;
    std::vector<HWND> activated;
    bool failCreate = false;
    RECT rect{0, 0, 640, 480};
};

// The host: owns the fakes, answers the module's queries, and can withhold any service.
class TestHost {
public:
    TestHost() { ui.makeTranslators = true; }

    static void Query(uintptr_t context, const GUID* iid, void** out) {
        auto* host = reinterpret_cast<TestHost*>(context);
        *out = nullptr;
        if (host == nullptr || iid == nullptr)
            return;
        host->asked.push_back(*iid);
        if (std::find(host->withheld.begin(), host->withheld.end(), *iid) != host->withheld.end())
            return;
        if (*iid == IID_IHostMessageBus)
            *out = static_cast<IHostMessageBus*>(&host->bus);
        else if (*iid == IID_IHostModuleManager)
            *out = static_cast<IHostModuleManager*>(&host->manager);
        else if (*iid == IID_IHostTabManager)
            *out = static_cast<IHostTabManager*>(&host->tabs);
        else if (*iid == IID_IHostUiService)
            *out = static_cast<IHostUiService*>(&host->ui);
        else if (*iid == IID_IHostProjectRoot)
            *out = static_cast<IHostProjectRoot*>(&host->root);
    }
    void Withhold(const GUID& iid) { withheld.push_back(iid); }
    // Hands the callback to the module.
    void Attach() { Module().setCallback(reinterpret_cast<uintptr_t>(this), &TestHost::Query); }
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

    zorhost::CHostMessageBus bus; // the host's own
    FakeModuleManager manager;
    FakeTabs tabs;
    FakeUiService ui; // strings from the module, window translators made and counted
    FakeProject root;
    std::vector<std::unique_ptr<FakeModule>> modules;
    std::vector<GUID> withheld;
    std::vector<GUID> asked;
};

// A fresh host per test, attached to the loaded module; instances still alive at the end
// are given back while the host still answers.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Module().handle, nullptr);
        host.Attach();
    }
    void TearDown() override {
        for (IQXParmira* p : live) {
            void* v = static_cast<IBaseInterface*>(p);
            Module().release(&IID_IQXParmira, &v);
        }
        live.clear();
        Module().setCallback(0, nullptr);
    }

    IQXParmira* Create() {
        auto* p = static_cast<IQXParmira*>(Module().create(&IID_IQXParmira));
        if (p != nullptr)
            live.push_back(p);
        return p;
    }
    // Gives back through the export; forgets it here when that worked.
    int Destroy(IQXParmira* p) {
        void* v = static_cast<IBaseInterface*>(p);
        const int r = Module().release(&IID_IQXParmira, &v);
        if (r != 0)
            Forget(p);
        return r;
    }
    void Forget(IQXParmira* p) { live.erase(std::remove(live.begin(), live.end(), p), live.end()); }

    TestHost host;
    std::vector<IQXParmira*> live;
};
