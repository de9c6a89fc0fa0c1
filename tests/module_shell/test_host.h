// A small host for the module shell: the host's own message bus, module manager, text
// service, service table and tab manager (on a tab widget of the test), a project of
// modules shaped by each test, the loaded module's four exports, and a fixture giving each
// test a fresh host.
#pragma once

#include "FakeProject.h"

#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"
#include "zorhost/HostServices.h"
#include "zorhost/services/HostMessageBus.h"
#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostTabManager.h"
#include "zorhost/services/HostUiService.h"

#include <afx/afxqt.h>

#include <QTabWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
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
    void Attach() { Module().setCallback(services.Context(), &zorhost::HostServices::Query); }
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
