#include "groups/MultiSelectVarDialog.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/GroupMembership.h"
#include "table/TableResources.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

#include <afx/afxres.h>

#include <algorithm>
#include <vector>

namespace {

template <class T> CString NodeLabel(T* node) {
    CString name, description;
    node->GetName(name);
    node->GetDescription(description);
    if (description.IsEmpty())
        return name;
    // Descriptions are written in Chinese; shown in the user's language, as the frame's
    // tree shows them.
    CString label;
    label.Format("%s[%s]", name.GetString(), VarText::Translate(description).GetString());
    return label;
}

BOOL HasProjectChain() {
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    return workspace != nullptr && workspace->GetModuleList() != nullptr;
}

// The selected rows of a list, ascending.
std::vector<int> SelectedRows(const CListCtrl& list) {
    std::vector<int> rows;
    POSITION pos = list.GetFirstSelectedItemPosition();
    while (pos != nullptr)
        rows.push_back(list.GetNextSelectedItem(pos));
    std::sort(rows.begin(), rows.end());
    return rows;
}

BOOL Consecutive(const std::vector<int>& rows) {
    for (size_t i = 1; i < rows.size(); ++i)
        if (rows[i] != rows[i - 1] + 1)
            return FALSE;
    return TRUE;
}

struct ColumnDef {
    UINT stringId;
    int width;
};
const ColumnDef kLeftColumns[] = {{2011, 50}, {2013, 80}, {2014, 250}, {2016, 80},
                                  {2017, 80}, {2018, 80}, {2019, 50},  {2020, 80},
                                  {2021, 80}, {2022, 50}, {2023, 180}, {2024, 80}};
const ColumnDef kRightColumns[] = {{2011, 40}, {2013, 75}, {2141, 125}};

} // namespace

CMultiSelectVarDialog::CMultiSelectVarDialog(CWnd* pParent)
    : CZorSkinPDialog(IDD_MULTI_SELECT_VAR, pParent) {
    const HINSTANCE module = theApp.m_hResource;
    if (module != nullptr && AfxFindDialogTemplate(module, IDD_MULTI_SELECT_VAR) == nullptr)
        RegisterGroupDialogResources(module);
    theApp.AddLanguageListener(this);
}

CMultiSelectVarDialog::~CMultiSelectVarDialog() {
    theApp.RemoveLanguageListener(this);
    m_treeItems.DeleteAll();
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

BOOL CMultiSelectVarDialog::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    CLocalResource scope(theApp.m_hResource);
    m_tree.SubclassDlgItem(IDC_MSV_TREE, this);
    m_leftList.SubclassDlgItem(IDC_MSV_LEFT_LIST, this);
    m_rightList.SubclassDlgItem(IDC_MSV_RIGHT_LIST, this);
    m_leftList.cellText = [this](int row, int column) { return LeftText(row, column); };
    m_rightList.cellText = [this](int row, int column) { return RightText(row, column); };
    for (CChooserList* list : {&m_leftList, &m_rightList})
        list->SetExtendedStyle(list->GetExtendedStyle() | LVS_EX_FULLROWSELECT);
    SetupColumns();
    BuildTree();
    m_rightList.SetItemCountEx(m_rightRows.GetCount(), 0);
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    return TRUE;
}

void CMultiSelectVarDialog::OnDestroy() {
    m_treeItems.DeleteAll();
    m_leftRows.RemoveAll();
    CZorSkinPDialog::OnDestroy();
}

void CMultiSelectVarDialog::SetupColumns() {
    if (theApp.GetUiService() == nullptr)
        return;
    int column = 0;
    for (const ColumnDef& c : kLeftColumns)
        m_leftList.InsertColumn(column++, theApp.LoadText(c.stringId).GetString(), LVCFMT_LEFT,
                                c.width);
    column = 0;
    for (const ColumnDef& c : kRightColumns)
        m_rightList.InsertColumn(column++, theApp.LoadText(c.stringId).GetString(), LVCFMT_LEFT,
                                 c.width);
}

// ---------------------------------------------------------------- tree

int CMultiSelectVarDialog::TreeLevel() const {
    IHostDeviceModule* module = m_pStore != nullptr ? m_pStore->GetOwnerModule() : nullptr;
    return module != nullptr ? module->GetAccessLevel() : 0;
}

