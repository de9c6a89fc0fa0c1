// A small host for the module shell: the host's message bus, fakes of the other services
// the shell asks for, a query
// callback that can withhold any of them, and the loaded module's four exports.
#pragma once

#include "FakeModuleManager.h"
#include "FakeProject.h"
#include "FakeUiService.h"

#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"
#include "zorhost/services/HostMessageBus.h"

#include <memory>
#include <utility>
#include <vector>

class QWidget;

// The module, loaded once per test program.
struct ModuleExports {
    HMODULE handle = nullptr;
    PFN_SetQueryInterfaceCallback setCallback = nullptr;
    PFN_SupportedInterface supported = nullptr;
    PFN_CreateInterFace create = nullptr;
    PFN_SafeRelease release = nullptr;
};
ModuleExports& Module();

struct FakeTab {
    QWidget* widget = nullptr;
    HWND handle = nullptr;
    CString caption;
    bool open = true;
};

class FakeTabs : public IHostTabManager {
public:
    ~FakeTabs() override;
    BOOL CreateTab(HWND& parent, RECT& rect, uintptr_t viewContext, const CString& caption,
                   const CString& extra) override;
    void ActivateTab(HWND parent) override;
    void RenameTab(HWND parent, const CString& caption) override;
    void CloseTab(HWND parent) override;

    FakeTab* Find(HWND parent);
    // The panel window inside an open tab, or null.
    QWidget* PanelOf(HWND parent);

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
    TestHost();
    ~TestHost();

    static void Query(uintptr_t context, const GUID* iid, void** out);
    void Withhold(const GUID& iid) { withheld.push_back(iid); }
    // Hands the callback to the module.
    void Attach();
    FakeModule& AddModule(const char* key, const char* name, const char* sub, int axis, int kind);

    zorhost::CHostMessageBus bus; // the host's own
    FakeModuleManager manager;
    FakeTabs tabs;
    FakeUiService ui; // strings from the module, window translators made and counted
    FakeProject root;
    std::vector<std::unique_ptr<FakeModule>> modules;
    std::vector<GUID> withheld;
    std::vector<GUID> asked;
};
