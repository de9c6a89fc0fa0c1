// A small host for the table frame: the real value service, module manager, refresh
// service, device helper and worker threads of the reference host, and in-test drive
// objects (groups, categories, axes, catalog, store) shaped freely by each test. No drive
// stands behind the modules: every direct read and write fails.
#pragma once

#include "FakeProject.h"
#include "ModuleScope.h"
#include "TempDir.h"

#include "module/host/HostContract.h"
#include "table/StackedDialog.h"
#include "table/VarTable.h"

#include <zorhost/HostServices.h>
#include <zorhost/model/Groups.h>
#include <zorhost/services/HostDeviceHelper.h>
#include <zorhost/services/HostModuleManager.h>
#include <zorhost/services/HostRefreshService.h>
#include <zorhost/services/HostUiService.h>
#include <zorhost/services/HostVarUtil.h>
#include <zorhost/sim/DriveDirectory.h>

#include <afx/afxres.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tt {

struct Attr : IVarAttr {
    CString code, name, unit, info;
    UINT address = 0;
    int dataType = VT_I4, decimals = 0, modifyMode = 0, level = 0;
    Variant factory = Variant::I4(0), minimum = Variant::I4(0), maximum = Variant::I4(100);
    BOOL hidden = 0, transferable = 1, fixed = 0;

    void GetCode(CString& s) override { s = code; }
    void GetName(CString& s) override { s = name; }
    void GetUnit(CString& s) override { s = unit; }
    UINT GetAddress() override { return address; }
    int GetDataType() override { return dataType; }
    int GetDecimals() override { return decimals; }
    int GetValueLength() override { return 2; }
    Variant GetFactoryValue() override { return factory; }
    Variant GetMinValue() override { return minimum; }
    Variant GetMaxValue() override { return maximum; }
    BOOL IsMinLinked() override { return 0; }
    BOOL IsMaxLinked() override { return 0; }
    int GetModifyMode() override { return modifyMode; }
    int GetEffectMode() override { return 1; }
    int GetDisplayFormat() override { return 0; }
    IValueInfo* GetValueInfo() override { return nullptr; }
    int GetPerUnitBaseId() override { return 0; }
    int GetAccessLevel() override { return level; }
    void SetAccessLevel(int l) override { level = l; }
    BOOL IsHiddenForUser() override { return hidden; }
    BOOL IsTransferable() override { return transferable; }
    BOOL IsFixed() override { return fixed; }
    BOOL IsChangeTracked() override { return 1; }
    void GetGroupText(CString& s) override { s.Empty(); }
    void GetInfoText(CString& s) override { s = info; }
    IVarCatalog* GetOwnerCatalog() override { return nullptr; }
    IVarAttr* Clone() override { return new Attr(*this); }
};

struct Var : IVarObjEx {
    Attr* attr = nullptr;
    Variant value = Variant::I4(0);
    IVarAttr* GetAttr() override { return attr; }
    void SetAttr(IVarAttr*) override {}
    IHostDeviceModule* GetOwnerModule() override { return nullptr; }
    UINT GetInstanceAddress() override { return attr != nullptr ? attr->address : 0; }
    void GetInstanceCode(CString& s) override { s = attr != nullptr ? attr->code : CString(); }
    void GetInstanceGuid(CString& s) override { s.Empty(); }
    Variant GetValue() override { return value; }
    void SetValue(const Variant& v) override { value = v; }
    Variant GetSetValue() override { return Variant(); }
    void SetSetValue(const Variant&) override {}
    Variant GetLastReadValue() override { return value; }
    Variant GetRawValue() override { return value; }
    void GetValueText(CString& s) override { s.Empty(); }
    void GetSetValueText(CString& s) override { s.Empty(); }
    BOOL IsChecked() override { return 0; }
    void SetChecked(BOOL) override {}
    int GetPerUnitMode() override { return 0; }
    void SetPerUnitMode(int) override {}
    IVarObjEx* Clone() override { return nullptr; }
};

using zorhost::model::CGroupCategory;
using zorhost::model::CGroupNode;
using zorhost::model::CGroupSet;
using zorhost::model::CHostAxis;

// Groups are the reference host's own; these make the shapes the tests need in one line.
inline CGroupNode* AddGroup(CGroupSet& set, const char* name) {
    auto* group = new CGroupNode(name);
    set.AddGroup(group);
    return group;
}
inline CGroupNode* AddChildGroup(CGroupNode* parent, const char* name) {
    auto* group = new CGroupNode(name);
    parent->AddChild(group);
    return group;
}
// A category naming `groups` of the same set.
inline void AddCategory(CGroupSet& set, const char* name, const std::vector<std::string>& groups) {
    auto category = std::make_unique<CGroupCategory>(name, "");
    for (const std::string& g : groups)
        category->AddChildName(CString(g));
    set.AddCategory(std::move(category));
}