BOOL CMultiSelectVarDialog::IsGroupShown(IGroupNode* group, IHostDeviceModule* module, int level) {
    if (group == nullptr || module == nullptr || m_pStore == nullptr)
        return FALSE;
    std::vector<IVarObjEx*> members;
    CGroupMembership::Resolve(group, m_pStore, members);
    return CGroupMembership::IsGroupShown(group, members, level);
}

HTREEITEM CMultiSelectVarDialog::InsertRecordItem(const CString& text, int image, HTREEITEM parent,
                                                  int kind, void* object) {
    HTREEITEM item = m_tree.InsertItem(text.GetString(), image, image, parent);
    if (item == nullptr)
        return nullptr;
    auto* record = new CTreeItemData(kind, object);
    if (m_treeItems.Add(record, record))
        m_tree.SetItemData(item, reinterpret_cast<DWORD_PTR>(record));
    else
        delete record;
    return item;
}

HTREEITEM CMultiSelectVarDialog::AddGroupItem(IGroupNode* group, HTREEITEM parent,
                                              IHostDeviceModule* module, int level) {
    if (!IsGroupShown(group, module, level))
        return nullptr;
    HTREEITEM item = InsertRecordItem(NodeLabel(group), 2, parent, CTreeItemData::KindGroup, group);
    if (item != nullptr)
        for (int i = 0; i < group->GetChildCount(); ++i)
            AddGroupItem(group->GetChildAt(i), item, module, level);
    return item;
}

void CMultiSelectVarDialog::BuildTree() {
    m_images.Create(16, 16, ILC_COLOR32 | ILC_MASK, 3, 0);
    for (UINT icon : {IDI_TREE_FIXED, IDI_TREE_BRANCH, IDI_TREE_GROUP})
        m_images.Add(AfxFindIcon(theApp.m_hResource, icon));
    m_tree.SetImageList(&m_images, TVSIL_NORMAL);
    m_hRoot = m_tree.InsertItem(theApp.LoadText(IDS_TREE_ALL).GetString(), 0, 0, TVI_ROOT);
    IVarCatalog* catalog = m_pStore != nullptr ? m_pStore->GetStoreCatalog() : nullptr;
    IGroupSet* set = catalog != nullptr ? catalog->GetGroupSet() : nullptr;
    if (HasProjectChain() && theApp.GetProductDb() != nullptr && set != nullptr) {
        IHostDeviceModule* module = m_pStore->GetOwnerModule();
        const int level = TreeLevel();
        std::vector<CString> categorised;
        for (int c = 0; c < set->GetCategoryCount(); ++c) {
            IGroupCategory* category = set->GetCategoryAt(c);
            if (category == nullptr)
                continue;
            HTREEITEM categoryItem = InsertRecordItem(NodeLabel(category), 1, m_hRoot,
                                                      CTreeItemData::KindCategory, category);
            BOOL gotGroup = FALSE;
            for (int k = 0; k < category->GetChildCount(); ++k) {
                IGroupNode* child = category->GetChildAt(k);
                if (child == nullptr)
                    continue;
                CString name;
                child->GetName(name);
                categorised.push_back(name);
                if (categoryItem != nullptr &&
                    AddGroupItem(set->FindByName(name), categoryItem, module, level) != nullptr)
                    gotGroup = TRUE;
            }
            if (categoryItem != nullptr && !gotGroup) {
                auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(categoryItem));
                m_tree.DeleteItem(categoryItem);
                if (record != nullptr && m_treeItems.Remove(record))
                    delete record;
            }
        }
        for (int i = 0; i < set->GetCount(); ++i) {
            IGroupNode* group = set->GetAt(i);
            if (group == nullptr)
                continue;
            CString name;
            group->GetName(name);
            const bool inCategory =
                std::any_of(categorised.begin(), categorised.end(),
                            [&](const CString& other) { return other.CompareNoCase(name) == 0; });
            if (!inCategory)
                AddGroupItem(group, m_hRoot, module, level);
        }
    }
    m_tree.Expand(m_hRoot, TVE_EXPAND);
}

// ---------------------------------------------------------------- left rows

void CMultiSelectVarDialog::OfferLeft(IVarObjEx* var, int level) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || attr->GetAccessLevel() > level || !attr->IsTransferable())
        return;
    m_leftRows.Add(var, var); // refused when the rows hold it already
}

void CMultiSelectVarDialog::WalkGroup(IGroupNode* group, int level) {
    if (group == nullptr)
        return;
    std::vector<IVarObjEx*> members;
    CGroupMembership::Resolve(group, m_pStore, members);
    for (IVarObjEx* var : members)
        OfferLeft(var, level);
    for (int i = 0; i < group->GetChildCount(); ++i)
        WalkGroup(group->GetChildAt(i), level);
}

