// A small host for the module shell: the host's message bus, fakes of the other services
// the shell asks for, a query
// callback that can withhold any of them, and the loaded module's four exports.
#pragma once

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

class FakeModuleManager : public IHostModuleManager {
public:
    IBaseInterface* CreateInstance(const GUID& iid) override;
    BOOL ReleaseInstance(const GUID& iid, IBaseInterface** instance) override;
    IBaseInterface* GetModuleInterface(const GUID&) override { return nullptr; }

    std::vector<IBaseInterface*> released;
    int creates = 0;
};

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

class FakeProductInfo : public IHostProductInfo {
public:
    int GetProductKind() override { return kind; }
    int kind = 0;
};

class FakeModule : public IHostDeviceModule {
public:
    void GetModuleKey(CString& k) override { k = key; }
    void GetDisplayName(CString& n) override { n = displayName; }
    void GetSubName(CString& n) override { n = subName; }
    int GetAxisIndex() override { return axis; }
    IHostProductInfo* GetProductInfo() override { return hasProduct ? &product : nullptr; }
    BOOL IsOnline() override { return FALSE; }
    int GetAccessLevel() override { return 0; }
    void SetAccessLevel(int) override {}
    int GetDeviceAuthority() override { return 0; }
    void SetDeviceAuthority(int) override {}
    IVarStore* GetVarList() override { return nullptr; }
    IVarCatalog* GetVarCatalog() override { return nullptr; }
    const BYTE* GetElecLabel() override { return nullptr; }
    UINT GetElecLabelSize() override { return 0; }
    const BYTE* GetPrimaryElecLabel() override { return nullptr; }
    UINT GetPrimaryElecLabelSize() override { return 0; }
    void GetVersionText(CString& v) override { v.Empty(); }
    int GetAxisCopyCount() override { return 0; }
    IPerUnitTable* GetPerUnitTable() override { return nullptr; }

    CString key, displayName, subName;
    int axis = 0;
    bool hasProduct = true;
    FakeProductInfo product;
};

class FakeModuleList : public IHostModuleList {
public:
    IHostDeviceModule* FindModule(const CString& moduleKey) override;
    IHostDeviceModule* FindModuleByNumber(int) override { return nullptr; }
    int GetModuleCount() override { return int(modules.size()); }
    IHostDeviceModule* GetModuleAt(int index) override;
    std::vector<std::unique_ptr<FakeModule>> modules;
};

class FakeWorkspace : public IHostWorkspace {
public:
    IHostModuleList* GetModuleList() override { return &list; }
    int GetListStyle() override { return 0; }
    BOOL GetProjectDir(CString& dir) override {
        dir.Empty();
        return FALSE;
    }
    IVarDatabase* GetDatabase(const BYTE*, UINT, const CString&) override { return nullptr; }
    FakeModuleList list;
};

class FakeProject : public IHostProject {
public:
    IHostWorkspace* GetWorkspace() override { return &workspace; }
    IHostCommState* GetCommState() override { return nullptr; }
    int GetConnectionKind() override { return 0; }
    FakeWorkspace workspace;
};

class FakeProjectRoot : public IHostProjectRoot {
public:
    IHostProject* GetProject() override { return &project; }
    FakeProject project;
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
    FakeProjectRoot root;
    std::vector<GUID> withheld;
    std::vector<GUID> asked;
};