struct AxisList : IHostAxisList {
    std::vector<std::unique_ptr<CHostAxis>> axes;
    CGroupSet& Add(const char* name) {
        axes.push_back(std::make_unique<CHostAxis>());
        axes.back()->SetName(name);
        return axes.back()->Groups();
    }
    BOOL IsValid() override { return axes.empty() ? 0 : 1; }
    int GetCount() override { return int(axes.size()); }
    IHostAxis* GetAt(int i) override {
        return i >= 0 && i < int(axes.size()) ? axes[size_t(i)].get() : nullptr;
    }
};

// A drive: its parameters, the catalog's groups (also the store's fixed root), its axes
// and the custom groups.
struct Drive : IVarStore, IVarCatalog {
    std::vector<std::unique_ptr<Attr>> attrs;
    std::vector<std::unique_ptr<Var>> vars;
    std::map<CString, Var*> byCode; // first one wins, as in a real store
    CGroupSet groups, custom;
    AxisList axes;

    // Adds parameter `code` and returns its attribute to adjust.
    Attr* AddParam(const char* code, UINT address) {
        attrs.push_back(std::make_unique<Attr>());
        Attr* a = attrs.back().get();
        a->code = code;
        a->name = CString(code) + "名称";
        a->address = address;
        vars.push_back(std::make_unique<Var>());
        vars.back()->attr = a;
        byCode.emplace(a->code, vars.back().get());
        return a;
    }
    Var* VarOf(const char* code) {
        auto it = byCode.find(CString(code));
        return it != byCode.end() ? it->second : nullptr;
    }
    // IVarStore
    int GetCount() override { return int(vars.size()); }
    IVarObjEx* GetAt(int i) override {
        return i >= 0 && i < int(vars.size()) ? vars[size_t(i)].get() : nullptr;
    }
    IVarObjEx* FindByCode(const CString& key) override { return VarOf(key.GetString()); }
    IVarObjEx* FindByAddress(UINT address) override {
        for (auto& v : vars)
            if (v->attr->address == address)
                return v.get();
        return nullptr;
    }
    IGroupSet* GetGroupRoot(int which) override { return which == 0 ? &groups : &custom; }
    IHostAxisList* GetAxisList() override { return &axes; }
    IFunctionTable* GetFunctionTable(int) override { return nullptr; }
    IHostDeviceModule* GetOwnerModule() override { return nullptr; }
    IVarCatalog* GetStoreCatalog() override { return this; }
    const BYTE* GetElecLabel() override { return nullptr; }
    UINT GetElecLabelSize() override { return 0; }
    void GetVersionText(CString& s) override { s.Empty(); }
    // IVarCatalog
    IGroupSet* GetGroupSet() override { return &groups; }
    IConnectorTable* GetConnectorTable() override { return nullptr; }
    IVarAttr* FindAttrByCode(const CString& code) override {
        Var* v = VarOf(code.GetString());
        return v != nullptr ? v->attr : nullptr;
    }
    IVarAttr* FindAttrByAddress(UINT address) override {
        IVarObjEx* v = FindByAddress(address);
        return v != nullptr ? v->GetAttr() : nullptr;
    }
};

// A module of the shared fake project holding a drive of this file's making.
struct Module : FakeModule {
    Drive drive;
    Module() {
        store = &drive;
        catalog = &drive;
    }
};

struct ProductRecord : IHostProductRecord {
    DWORD line = 0, product = 0, sub = 0;
    DWORD GetLineId() override { return line; }
    DWORD GetProductId() override { return product; }
    DWORD GetSubProductId() override { return sub; }
};

// Records by the first byte of the label.
struct ProductDb : IHostProductDb {
    std::map<BYTE, ProductRecord> records;
    IHostProductRecord* FindProduct(const BYTE* label, UINT size) override {
        if (label == nullptr || size == 0)
            return nullptr;
        auto it = records.find(label[0]);
        return it != records.end() ? &it->second : nullptr;
    }
    IVarCatalog* GetProductCatalog(const BYTE*, UINT, const CString&) override { return nullptr; }
};

// The reference host's value service with the install folder of the test.
struct VarUtil : zorhost::CHostVarUtil {
    CString installDir;
    void GetInstallDir(CString& dir) override { dir = installDir; }
};

struct TransferService : IHostTransferService {
    std::vector<int> syncModes;
    BOOL UploadVars(HWND, const CString&, const std::vector<IVarObjEx*>&) override { return 0; }
    BOOL UploadModule(HWND, const CString&) override { return 0; }
    BOOL SyncModuleAttributes(HWND, const CString&, int mode) override {
        syncModes.push_back(mode);
        return 1;
    }
    BOOL OpenAndDownload(HWND, const CString&) override { return 0; }
    BOOL DownloadRecords(HWND, const CString&, const std::vector<IRWDataItem*>&) override {
        return 0;
    }
    BOOL GetModuleVars(const CString&, std::vector<IVarObjEx*>&) override { return 0; }
    BOOL CompareAxes(const CString&, const CString&, const CString&, const CString&,
                     std::vector<IRWDataItem*>&) override {
        return 0;
    }
    BOOL DownloadAxisRecords(HWND, const CString&, const CString&,
                             const std::vector<IRWDataItem*>&) override {
        return 0;
    }
    std::vector<std::pair<CString, int>> levels;
    void NotifyLevelToTransfer(const CString& key, int level) override {
        levels.emplace_back(key, level);
    }
};