void CMultiSelectVarDialog::FillLeftRows(HTREEITEM item) {
    IHostProductDb* products = theApp.GetProductDb();
    if (products == nullptr || m_pStore == nullptr)
        return;
    CString version;
    m_pStore->GetVersionText(version);
    IVarCatalog* catalog = products->GetProductCatalog(m_pStore->GetElecLabel(),
                                                       m_pStore->GetElecLabelSize(), version);
    if (catalog == nullptr || catalog->GetAxisList() == nullptr)
        return;
    m_leftRows.RemoveAll();
    const int level = TreeLevel();
    auto* record = item != nullptr && item != m_hRoot
                       ? reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item))
                       : nullptr;
    if (record == nullptr) {
        for (int i = 0; i < m_pStore->GetCount(); ++i)
            OfferLeft(m_pStore->GetAt(i), level);
    } else if (record->m_nKind == CTreeItemData::KindGroup) {
        WalkGroup(record->GetGroup(), level);
    } else if (record->m_nKind == CTreeItemData::KindCategory) {
        IGroupCategory* category = record->GetCategory();
        IGroupSet* fixed = m_pStore->GetGroupRoot(0);
        for (int k = 0; category != nullptr && fixed != nullptr && k < category->GetChildCount();
             ++k) {
            IGroupNode* child = category->GetChildAt(k);
            if (child == nullptr)
                continue;
            CString name;
            child->GetName(name);
            WalkGroup(fixed->FindByName(name), level);
        }
    }
    if (m_leftList.GetSafeHwnd() != nullptr) {
        m_leftList.SetItemState(-1, 0, LVIS_SELECTED);
        m_leftList.SetItemCountEx(m_leftRows.GetCount(), 0);
        m_leftList.Invalidate(FALSE);
    }
}

// ---------------------------------------------------------------- right rows

void CMultiSelectVarDialog::SetChosenVars(const CVarRows& vars) {
    m_rightRows = vars;
    if (m_rightList.GetSafeHwnd() != nullptr)
        m_rightList.SetItemCountEx(m_rightRows.GetCount(), 0);
}

void CMultiSelectVarDialog::GetChosenVars(CVarRows& vars) const {
    for (int i = 0; i < m_rightRows.GetCount(); ++i) {
        IVarObjEx* var = m_rightRows.GetAt(i);
        if (var != nullptr)
            vars.Add(var, var);
    }
}

