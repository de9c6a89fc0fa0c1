#include "values/WriteLinkerVarDialog.h"
#include "module/host/VarAttrCodes.h"

#include "module/ParmiraApp.h"
#include "module/host/IConnectorGroup.h"
#include "module/host/IConnectorTable.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <afx/afxres.h>

namespace {

void RegisterLinkerDialog(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_WRITE_LINKER) != nullptr)
        return;
    DlgTemplate dlg{IDD_WRITE_LINKER, "连接器", 640, 440};
    dlg.controls = {
        // Labels leave room for their English.
        {1043, DlgCtl::Static, "参数名称", 12, 14, 110, 20},
        {IDC_LINKER_CODE, DlgCtl::Edit, "", 126, 12, 120, 22, ES_READONLY},
        {1044, DlgCtl::Static, "描述", 258, 14, 80, 20},
        {IDC_LINKER_NAME, DlgCtl::Edit, "", 342, 12, 286, 22, ES_READONLY},
        {1045, DlgCtl::Static, "搜索", 12, 44, 110, 20},
        {IDC_LINKER_SEARCH, DlgCtl::ComboDropDown, "", 126, 42, 220, 24},
        {IDC_LINKER_TREE, DlgCtl::Tree, "", 12, 74, 200, 310,
         TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS},
        {IDC_LINKER_LIST, DlgCtl::List, "", 220, 74, 408, 310,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SINGLESEL},
        {1046, DlgCtl::Static, "当前值", 12, 400, 110, 20},
        {IDC_LINKER_VALUE, DlgCtl::Edit, "", 126, 398, 140, 22},
        {UINT(IDOK), DlgCtl::Button, "确定", 456, 396, 80, 26, BS_DEFPUSHBUTTON},
        {UINT(IDCANCEL), DlgCtl::Button, "取消", 548, 396, 80, 26},
    };
    AfxRegisterDialog(module, dlg);
}

CString StringById(UINT id, const char* fallback) {
    CString text;
    if (IHostUiService* ui = theApp.GetUiService())
        if (ui->GetString(text, theApp.m_hResource, id, 0) && !text.IsEmpty())
            return text;
    if (AfxLoadStringFrom(theApp.m_hResource, id, text) && !text.IsEmpty())
        return text;
    return fallback;
}

CString Upper(const CString& text) {
    CString upper = text;
    upper.MakeUpper();
    return upper;
}

} // namespace

CString CLinkerListCtrl::OnGetCellText(int nItem, int nSubItem) {
    CZorLinkerVarObj* row = m_pDialog != nullptr ? m_pDialog->GetRow(nItem) : nullptr;
    if (row == nullptr || row->m_pAttr == nullptr)
        return CString();
    CString text;
    if (nSubItem == 0)
        row->m_pAttr->GetCode(text);
    else if (nSubItem == 1) {
        row->m_pAttr->GetName(text);
        text = VarText::Translate(text);
    }
    return text;
}

CWriteLinkerVarDialog::CWriteLinkerVarDialog(CWnd* pParent)
    : CZorSkinPDialog(IDD_WRITE_LINKER, pParent) {
    RegisterLinkerDialog(theApp.m_hResource);
    m_list.SetDialog(this);
}

CWriteLinkerVarDialog::~CWriteLinkerVarDialog() {
    ClearRows();
}

void CWriteLinkerVarDialog::ClearRows() {
    m_pSelected = nullptr;
    m_rows.DeleteAll();
}

void CWriteLinkerVarDialog::SetItem(IVarObjEx* item) {
    m_pAttr = item != nullptr ? item->GetAttr() : nullptr;
    if (m_pAttr == nullptr)
        return;
    m_pAttr->GetCode(m_codeText);
    m_pAttr->GetName(m_nameText);
    m_nameText = VarText::Translate(m_nameText);
    Variant v = item->GetSetValue();
    if (v.vt == VT_EMPTY || v.vt == VT_NULL)
        v = item->GetValue();
    if (IHostVarUtil* util = theApp.GetVarUtil())
        m_value = int(util->VariantToDouble(v, 5, m_pAttr->GetDecimals()));
}

void CWriteLinkerVarDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_LINKER_SEARCH), m_search);
    DDX_Control(pDX, int(IDC_LINKER_LIST), m_list);
    DDX_Control(pDX, int(IDC_LINKER_TREE), m_tree);
    DDX_Text(pDX, int(IDC_LINKER_CODE), m_codeText);
    DDX_Text(pDX, int(IDC_LINKER_NAME), m_nameText);
    DDX_Text(pDX, int(IDC_LINKER_VALUE), m_value);
}

ConnectorKind CWriteLinkerVarDialog::ConnectorKindOf() {
    IValueInfo* info = m_pAttr != nullptr ? m_pAttr->GetValueInfo() : nullptr;
    if (info == nullptr || info->GetKind() != VALUE_INFO_ENUM)
        return ConnectorNone;
    IValueInfoList* list = info->GetEnumList();
    const int count = list != nullptr ? list->GetCount() : 0;
    IValueInfoEntry* last = count > 0 ? list->GetAt(count - 1) : nullptr;
    if (last == nullptr)
        return ConnectorNone;
    CString text;
    last->GetText(text);
    // "BKF" holds "KF" and "F", and "KF" holds "F": the longer names are tested first.
    const struct {
        UINT id;
        const char* name;
        ConnectorKind kind;
    } tests[] = {{177, "B连接器", ConnectorB},
                 {149, "BKF连接器", ConnectorBKF},
                 {196, "KF连接器", ConnectorKF},
                 {178, "K连接器", ConnectorK},
                 {179, "F连接器", ConnectorF}};
    // The entry's text is the device's, as written; the string table's text is in the
    // user's language, which may be another.
    for (const auto& test : tests)
        if (text.Find(test.name) >= 0 || text.Find(StringById(test.id, test.name)) >= 0)
            return test.kind;
    return ConnectorNone;
}

BOOL CWriteLinkerVarDialog::OnInitDialog() {
    CZorSkinPDialog::OnInitDialog();
    SetWindowText(StringById(186, "连接器"));
    SetDlgItemText(1043, StringById(2140, "参数名称").GetString());
    SetDlgItemText(1044, StringById(2141, "描述").GetString());
    SetDlgItemText(1045, StringById(189, "搜索").GetString());
    SetDlgItemText(1046, StringById(2142, "当前值").GetString());
    SetDlgItemText(IDOK, StringById(187, "确定").GetString());
    SetDlgItemText(IDCANCEL, StringById(188, "取消").GetString());
    m_list.SetExtendedStyle(m_list.GetExtendedStyle() | LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES |
                            LVS_EX_CHECKBOXES);
    m_list.SetMarkSortedColumn(FALSE);
    m_list.EnableHeaderSort(FALSE);
    m_list.InsertColumn(0, StringById(2013, "参数").GetString(), LVCFMT_LEFT, 80);
    m_list.InsertColumn(1, StringById(2014, "参数名称").GetString(), LVCFMT_LEFT, 300);
    m_hRoot = m_tree.InsertItem(StringById(181, "参数组").GetString());
    m_kind = ConnectorKindOf();
    if (m_kind != ConnectorNone && m_pTable != nullptr)
        FillTree();
    m_tree.Expand(m_hRoot, TVE_EXPAND);
    m_search.SetDialog(this);
    m_search.ResetContent();
    m_search.SetWindowText("");
    SelectByValue(m_value);
    UpdateData(FALSE);
    return TRUE;
}

void CWriteLinkerVarDialog::FillTree() {
    switch (m_kind) {
    case ConnectorBKF:
        AddGroupsOfKind(1);
        AddGroupsOfKind(2);
        AddGroupsOfKind(3);
        break;
    case ConnectorKF:
        AddGroupsOfKind(2);
        AddGroupsOfKind(3);
        break;
    default:
        AddGroupsOfKind(int(m_kind));
        break;
    }
}

