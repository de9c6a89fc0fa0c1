// The frame's commands on custom groups: make, edit, delete, fill, load, and hand the
// result to the host's store after every change.
#include "groups/GroupDialog.h"
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarDatabase.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/TableResources.h"
#include "table/VarTable.h"

#include <afx/afxdlgs.h>

#include <ctime>

namespace {

constexpr UINT IDS_WARNING = 2008;               // "警告"
constexpr UINT IDS_CONFIRM_DELETE_OBJECT = 2045; // "确定删除对象'%s'吗?"
constexpr UINT IDS_DEVICE_TYPE_DIFFERS = 1963;
constexpr UINT IDS_MENU_DIRECT_ADD = 207;   // "直接添加"
constexpr UINT IDS_MENU_NEW_SUBGROUP = 208; // "新建子组"
constexpr UINT kFirstMenuGroupId = 4000;

CString GroupLabel(IGroupNode* group) {
    CString name, description;
    group->GetName(name);
    group->GetDescription(description);
    if (description.IsEmpty())
        return name;
    CString label;
    label.Format("%s[%s]", name.GetString(), description.GetString());
    return label;
}

// Two labels name one device type when the 16-bit words at 0, 2, 4 and 14 agree.
BOOL IsSameDeviceType(IParamFile* file, IHostDeviceModule* module) {
    if (file == nullptr || module == nullptr)
        return FALSE;
    const BYTE* a = file->GetElecLabel();
    const BYTE* b = module->GetElecLabel();
    const UINT sizeA = file->GetElecLabelSize();
    const UINT sizeB = module->GetElecLabelSize();
    if (a == nullptr || b == nullptr || sizeA < 6 || sizeB < 6)
        return FALSE;
    for (UINT at : {0u, 2u, 4u, 14u}) {
        // A label too short for the last word compares the words it has.
        if (at + 1 >= sizeA || at + 1 >= sizeB)
            break;
        if (a[at] != b[at] || a[at + 1] != b[at + 1])
            return FALSE;
    }
    return TRUE;
}

} // namespace

CString CVarTable::GetCustomGroupPath() {
    IHostWorkspace* workspace = m_pWorkspace;
    if (workspace == nullptr) {
        IHostProject* project = theApp.GetProject();
        workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    }
    CString projectDir;
    if (workspace == nullptr || m_pModule == nullptr || !workspace->GetProjectDir(projectDir) ||
        projectDir.IsEmpty())
        return CString();
    CString name, key, dir, path;
    m_pModule->GetDisplayName(name);
    m_pModule->GetModuleKey(key);
    dir.Format("%s/%s_%s", projectDir.GetString(), name.GetString(), key.GetString());
    path.Format("%s/%s", dir.GetString(), "Variables.dat");
    return path;
}

void CVarTable::SaveCustomGroups() {
    IHostWorkspace* workspace = m_pWorkspace;
    if (workspace == nullptr) {
        IHostProject* project = theApp.GetProject();
        workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    }
    const CString path = GetCustomGroupPath();
    if (workspace == nullptr || path.IsEmpty())
        return;
    const CString dir = path.Left(path.ReverseFind('/'));
    if (IHostVarUtil* util = theApp.GetVarUtil())
        util->MakeDirectory(dir);
    CString version;
    m_pModule->GetVersionText(version);
    IVarDatabase* database =
        workspace->GetDatabase(m_pModule->GetElecLabel(), m_pModule->GetElecLabelSize(), version);
    // A failed write isn't the user's business here; the host keeps the old file whole.
    if (database != nullptr)
        database->SaveToFile(path);
}

IGroupSet* CVarTable::GetCustomGroupSet() const {
    IVarStore* store = GetVarList();
    return store != nullptr ? store->GetGroupRoot(1) : nullptr;
}

void CVarTable::RebuildAfterGroupChange() {
    IHostDeviceModule* module = m_pModule;
    StopRefresh();
    m_pModule = module;
    StartRefresh();
    BuildTree();
    RecalcLayout();
}

void CVarTable::CreateCustomGroup(const std::vector<IVarObjEx*>& list, const CString& name) {
    IGroupSet* set = GetCustomGroupSet();
    if (list.empty() || m_pModule == nullptr || set == nullptr)
        return;
    IGroupNode* group = set->NewGroup();
    if (group == nullptr)
        return;
    CString groupName = name;
    if (groupName.IsEmpty()) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        groupName.Format("%4d-%02d-%02d_%02d_%02d_%02d", local.tm_year + 1900, local.tm_mon + 1,
                         local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    } else if (set->FindByName(groupName) != nullptr) {
        // One step only: "Xnew" is taken as it is even when it exists too.
        groupName += "new";
    }
    group->SetName(groupName);
    for (IVarObjEx* var : list) {
        if (var == nullptr)
            continue;
        CString key;
        var->GetInstanceGuid(key);
        group->AddMember(key);
    }
    if (!set->AddGroup(group)) {
        delete group;
        return;
    }
    RebuildAfterGroupChange();
    SaveCustomGroups();
}

