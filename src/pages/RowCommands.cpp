// The row commands of both list pages: the context menu and what its entries do to the
// selected rows.
#include "pages/RowCommands.h"

#include "files/ListExportWriter.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAccessService.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/ConfigListDlg.h"
#include "pages/VarTablePageBase.h"
#include "table/TableResources.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

#include <afx/afxres.h>

#include <set>

void RegisterRowCommandResources(HINSTANCE module) {
    if (module == nullptr || AfxFindMenuTemplate(module, IDR_MENU_PAGE1) != nullptr)
        return;
    const MenuItemTemplate sep{0, "", MF_SEPARATOR};
    const MenuItemTemplate addToGroup{
        0, "添加到自定义参数组", MF_POPUP, {{ID_NEW_SUBGROUP, "新建子组"}}};
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_PAGE1,
                                         {{ID_ADD_TO_MONITOR, "添加到监控列表"},
                                          {ID_EXPORT_LIST, "导出"},
                                          sep,
                                          {ID_CHOOSE_COLUMNS, "筛选列"},
                                          addToGroup}});
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_PAGE2,
                                         {{ID_ADD_TO_MONITOR, "添加到监控列表"},
                                          {ID_DOWNLOAD_CHECKED, "下载勾选项"},
                                          {ID_CHECK_ALL, "全选"},
                                          {ID_CLEAR_CHECKS, "取消全选"},
                                          addToGroup,
                                          sep,
                                          {ID_SHOW_CHECKED_ONLY, "只显示勾选参数"},
                                          {ID_SHOW_ALL_ROWS, "取消只显示勾选参数"},
                                          {ID_CHOOSE_COLUMNS, "筛选列"}}});
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_PAGE1_CUSTOM,
                                         {{ID_ADD_TO_MONITOR, "添加到监控列表"},
                                          {ID_EDIT_LIST, "编辑列表"},
                                          {ID_REMOVE_ROWS, "移除参数"},
                                          sep,
                                          {ID_EXPORT_LIST, "导出"}}});
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_PAGE2_CUSTOM,
                                         {{ID_ADD_TO_MONITOR, "添加到监控列表"},
                                          {ID_REMOVE_ROWS, "移除参数"},
                                          sep,
                                          {ID_DOWNLOAD_CHECKED, "下载勾选项"},
                                          {ID_CHECK_ALL, "全选"},
                                          {ID_CLEAR_CHECKS, "取消全选"},
                                          sep}});
}

UINT RowMenuId(BOOL firstPage, int inCustomOrModified) {
    if (firstPage)
        return inCustomOrModified ? IDR_MENU_PAGE1_CUSTOM : IDR_MENU_PAGE1;
    return inCustomOrModified ? IDR_MENU_PAGE2_CUSTOM : IDR_MENU_PAGE2;
}

// ---------------------------------------------------------------- the page's side
void CVarTablePageBase::GetSelectedVars(std::vector<IVarObjEx*>& vars) const {
    const CListCtrlEx& list = const_cast<CVarTablePageBase*>(this)->GetList();
    std::set<IVarObjEx*> seen;
    for (int row = list.GetNextItem(-1, LVNI_SELECTED); row >= 0;
         row = list.GetNextItem(row, LVNI_SELECTED)) {
        IVarObjEx* var = m_shownVars.GetAt(row);
        if (var != nullptr && seen.insert(var).second)
            vars.push_back(var);
    }
}

void CVarTablePageBase::OnListRightClick() {
    if (m_pTable == nullptr)
        return;
    CListCtrlEx& list = GetList();
    list.CloseEditors(-1);
    CPoint point;
    GetCursorPos(&point);
    const UINT menuId = RowMenuId(m_bFirstPage, m_pTable->inCustomOrModified);
    std::vector<UINT> grayed;
    if (list.GetSelectedCount() == 0)
        grayed.push_back(ID_ADD_TO_MONITOR);
    const UINT command = m_pTable->TrackPageMenu(menuId, point, this, grayed, TRUE);
    if (command != 0)
        RunRowCommand(command);
}