void CWriteLinkerVarDialog::AddGroupsOfKind(int kind) {
    IGroupSet* set = m_pCatalog != nullptr ? m_pCatalog->GetGroupSet() : nullptr;
    if (set == nullptr)
        return;
    for (int i = 0; i < m_pTable->GetEntryCount(kind); ++i) {
        IConnectorGroup* entry = m_pTable->GetEntry(i, kind);
        if (entry == nullptr)
            continue;
        CString key;
        entry->GetGroupKey(key);
        IGroupNode* group = set->FindByName(key);
        if (group == nullptr)
            continue;
        CString description;
        group->GetDescription(description);
        CString text;
        text.Format("%s[%s]", key.GetString(), VarText::Translate(description).GetString());
        HTREEITEM item = m_tree.InsertItem(text.GetString(), m_hRoot);
        m_tree.SetItemData(item, DWORD_PTR(entry));
    }
}

void CWriteLinkerVarDialog::SelectByValue(int value) {
    if (m_hRoot == nullptr)
        return;
    for (HTREEITEM item = m_tree.GetChildItem(m_hRoot); item != nullptr;
         item = m_tree.GetNextSiblingItem(item)) {
        auto* entry = reinterpret_cast<IConnectorGroup*>(m_tree.GetItemData(item));
        if (entry == nullptr)
            continue;
        const LONGLONG b = entry->GetBase();
        // Each group spans at most 100 values; below the base the difference wraps.
        const ULONGLONG offset = ULONGLONG(LONGLONG(value) - b);
        if (offset >= 100)
            continue;
        m_tree.SelectItem(item);
        FillFromGroup(entry);
        if (m_pAttr != nullptr) {
            for (int i = 0; i < m_rows.GetCount(); ++i) {
                CZorLinkerVarObj* row = m_rows.GetAt(i);
                if (row->m_pAttr != nullptr && row->m_pAttr->GetAddress() % 100 == offset) {
                    row->m_nChecked = 1;
                    if (m_list.GetSafeHwnd() != nullptr)
                        m_list.SetCheck(i, TRUE);
                    break;
                }
            }
        }
        return;
    }
}

void CWriteLinkerVarDialog::AddRowsOfGroup(IConnectorGroup* entry, BOOL transferableOnly) {
    IGroupSet* set = m_pCatalog != nullptr ? m_pCatalog->GetGroupSet() : nullptr;
    if (set == nullptr || entry == nullptr)
        return;
    CString key;
    entry->GetGroupKey(key);
    IGroupNode* group = set->FindByName(key);
    if (group == nullptr)
        return;
    for (int i = 0; i < group->GetMemberCount(); ++i) {
        CString member;
        if (!group->GetMemberAt(i, member))
            continue;
        IVarAttr* attr = m_pCatalog->FindAttrByCode(member);
        if (attr == nullptr || (transferableOnly && !attr->IsTransferable()))
            continue;
        CString code;
        attr->GetCode(code);
        auto* row = new CZorLinkerVarObj(attr, 0);
        if (!m_rows.Add(code, row))
            delete row;
    }
}

void CWriteLinkerVarDialog::FillFromGroup(IConnectorGroup* entry) {
    if (entry == nullptr)
        return;
    m_groupBase = entry->GetBase();
    ClearRows();
    AddRowsOfGroup(entry, TRUE);
    if (m_list.GetSafeHwnd() != nullptr) {
        m_list.SetItemCount(m_rows.GetCount());
        for (int i = 0; i < m_rows.GetCount(); ++i)
            m_list.SetCheck(i, FALSE);
        m_list.Invalidate(FALSE);
    }
}