void CVarTable::AddVarsToCustomRoot(const std::vector<IVarObjEx*>& list) {
    IGroupSet* set = GetCustomGroupSet();
    if (set == nullptr)
        return;
    for (IVarObjEx* var : list) {
        if (var == nullptr)
            continue;
        CString key;
        var->GetInstanceGuid(key);
        set->AddMember(key);
    }
    SaveCustomGroups();
}

void CVarTable::AppendGroupMenuEntries(CMenu& menu, IGroupNode* group, UINT& counter) {
    if (group == nullptr)
        return;
    CString name;
    group->GetName(name);
    if (group->GetChildCount() == 0) {
        const UINT id = kFirstMenuGroupId + counter++;
        menu.AppendMenu(MF_STRING, id, name.GetString());
        m_menuGroups[id] = group;
        return;
    }
    CMenu popup;
    popup.CreatePopupMenu();
    const UINT newId = kFirstMenuGroupId + counter++;
    popup.AppendMenu(MF_STRING, newId, theApp.LoadText(IDS_MENU_NEW_SUBGROUP).GetString());
    m_menuSubGroups[newId] = group;
    const UINT directId = kFirstMenuGroupId + counter++;
    popup.AppendMenu(MF_STRING, directId, theApp.LoadText(IDS_MENU_DIRECT_ADD).GetString());
    m_menuGroups[directId] = group;
    for (int i = 0; i < group->GetChildCount(); ++i)
        AppendGroupMenuEntries(popup, group->GetChildAt(i), counter);
    menu.AppendMenu(MF_POPUP, reinterpret_cast<UINT_PTR>(popup.Detach()), name.GetString());
}

void CVarTable::FillAddToGroupMenu(CMenu& popup) {
    m_menuGroups.clear();
    m_menuSubGroups.clear();
    IGroupSet* set = GetCustomGroupSet();
    if (set == nullptr)
        return;
    UINT counter = 1;
    for (int i = 0; i < set->GetCount(); ++i)
        AppendGroupMenuEntries(popup, set->GetAt(i), counter);
}

void CVarTable::AddVarsToMenuGroup(const std::vector<IVarObjEx*>& list, UINT id) {
    if (list.empty())
        return;
    auto direct = m_menuGroups.find(id);
    if (direct != m_menuGroups.end() && direct->second != nullptr) {
        IGroupNode* group = direct->second;
        // Members already in the group stay where they are and come in only once.
        for (IVarObjEx* var : list) {
            if (var == nullptr)
                continue;
            CString key;
            var->GetInstanceGuid(key);
            BOOL present = FALSE;
            for (int i = 0; i < group->GetMemberCount() && !present; ++i) {
                CString member;
                present = group->GetMemberAt(i, member) && member == key;
            }
            if (!present)
                group->AddMember(key);
        }
        return;
    }
    if (m_menuSubGroups.count(id) != 0)
        CreateCustomGroup(list, CString());
}

// ---------------------------------------------------------------- tree commands

IGroupNode* CVarTable::GetSelectedCustomGroup(HTREEITEM* item) const {
    if (m_tree.GetSafeHwnd() == nullptr)
        return nullptr;
    HTREEITEM selected = m_tree.GetSelectedItem();
    if (item != nullptr)
        *item = selected;
    if (!IsInCustomSubtree(selected))
        return nullptr;
    auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(selected));
    return record != nullptr ? record->GetGroup() : nullptr;
}

void CVarTable::NewCustomGroup() {
    CLocalResource scope(theApp.m_hResource);
    IGroupSet* set = GetCustomGroupSet();
    if (theApp.GetVarUtil() == nullptr || m_pModule == nullptr || set == nullptr)
        return;
    HTREEITEM parentItem = nullptr;
    IGroupNode* parent = GetSelectedCustomGroup(&parentItem);
    IGroupNode* group = set->NewGroup();
    if (group == nullptr)
        return;
    CGroupDialog dialog(this);
    dialog.SetGroup(group);
    dialog.SetVarStore(GetVarList());
    if (dialog.DoModal() != IDOK) {
        delete group;
        return;
    }
    const BOOL added = parent != nullptr ? parent->AddChild(group) : set->AddGroup(group);
    if (!added) {
        delete group;
        return;
    }
    if (parent == nullptr)
        parentItem = m_hCustom;
    HTREEITEM item =
        InsertRecordItem(GroupLabel(group), 2, parentItem, CTreeItemData::KindGroup, group);
    m_tree.Expand(parentItem, TVE_EXPAND);
    if (item != nullptr)
        m_tree.SelectItem(item); // shows the group and makes it current
    SaveCustomGroups();
}

void CVarTable::ForgetRecordsBelow(HTREEITEM item) {
    if (item == nullptr)
        return;
    for (HTREEITEM child = m_tree.GetChildItem(item); child != nullptr;
         child = m_tree.GetNextSiblingItem(child))
        ForgetRecordsBelow(child);
    auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item));
    if (record != nullptr && m_treeItems.Remove(record))
        delete record;
    m_tree.SetItemData(item, 0);
}

