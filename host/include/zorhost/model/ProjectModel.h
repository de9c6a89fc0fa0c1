// The host's project chain: root -> project -> workspace -> module list -> modules, each
// module owning the live store of its device.
#pragma once

#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProductInfo.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostProjectRoot.h"
#include "module/host/IHostWorkspace.h"
#include "zorhost/model/VarDatabase.h"
#include "zorhost/model/VarStore.h"

#include <memory>
#include <vector>

namespace zorhost::model {

// Product kinds as the host reports them: 0 single-axis servo, 5 multi-axis servo,
// 1 inverter.
int ProductKindCode(device::ProductKind kind);

class CProductInfo : public IHostProductInfo {
public:
    explicit CProductInfo(int kind) : m_kind(kind) {}
    int GetProductKind() override { return m_kind; }

private:
    int m_kind;
};

class CDeviceModule : public IHostDeviceModule {
public:
    // `number`: the station number, also the axis index the host shows.
    CDeviceModule(const std::shared_ptr<const DeviceDescription>& device, CString key, int number);

    CVarStore& Store() { return m_store; }
    CPerUnitTable& PerUnitTable() { return m_perUnit; }
    // Told by the host's communication (the simulated drives follow their links).
    void SetOnline(bool online) { m_online = online; }
    void SetDisplayName(CString name) { m_displayName = std::move(name); }
    void SetSubName(CString name) { m_subName = std::move(name); }
    // The label of the primary unit when this module is part of a composite device; an
    // empty label means there is none.
    void SetPrimaryElecLabel(std::vector<BYTE> label) { m_primaryLabel = std::move(label); }

    void GetModuleKey(CString& key) override { key = m_key; }
    void GetDisplayName(CString& name) override { name = m_displayName; }
    void GetSubName(CString& name) override { name = m_subName; }
    int GetAxisIndex() override { return m_number; }
    IHostProductInfo* GetProductInfo() override { return &m_productInfo; }
    BOOL IsOnline() override { return m_online; }
    int GetAccessLevel() override { return m_accessLevel; }
    void SetAccessLevel(int level) override { m_accessLevel = level; }
    int GetDeviceAuthority() override { return m_authority; }
    void SetDeviceAuthority(int level) override { m_authority = level; }
    IVarStore* GetVarList() override { return &m_store; }
    IVarCatalog* GetVarCatalog() override { return &m_store.Catalog(); }
    const BYTE* GetElecLabel() override { return m_store.GetElecLabel(); }
    UINT GetElecLabelSize() override { return m_store.GetElecLabelSize(); }
    const BYTE* GetPrimaryElecLabel() override {
        return m_primaryLabel.empty() ? nullptr : m_primaryLabel.data();
    }
    UINT GetPrimaryElecLabelSize() override { return UINT(m_primaryLabel.size()); }
    void GetVersionText(CString& version) override { m_store.GetVersionText(version); }
    int GetAxisCopyCount() override;
    IPerUnitTable* GetPerUnitTable() override { return &m_perUnit; }

private:
    CString m_key, m_displayName, m_subName;
    int m_number;
    CProductInfo m_productInfo;
    CVarStore m_store; // after the fields it is told about
    CPerUnitTable m_perUnit;
    std::vector<BYTE> m_primaryLabel;
    bool m_online = false;
    int m_accessLevel = 0;
    int m_authority = 0;
};

class CModuleList : public IHostModuleList {
public:
    // Takes the module; returns it, or null when its key or number is taken already.
    CDeviceModule* Add(std::unique_ptr<CDeviceModule> module);

    IHostDeviceModule* FindModule(const CString& moduleKey) override;
    IHostDeviceModule* FindModuleByNumber(int number) override;
    int GetModuleCount() override { return int(m_modules.size()); }
    IHostDeviceModule* GetModuleAt(int index) override;

private:
    std::vector<std::unique_ptr<CDeviceModule>> m_modules;
};

class CWorkspace : public IHostWorkspace {
public:
    explicit CWorkspace(CString projectDir = CString()) : m_dir(std::move(projectDir)) {}
    CModuleList& Modules() { return m_modules; }
    void SetListStyle(int style) { m_listStyle = style; }

    IHostModuleList* GetModuleList() override { return &m_modules; }
    int GetListStyle() override { return m_listStyle; }
    BOOL GetProjectDir(CString& dir) override;
    // The table of the module whose own label `label` is; else of the first module of
    // that device type and version; else null.
    IVarDatabase* GetDatabase(const BYTE* label, UINT size, const CString& version) override;
    // The table object of `store`, made on first use.
    CVarDatabase& DatabaseFor(CVarStore& store);

private:
    CString m_dir;
    int m_listStyle = 0;
    CModuleList m_modules;
    std::vector<std::unique_ptr<CVarDatabase>> m_databases; // one per module asked for
};

class CProject : public IHostProject {
public:
    explicit CProject(CString projectDir = CString()) : m_workspace(std::move(projectDir)) {}
    CWorkspace& Workspace() { return m_workspace; }
    void SetConnectionKind(int kind) { m_connectionKind = kind; }
    // The communication state the host keeps (not owned); null until told.
    void SetCommState(IHostCommState* state) { m_commState = state; }

    IHostWorkspace* GetWorkspace() override { return &m_workspace; }
    IHostCommState* GetCommState() override { return m_commState; }
    int GetConnectionKind() override { return m_connectionKind; }

private:
    CWorkspace m_workspace;
    int m_connectionKind = 0;
    IHostCommState* m_commState = nullptr;
};

class CProjectRoot : public IHostProjectRoot {
public:
    // Replaces the open project (null closes it).
    void Open(std::unique_ptr<CProject> project) { m_project = std::move(project); }
    IHostProject* GetProject() override { return m_project.get(); }

private:
    std::unique_ptr<CProject> m_project;
};

} // namespace zorhost::model