void CWriteLinkerVarDialog::SearchRows(const CString& text) {
    ClearRows();
    // A search covers every group on show, whatever is selected.
    for (HTREEITEM item = m_hRoot != nullptr ? m_tree.GetChildItem(m_hRoot) : nullptr;
         item != nullptr; item = m_tree.GetNextSiblingItem(item))
        AddRowsOfGroup(reinterpret_cast<IConnectorGroup*>(m_tree.GetItemData(item)), FALSE);
    const CString wanted = Upper(text);
    for (int i = m_rows.GetCount() - 1; i >= 0; --i) {
        CZorLinkerVarObj* row = m_rows.GetAt(i);
        CString code;
        CString name;
        row->m_pAttr->GetCode(code);
        row->m_pAttr->GetName(name);
        if (Upper(code).Find(wanted) >= 0 || Upper(name).Find(wanted) >= 0)
            continue;
        m_rows.RemoveAt(i);
        delete row;
    }
    if (m_list.GetSafeHwnd() != nullptr) {
        m_list.SetItemCount(m_rows.GetCount());
        for (int i = 0; i < m_rows.GetCount(); ++i)
            m_list.SetCheck(i, FALSE);
        m_list.Invalidate(FALSE);
    }
}

void CWriteLinkerVarDialog::OnRowClicked(int row) {
    if (row < 0 || row >= m_rows.GetCount()) {
        m_list.SetItemState(-1, 0, LVIS_SELECTED);
        return;
    }
    for (int i = 0; i < m_rows.GetCount(); ++i) {
        m_rows.GetAt(i)->m_nChecked = i == row ? 1 : 0;
        m_list.SetCheck(i, i == row);
    }
    m_pSelected = m_rows.GetAt(row);
    CString code;
    m_pSelected->m_pAttr->GetCode(code);
    if (m_pTable != nullptr)
        m_value = int(m_pTable->ValueFromCode(code, int(m_kind)));
    SetDlgItemInt(int(IDC_LINKER_VALUE), UINT(m_value), TRUE);
    m_list.Invalidate(FALSE);
}

BOOL CWriteLinkerVarDialog::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
    if (hdr != nullptr && hdr->idFrom == IDC_LINKER_TREE && hdr->code == TVN_SELCHANGED) {
        const auto* tv = reinterpret_cast<const NMTREEVIEW*>(lParam);
        auto* entry = reinterpret_cast<IConnectorGroup*>(m_tree.GetItemData(tv->itemNew.hItem));
        if (entry != nullptr) {
            FillFromGroup(entry);
        } else {
            ClearRows();
            m_list.SetItemCount(0);
        }
        return TRUE;
    }
    if (hdr != nullptr && hdr->idFrom == IDC_LINKER_LIST && hdr->code == NM_CLICK) {
        const auto* item = reinterpret_cast<const NMITEMACTIVATE*>(lParam);
        OnRowClicked(item->iItem);
        return TRUE;
    }
    return CZorSkinPDialog::OnNotify(wParam, lParam, pResult);
}

BOOL CWriteLinkerVarDialog::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE)) {
        CWnd* focus = CWnd::GetFocus();
        if (pMsg->wParam == VK_RETURN && focus != nullptr &&
            (focus == &m_search || m_search.IsChild(focus)))
            m_search.OnEnter();
        // Neither key closes the dialog.
        return TRUE;
    }
    return CZorSkinPDialog::PreTranslateMessage(pMsg);
}

LRESULT CWriteLinkerVarDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == UM_LINK_SEARCH) {
        CString text;
        if (int(wParam) >= 0 && int(wParam) < m_search.GetCount())
            m_search.GetLBText(int(wParam), text);
        SearchRows(text);
        return 0;
    }
    return CZorSkinPDialog::WindowProc(message, wParam, lParam);
}

void CWriteLinkerVarDialog::OnDestroy() {
    ClearRows();
    if (m_list.GetSafeHwnd() != nullptr)
        m_list.SetItemCount(0);
    CZorSkinPDialog::OnDestroy();
}