void CVarTable::DeleteCustomGroup() {
    CLocalResource scope(theApp.m_hResource);
    HTREEITEM item = nullptr;
    IGroupNode* group = GetSelectedCustomGroup(&item);
    IGroupSet* set = GetCustomGroupSet();
    if (group == nullptr || set == nullptr)
        return;
    CString name, question;
    group->GetName(name);
    question.Format(theApp.LoadText(IDS_CONFIRM_DELETE_OBJECT).GetString(), name.GetString());
    if (MessageBox(GetSafeHwnd(), question.GetString(), theApp.LoadText(IDS_WARNING).GetString(),
                   MB_YESNO | MB_ICONWARNING) != IDYES)
        return;
    IGroupNode* parent = group->GetParent();
    const BOOL removed =
        parent != nullptr ? parent->RemoveChild(group) : set->RemoveGroup(group, 0);
    if (!removed)
        return;
    // The group is gone: no record may point at it, and the page must not show it.
    m_bRebuilding = TRUE;
    ForgetRecordsBelow(item);
    m_tree.DeleteItem(item);
    m_bRebuilding = FALSE;
    m_pCurrentGroup = nullptr;
    if (CVarTablePage* page = GetStylePage())
        page->ShowGroup(nullptr, GetVarList());
    OnTreeSelection(m_tree.GetSelectedItem());
    SaveCustomGroups();
}

void CVarTable::EditCustomGroup() {
    CLocalResource scope(theApp.m_hResource);
    HTREEITEM item = nullptr;
    IGroupNode* group = GetSelectedCustomGroup(&item);
    if (group == nullptr || item == m_hCustom)
        return;
    CGroupDialog dialog(this);
    dialog.SetGroup(group);
    dialog.SetVarStore(GetVarList());
    if (dialog.DoModal() != IDOK)
        return;
    SaveCustomGroups();
    m_pCurrentGroup = group;
    m_tree.SetItemText(item, GroupLabel(group).GetString());
    m_tree.Invalidate();
    if (CVarTablePage* page = GetStylePage())
        page->ShowGroup(group, GetVarList());
}

void CVarTable::LoadCustomGroup() {
    CLocalResource scope(theApp.m_hResource);
    CFileDialog dialog(TRUE, "zorparam", nullptr,
                       OFN_HIDEREADONLY | OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST,
                       "Zorparam files (*.zorparam)|*.zorparam|CSV file(*.csv)|*.csv||", this);
    // The framework's dialog keeps the chosen paths itself; no name buffer to size.
    if (dialog.DoModal() != IDOK)
        return;
    POSITION pos = dialog.GetStartPosition();
    std::vector<CString> paths;
    while (pos != nullptr)
        paths.push_back(dialog.GetNextPathName(pos));
    if (paths.size() != 1 || m_pModule == nullptr)
        return;
    const CString& path = paths.front();
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr)
        return;
    file->LoadContext(m_pModule);
    CString lower = path.Right(4);
    lower.MakeLower();
    BOOL opened = FALSE;
    if (lower == ".csv") {
        IHostDeviceHelper* helper = theApp.GetDeviceHelper();
        opened = helper != nullptr && helper->ReadCsvParamFile(path, file, m_pModule);
    } else {
        opened = file->Open(path);
    }
    if (!opened) {
        file->Release();
        return;
    }
    if (!IsSameDeviceType(file, m_pModule)) {
        CString displayName, question;
        m_pModule->GetDisplayName(displayName);
        question.Format(theApp.LoadText(IDS_DEVICE_TYPE_DIFFERS).GetString(), path.GetString(),
                        displayName.GetString());
        // Groups of another device type would name parameters this drive may not have:
        // whatever the answer, nothing is loaded, and a Yes is told so once more.
        if (MessageBox(GetSafeHwnd(), question.GetString(), "", MB_YESNO | MB_ICONWARNING) == IDYES)
            MessageBox(GetSafeHwnd(), question.GetString(),
                       theApp.LoadText(IDS_WARNING).GetString(), MB_OK | MB_ICONWARNING);
        file->Release();
        return;
    }
    // The group takes the file's name, without folder and extension.
    CString name = path.Mid(std::max(path.ReverseFind('/'), path.ReverseFind('\\')) + 1);
    const int dot = name.ReverseFind('.');
    if (dot > 0)
        name = name.Left(dot);
    std::vector<IVarObjEx*> vars;
    if (IParamFileTable* table = file->GetVarList())
        for (int i = 0; i < table->GetCount(); ++i)
            if (IVarObjEx* var = table->GetAt(i))
                vars.push_back(var);
    CreateCustomGroup(vars, name);
    file->Release();
}

void CVarTable::AddModifiedToCustomGroup() {
    if (GetListStyle() != 0 || m_pPage1 == nullptr)
        return;
    std::vector<IVarObjEx*> rows;
    std::set<IVarObjEx*> seen;
    for (int i = 0; i < m_pPage1->GetShownCount(); ++i) {
        IVarObjEx* var = m_pPage1->GetShownVar(i);
        if (var != nullptr && seen.insert(var).second)
            rows.push_back(var);
    }
    CreateCustomGroup(rows, CString());
}