BOOL CVarTablePageBase::RunRowCommand(UINT id) {
    switch (id) {
    case ID_ADD_TO_MONITOR:
        AddToMonitorList();
        return TRUE;
    case ID_CHOOSE_COLUMNS:
        ChooseColumns();
        return TRUE;
    case ID_REMOVE_ROWS:
        RemoveRows();
        return TRUE;
    case ID_EDIT_LIST:
        if (m_pTable != nullptr)
            m_pTable->EditCustomGroup();
        return TRUE;
    case ID_EXPORT_LIST:
        ExportList();
        return TRUE;
    case ID_NEW_SUBGROUP:
        if (m_pTable != nullptr) {
            std::vector<IVarObjEx*> vars;
            GetSelectedVars(vars);
            m_pTable->CreateCustomGroup(vars, CString());
        }
        return TRUE;
    case ID_SHOW_CHECKED_ONLY:
    case ID_SHOW_ALL_ROWS:
        if (m_bFirstPage)
            return FALSE;
        m_listFilter = id == ID_SHOW_CHECKED_ONLY ? LIST_FILTER_CHECKED : LIST_FILTER_ALL;
        RefillAll();
        return TRUE;
    default:
        if (id >= ID_MENU_GROUP_FIRST && id <= ID_MENU_GROUP_LAST) {
            std::vector<IVarObjEx*> vars;
            GetSelectedVars(vars);
            if (m_pTable != nullptr && !vars.empty())
                m_pTable->AddVarsToMenuGroup(vars, id);
            return TRUE;
        }
        // Commands the page itself answers (the second page's check and write commands).
        SendMessage(WM_COMMAND, MAKEWPARAM(WORD(id), 0), 0);
        return FALSE;
    }
}

void CVarTablePageBase::AddToMonitorList() {
    IHostAccessService* access = theApp.GetAccessService();
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (access == nullptr || module == nullptr)
        return;
    CString key;
    module->GetModuleKey(key);
    std::vector<IVarObjEx*> vars;
    GetSelectedVars(vars);
    if (vars.empty())
        return;
    std::vector<UINT> addresses;
    addresses.reserve(vars.size());
    for (IVarObjEx* var : vars)
        addresses.push_back(var->GetInstanceAddress());
    access->AddWatchVars(key, addresses);
}

namespace {

// Takes `key` out of `group`, or else out of the first of its children that holds it,
// depth first.
BOOL RemoveFromGroup(IGroupNode* group, const CString& key) {
    if (group->RemoveMember(key))
        return TRUE;
    for (int i = 0; i < group->GetChildCount(); ++i)
        if (IGroupNode* child = group->GetChildAt(i);
            child != nullptr && RemoveFromGroup(child, key))
            return TRUE;
    return FALSE;
}

} // namespace

void CVarTablePageBase::ShowCustomGroupRows(IGroupNode* group, IVarStore* store) {
    m_shownVars.RemoveAll();
    m_groupVars.RemoveAll();
    if (group != nullptr && store != nullptr && m_pTable != nullptr)
        WalkGroup(group, store, m_pTable->GetAccessLevel());
    FinishCollection(FALSE, FALSE);
}

void CVarTablePageBase::RemoveRows() {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (theApp.GetUiService() == nullptr || theApp.GetVarUtil() == nullptr || module == nullptr)
        return;
    IGroupNode* group = m_pTable->GetCurrentCustomGroup();
    IVarStore* store = m_pTable->GetVarList();
    IGroupSet* customRoot = store != nullptr ? store->GetGroupRoot(1) : nullptr;
    if (group == nullptr && (m_bFirstPage || customRoot == nullptr))
        return;
    std::vector<IVarObjEx*> vars;
    GetSelectedVars(vars);
    if (vars.empty())
        return;
    CString question;
    question.Format(VarText::Translate("确定删除%d个对象吗?").GetString(), int(vars.size()));
    if (MessageBox(GetSafeHwnd(), question.GetString(), "", MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    for (IVarObjEx* var : vars) {
        CString key;
        var->GetInstanceGuid(key);
        if (group != nullptr)
            RemoveFromGroup(group, key);
        else
            customRoot->RemoveMember(key);
    }
    if (group != nullptr)
        ShowCustomGroupRows(group, store);
    else
        ShowCustomRoot(store);
    m_pTable->SaveCustomGroups();
}

void CVarTablePageBase::ExportList() {
    std::vector<IVarObjEx*> rows;
    CollectShown(rows);
    ExportListWithDialog(rows, this);
}