struct NoDrives : zorhost::sim::DriveDirectory {
    zorhost::model::CDeviceModule* FindModule(const CString&) override { return nullptr; }
    std::shared_ptr<zorhost::sim::DriveLink> FindLink(const CString&) override { return {}; }
};

// Records what the frame asks of a list page.
class TestPage : public CVarTablePage {
public:
    explicit TestPage(UINT id) : CVarTablePage(id) {}
    void ShowAllParameters(IVarStore*) override { calls.push_back("all"); }
    void ShowGroup(IGroupNode* group, IVarStore*) override {
        CString name;
        group->GetName(name);
        calls.push_back("group:" + std::string(name.GetString()));
    }
    void ShowAxis(IHostAxis*, IVarStore*) override { calls.push_back("axis"); }
    void ShowCategory(IGroupCategory*, IVarStore*) override { calls.push_back("category"); }
    void ShowCustomRoot(IVarStore*) override { calls.push_back("custom"); }
    void ShowModified(IVarStore*, int mode) override {
        calls.push_back("modified:" + std::to_string(mode));
    }
    void RepaintList() override { ++repaints; }
    void SubmitRefreshQuery() override { ++queries; }
    void PollAuthority() override {}
    int GetShownCount() const override { return 0; }
    IVarObjEx* GetShownVar(int) const override { return nullptr; }
    void CollectShown(std::vector<IVarObjEx*>&) const override {}

    std::vector<std::string> calls;
    int repaints = 0, queries = 0;
};

// The pages the frames of a test get; index 0 the first page.
inline TestPage* g_pages[2] = {nullptr, nullptr};
inline CVarTablePage* MakeTestPage(int style) {
    auto* page = new TestPage(style == 0 ? IDD_VAR_TABLE_PAGE1 : IDD_VAR_TABLE_PAGE2);
    if (style == 0 || style == 1)
        g_pages[style] = page;
    return page;
}

// The host of one test: installs itself as the module's query callback and takes it
// back at the end. Resources are registered under a handle of the test's own.
class TableHost {
public:
    // With `testPages`, frames get TestPage objects made from empty page dialogs; without,
    // they get the module's own list pages.
    explicit TableHost(bool testPages = true) {
        std::filesystem::create_directories(tempDir + "/bin");
        std::filesystem::create_directories(tempDir + "/Config");
        util.installDir = CString(tempDir + "/bin");
        services.Register<IHostVarUtil>(&util);
        services.Register<IHostUiService>(&ui);
        services.Register<IHostDeviceHelper>(&helper);
        services.Register<IHostProductDb>(&products);
        services.Register<IHostProjectRoot>(&project);
        services.Register<IHostRefreshService>(&refresh);
        services.Register<IHostTransferService>(&transfer);
        services.Register<IHostModuleManager>(&manager);
        if (testPages)
            for (UINT id : {IDD_VAR_TABLE_PAGE1, IDD_VAR_TABLE_PAGE2})
                AfxRegisterDialog(scope.Handle(), DlgTemplate{id, "", 500, 500, {}, WS_CHILD});
        scope.AddParentDialog(9901, 900, 600);
        g_pages[0] = g_pages[1] = nullptr;
        CVarTable::SetPageFactory(testPages ? &MakeTestPage : nullptr);
        ModuleScope::Attach(services);
    }
    ~TableHost() {
        ModuleScope::Detach();
        CVarTable::SetPageFactory(nullptr);
    }
    TableHost(const TableHost&) = delete;
    TableHost& operator=(const TableHost&) = delete;

    Module* AddModule(const char* key) {
        modules.push_back(std::make_unique<Module>());
        modules.back()->key = key;
        project.modules.push_back(modules.back().get());
        return modules.back().get();
    }

    zorhost::HostServices services;
    VarUtil util;
    zorhost::CHostUiService ui;
    NoDrives drives;
    zorhost::CHostDeviceHelper helper{drives};
    ProductDb products;
    FakeProject project;
    zorhost::CHostRefreshService refresh{drives};
    TransferService transfer;
    zorhost::CHostModuleManager manager;
    std::vector<std::unique_ptr<Module>> modules;
    TempDir temp;
    const std::string& tempDir = temp.Path();
    ModuleScope scope{"table-test"};
};

} // namespace tt