void CMultiSelectVarDialog::AddSelected() {
    for (int row : SelectedRows(m_leftList)) {
        IVarObjEx* var = m_leftRows.GetAt(row);
        if (var != nullptr)
            m_rightRows.Add(var, var);
    }
    m_rightList.SetItemCountEx(m_rightRows.GetCount(), LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    m_rightList.Invalidate(FALSE);
}

void CMultiSelectVarDialog::RemoveSelected() {
    CVarRows gone;
    for (int row : SelectedRows(m_rightList)) {
        IVarObjEx* var = m_rightRows.GetAt(row);
        if (var != nullptr)
            gone.Add(var, var);
    }
    for (int i = 0; i < gone.GetCount(); ++i)
        m_rightRows.Remove(gone.GetAt(i));
    m_rightList.SetItemState(-1, 0, LVIS_SELECTED);
    m_rightList.SetItemCountEx(m_rightRows.GetCount(), 0);
    m_rightList.Invalidate(FALSE);
}

void CMultiSelectVarDialog::MoveUp() {
    const std::vector<int> rows = SelectedRows(m_rightList);
    if (rows.empty() || rows.front() == 0 || !Consecutive(rows))
        return;
    const int first = rows.front();
    const int last = rows.back();
    // The row above the block goes behind it: the block moves up by one.
    IVarObjEx* above = m_rightRows.GetAt(first - 1);
    m_rightRows.RemoveAt(first - 1);
    m_rightRows.InsertAt(last, above, above);
    m_rightList.SetItemState(first - 1, LVIS_SELECTED, LVIS_SELECTED);
    m_rightList.SetItemState(last, 0, LVIS_SELECTED);
    m_rightList.SetItemCountEx(m_rightRows.GetCount(), 0);
    m_rightList.Invalidate(FALSE);
}

void CMultiSelectVarDialog::MoveDown() {
    const std::vector<int> rows = SelectedRows(m_rightList);
    if (rows.empty() || rows.back() >= m_rightRows.GetCount() - 1 || !Consecutive(rows))
        return;
    const int first = rows.front();
    const int last = rows.back();
    IVarObjEx* below = m_rightRows.GetAt(last + 1);
    m_rightRows.RemoveAt(last + 1);
    m_rightRows.InsertAt(first, below, below);
    m_rightList.SetItemState(first, 0, LVIS_SELECTED);
    m_rightList.SetItemState(last + 1, LVIS_SELECTED, LVIS_SELECTED);
    m_rightList.SetItemCountEx(m_rightRows.GetCount(), 0);
    m_rightList.Invalidate(FALSE);
}

// ---------------------------------------------------------------- cell texts

CString CMultiSelectVarDialog::LeftText(int row, int column) {
    IVarObjEx* var = m_leftRows.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    IHostVarUtil* util = theApp.GetVarUtil();
    CString text;
    auto limit = [&](const Variant& value, BOOL linked) {
        CString number;
        if (util != nullptr)
            util->FormatVariant(number, value, attr->GetDecimals(), 0);
        if (!linked)
            return number;
        CString bracketed;
        bracketed.Format("[%s]", number.GetString());
        return bracketed;
    };
    switch (column) {
    case 0:
        text.Format("%03d", row + 1);
        break;
    case 1:
        attr->GetCode(text);
        break;
    case 2:
        attr->GetName(text);
        text = text.Left(259);
        break;
    case 3:
        text = limit(attr->GetFactoryValue(), FALSE);
        break;
    case 4:
        text = limit(attr->GetMinValue(), attr->IsMinLinked());
        break;
    case 5:
        text = limit(attr->GetMaxValue(), attr->IsMaxLinked());
        break;
    case 6:
        attr->GetUnit(text);
        text = VarText::Translate(text);
        break;
    case 7:
        text = VarText::Translate(VarText::ModifyModeText(attr));
        break;
    case 8: {
        static const char* const kFormats[] = {"十进制", "十六进制", "标幺值"};
        const int format = attr->GetDisplayFormat();
        if (format >= 0 && format < 3)
            text = VarText::Translate(kFormats[format]);
        break;
    }
    case 9:
        text.Format("%d", int(attr->GetAddress()));
        break;
    case 10:
        if (util != nullptr)
            util->DataTypeName(text, attr->GetDataType());
        break;
    case 11:
        text.Format("%d", attr->GetDecimals());
        break;
    default:
        break;
    }
    return text;
}

CString CMultiSelectVarDialog::RightText(int row, int column) {
    IVarObjEx* var = m_rightRows.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    CString text;
    switch (column) {
    case 0:
        text.Format("%d", row + 1);
        break;
    case 1:
        var->GetInstanceCode(text);
        break;
    case 2:
        attr->GetName(text);
        break;
    default:
        break;
    }
    return text;
}

// ---------------------------------------------------------------- messages

BOOL CMultiSelectVarDialog::OnCommand(WPARAM wParam, LPARAM lParam) {
    if (HIWORD(wParam) == BN_CLICKED) {
        switch (LOWORD(wParam)) {
        case IDC_MSV_ADD:
            AddSelected();
            return TRUE;
        case IDC_MSV_REMOVE:
            RemoveSelected();
            return TRUE;
        case IDC_MSV_UP:
            MoveUp();
            return TRUE;
        case IDC_MSV_DOWN:
            MoveDown();
            return TRUE;
        default:
            break;
        }
    }
    return CZorSkinPDialog::OnCommand(wParam, lParam);
}

BOOL CMultiSelectVarDialog::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (header != nullptr && header->idFrom == IDC_MSV_TREE && header->code == TVN_SELCHANGED) {
        FillLeftRows(reinterpret_cast<const NMTREEVIEW*>(lParam)->itemNew.hItem);
        return TRUE;
    }
    if (header != nullptr && header->idFrom == IDC_MSV_LEFT_LIST && header->code == NM_DBLCLK) {
        AddSelected();
        return TRUE;
    }
    return CZorSkinPDialog::OnNotify(wParam, lParam, pResult);
}

BOOL CMultiSelectVarDialog::PreTranslateMessage(MSG* pMsg) {
    // Enter and Escape inside the picker must not end the group dialog around it.
    if (pMsg != nullptr && pMsg->message == WM_KEYDOWN &&
        (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE))
        return TRUE;
    return CZorSkinPDialog::PreTranslateMessage(pMsg);
}

void CMultiSelectVarDialog::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}
