#include "test_host.h"

#include <afx/afxqt.h>
#include <afx/afxres.h>

#include <QWidget>

#include <algorithm>

ModuleExports& Module() {
    static ModuleExports exports;
    return exports;
}

FakeTabs::~FakeTabs() {
    for (auto& tab : tabs)
        if (tab->open)
            CloseTab(tab->handle);
}

BOOL FakeTabs::CreateTab(HWND& parent, RECT& r, uintptr_t viewContext, const CString& caption,
                         const CString& extra) {
    contexts.push_back(viewContext);
    extras.push_back(extra);
    auto tab = std::make_unique<FakeTab>();
    tab->caption = caption;
    if (failCreate) {
        parent = nullptr;
        tabs.push_back(std::move(tab));
        tabs.back()->open = false;
        return FALSE;
    }
    tab->widget = new QWidget;
    tab->widget->resize(800, 600);
    tab->handle = AfxWrapHostWidget(tab->widget);
    parent = tab->handle;
    r = rect;
    tabs.push_back(std::move(tab));
    return TRUE;
}

FakeTab* FakeTabs::Find(HWND parent) {
    for (auto& tab : tabs)
        if (tab->open && tab->handle == parent)
            return tab.get();
    return nullptr;
}

void FakeTabs::ActivateTab(HWND parent) {
    activated.push_back(parent);
}

void FakeTabs::RenameTab(HWND parent, const CString& caption) {
    if (FakeTab* tab = Find(parent))
        tab->caption = caption;
}

void FakeTabs::CloseTab(HWND parent) {
    FakeTab* tab = Find(parent);
    if (tab == nullptr)
        return;
    tab->open = false;
    AfxReleaseHostWidget(tab->handle);
    delete tab->widget;
    tab->widget = nullptr;
}

QWidget* FakeTabs::PanelOf(HWND parent) {
    FakeTab* tab = Find(parent);
    if (tab == nullptr || tab->widget == nullptr)
        return nullptr;
    for (QWidget* child : tab->widget->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (AfxHandleFromWidget(child) != nullptr)
            return child;
    return nullptr;
}

TestHost::TestHost() {
    ui.makeTranslators = true;
}
TestHost::~TestHost() = default;

void TestHost::Query(uintptr_t context, const GUID* iid, void** out) {
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

void TestHost::Attach() {
    Module().setCallback(reinterpret_cast<uintptr_t>(this), &TestHost::Query);
}

FakeModule& TestHost::AddModule(const char* key, const char* name, const char* sub, int axis,
                                int kind) {
    auto m = std::make_unique<FakeModule>();
    m->key = key;
    m->name = name;
    m->subName = sub;
    m->axisIndex = axis;
    m->product.kind = kind;
    m->online = 0;
    root.modules.push_back(m.get());
    modules.push_back(std::move(m));
    return *modules.back();
}
