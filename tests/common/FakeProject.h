// The one stand-in for the host's project tree that suites share where the reference
// host's modules (made from device files) cannot take the shape a test needs: a root that
// is its own project and workspace, the modules it lists, and modules whose every
// property the test sets.
#pragma once

#include "module/host/IHostCommState.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProductInfo.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostProjectRoot.h"
#include "module/host/IHostWorkspace.h"

#include <memory>
#include <vector>

class FakeModule : public IHostDeviceModule {
public:
    struct Product : IHostProductInfo {
        int kind = 1;
        int GetProductKind() override { return kind; }
    };

    CString key = "M1", name = "Drive1", subName, version = "V1.00";
    int axisIndex = 1, level = 0;
    BOOL online = 1;
    bool hasProduct = true;
    Product product;
    std::vector<BYTE> label;
    IVarStore* store = nullptr;     // the module's parameters, when a test gives it any
    IVarCatalog* catalog = nullptr; // null: the module has no catalog

    void GetModuleKey(CString& s) override { s = key; }
    void GetDisplayName(CString& s) override { s = name; }
    void GetSubName(CString& s) override { s = subName; }
    int GetAxisIndex() override { return axisIndex; }
    IHostProductInfo* GetProductInfo() override { return hasProduct ? &product : nullptr; }
    BOOL IsOnline() override { return online; }
    int GetAccessLevel() override { return level; }
    void SetAccessLevel(int l) override { level = l; }
    int GetDeviceAuthority() override { return 0; }
    void SetDeviceAuthority(int) override {}
    IVarStore* GetVarList() override { return store; }
    IVarCatalog* GetVarCatalog() override { return catalog; }
    const BYTE* GetElecLabel() override { return label.empty() ? nullptr : label.data(); }
    UINT GetElecLabelSize() override { return UINT(label.size()); }
    const BYTE* GetPrimaryElecLabel() override { return nullptr; }
    UINT GetPrimaryElecLabelSize() override { return 0; }
    void GetVersionText(CString& s) override { s = version; }
    int GetAxisCopyCount() override { return 0; }
    IPerUnitTable* GetPerUnitTable() override { return nullptr; }
};

class FakeProject : public IHostProjectRoot,
                    public IHostProject,
                    public IHostWorkspace,
                    public IHostModuleList,
                    public IHostCommState {
public:
    std::vector<IHostDeviceModule*> modules; // not owned
    int connection = 0, listStyle = 0;
    BOOL oscilloscopeRunning = 0;

    // IHostProjectRoot
    IHostProject* GetProject() override { return this; }
    // IHostProject
    IHostWorkspace* GetWorkspace() override { return this; }
    IHostCommState* GetCommState() override { return this; }
    int GetConnectionKind() override { return connection; }
    // IHostWorkspace
    IHostModuleList* GetModuleList() override { return this; }
    int GetListStyle() override { return listStyle; }
    BOOL GetProjectDir(CString& dir) override {
        dir.Empty();
        return 0;
    }
    IVarDatabase* GetDatabase(const BYTE*, UINT, const CString&) override { return nullptr; }
    // IHostModuleList
    IHostDeviceModule* FindModule(const CString& key) override {
        for (IHostDeviceModule* m : modules) {
            CString k;
            m->GetModuleKey(k);
            if (k == key)
                return m;
        }
        return nullptr;
    }
    IHostDeviceModule* FindModuleByNumber(int) override { return nullptr; }
    int GetModuleCount() override { return int(modules.size()); }
    IHostDeviceModule* GetModuleAt(int i) override {
        return i >= 0 && i < int(modules.size()) ? modules[size_t(i)] : nullptr;
    }
    // IHostCommState
    BOOL IsOscilloscopeRunning() override { return oscilloscopeRunning; }
};
