// The group tree of the frame and the walks that turn groups into variable lists.
#include "module/host/VarAttrCodes.h"
#include "table/VarTable.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/TableResources.h"
#include "table/VarCollector.h"

namespace {

// The host's descriptions are written in Chinese; the tree shows them in the user's
// language, as the list shows parameter names.
CString Shown(const CString& text) {
    IHostUiService* ui = theApp.GetUiService();
    if (ui == nullptr || text.IsEmpty())
        return text;
    CString translated;
    ui->TranslateText(translated, text);
    return translated;
}

template <class T> CString ItemLabel(T* node) {
    CString name, description;
    node->GetName(name);
    node->GetDescription(description);
    description = Shown(description);
    if (description.IsEmpty())
        return name;
    CString label;
    label.Format("%s[%s]", name.GetString(), description.GetString());
    return label;
}

BOOL HasModuleList() {
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    return workspace != nullptr && workspace->GetModuleList() != nullptr;
}

} // namespace

BOOL CVarTable::IsGroupShown(IGroupNode* group) {
    return Membership().IsGroupShown(group, GetAccessLevel());
}

HTREEITEM CVarTable::InsertRecordItem(const CString& text, int image, HTREEITEM parent, int kind,
                                      void* object) {
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

void CVarTable::AddGroupChildren(IGroupNode* group, HTREEITEM parent, BOOL filtered) {
    for (int i = 0; i < group->GetChildCount(); ++i)
        AddGroupItem(group->GetChildAt(i), parent, filtered);
}

HTREEITEM CVarTable::AddGroupItem(IGroupNode* group, HTREEITEM parent, BOOL filtered) {
    if (group == nullptr || (filtered && !IsGroupShown(group)))
        return nullptr;
    HTREEITEM item = InsertRecordItem(ItemLabel(group), 2, parent, CTreeItemData::KindGroup, group);
    if (item != nullptr)
        AddGroupChildren(group, item, filtered);
    return item;
}

void CVarTable::BuildTree() {
    // A new tree follows a reload or a change of level: members are resolved afresh.
    m_membership.Drop();
    if (m_tree.GetSafeHwnd() == nullptr)
        return;
    IHostUiService* ui = theApp.GetUiService();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (ui == nullptr || helper == nullptr)
        return;
    CLocalResource scope(theApp.m_hResource);
    CString rootText, modifiedText, customText, allText;
    ui->GetString(rootText, theApp.m_hResource, IDS_TREE_ROOT, 0);
    ui->GetString(modifiedText, theApp.m_hResource, IDS_TREE_MODIFIED, 0);
    ui->GetString(customText, theApp.m_hResource, IDS_TREE_CUSTOM, 0);
    ui->GetString(allText, theApp.m_hResource, IDS_TREE_ALL, 0);

    m_bRebuilding = TRUE;
    m_hRoot = m_tree.InsertItem(rootText.GetString(), 0, 0, TVI_ROOT);
    m_hModified = m_tree.InsertItem(modifiedText.GetString(), 0, 0, m_hRoot);
    m_hCustom = m_tree.InsertItem(customText.GetString(), 0, 0, m_hRoot);
    m_hAll = m_tree.InsertItem(allText.GetString(), 0, 0, m_hRoot);
    m_tree.SetItemHeight(SHORT(18 * helper->GetUiScale()));

    // The user's own groups are shown whatever they hold.
    IVarStore* store = GetVarList();
    if (IGroupSet* custom = store != nullptr ? store->GetGroupRoot(1) : nullptr) {
        for (int i = 0; i < custom->GetCount(); ++i)
            AddGroupItem(custom->GetAt(i), m_hCustom, FALSE);
    }

    IVarCatalog* catalog = m_pModule != nullptr ? m_pModule->GetVarCatalog() : nullptr;
    if (HasModuleList() && theApp.GetProductDb() != nullptr && catalog != nullptr) {
        if (IGroupSet* set = catalog->GetGroupSet()) {
            std::vector<CString> categorised;
            for (int c = 0; c < set->GetCategoryCount(); ++c) {
                IGroupCategory* category = set->GetCategoryAt(c);
                if (category == nullptr)
                    continue;
                HTREEITEM categoryItem = InsertRecordItem(ItemLabel(category), 1, m_hAll,
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
                        AddGroupItem(set->FindByName(name), categoryItem, TRUE) != nullptr)
                        gotGroup = TRUE;
                }
                if (categoryItem != nullptr && !gotGroup) {
                    auto* record =
                        reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(categoryItem));
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
                BOOL inCategory = FALSE;
                for (const CString& other : categorised)
                    if (other.CompareNoCase(name) == 0) {
                        inCategory = TRUE;
                        break;
                    }
                if (!inCategory)
                    AddGroupItem(group, m_hAll, TRUE);
            }
        }
        IHostAxisList* axes = catalog->GetAxisList();
        if (axes != nullptr && axes->IsValid()) {
            for (int a = 0; a < axes->GetCount(); ++a) {
                IHostAxis* axis = axes->GetAt(a);
                if (axis == nullptr)
                    continue;
                CString name;
                axis->GetName(name);
                HTREEITEM axisItem =
                    InsertRecordItem(Shown(name), 1, m_hAll, CTreeItemData::KindAxis, axis);
                if (axisItem == nullptr)
                    continue;
                if (IGroupSet* groups = axis->GetGroupSet())
                    for (int i = 0; i < groups->GetCount(); ++i)
                        AddGroupItem(groups->GetAt(i), axisItem, TRUE);
                m_tree.Expand(axisItem, TVE_EXPAND);
            }
        }
    }

    m_tree.Expand(m_hRoot, TVE_EXPAND);
    m_tree.Expand(m_hAll, TVE_EXPAND);
    m_tree.Expand(m_hCustom, TVE_EXPAND);
    m_tree.EnsureVisible(m_hRoot);
    m_bRebuilding = FALSE;
    if (!RestoreTreeState(m_hRoot))
        m_tree.SelectItem(m_hAll);
    FitTreeWidth();
}

namespace {

// Depth first, in tree order, `item` itself first.
template <class F> void WalkTree(CTreeCtrl& tree, HTREEITEM item, F&& visit) {
    if (item == nullptr)
        return;
    visit(item);
    for (HTREEITEM child = tree.GetChildItem(item); child != nullptr;
         child = tree.GetNextSiblingItem(child))
        WalkTree(tree, child, visit);
}

} // namespace

void CVarTable::SaveTreeState(HTREEITEM parent) {
    if (m_tree.GetSafeHwnd() == nullptr)
        return;
    WalkTree(m_tree, parent, [this](HTREEITEM item) {
        const CString text = m_tree.GetItemText(item);
        if (m_treeState.count(text) != 0)
            return; // of several items with one text, the first one counts
        TreeState state;
        state.selected = m_tree.GetItemState(item, TVIS_SELECTED) & TVIS_SELECTED;
        state.expanded = m_tree.GetItemState(item, TVIS_EXPANDED) & TVIS_EXPANDED;
        m_treeState[text] = state;
    });
}

BOOL CVarTable::RestoreTreeState(HTREEITEM parent) {
    if (m_tree.GetSafeHwnd() == nullptr)
        return FALSE;
    BOOL selected = FALSE;
    WalkTree(m_tree, parent, [this, &selected](HTREEITEM item) {
        auto found = m_treeState.find(m_tree.GetItemText(item));
        if (found == m_treeState.end())
            return;
        // The modified list would ask to synchronise on its own; never land there.
        if (found->second.selected != 0 && item != m_hModified) {
            m_tree.SelectItem(item);
            selected = TRUE;
        }
        m_tree.Expand(item, found->second.expanded != 0 ? TVE_EXPAND : TVE_COLLAPSE);
    });
    return selected;
}

void CVarTable::DeleteTreeRecords() {
    for (int i = 0; i < m_treeItems.GetCount(); ++i)
        delete m_treeItems.GetAt(i);
    m_treeItems.RemoveAll();
}

BOOL CVarTable::IsInSubtree(HTREEITEM item, HTREEITEM top) const {
    if (item == nullptr || top == nullptr || m_tree.GetSafeHwnd() == nullptr)
        return FALSE;
    for (HTREEITEM at = item; at != nullptr; at = m_tree.GetParentItem(at))
        if (at == top)
            return TRUE;
    return FALSE;
}

BOOL CVarTable::IsInCustomSubtree(HTREEITEM item) const {
    return IsInSubtree(item, m_hCustom);
}

BOOL CVarTable::IsInModifiedSubtree(HTREEITEM item) const {
    return IsInSubtree(item, m_hModified);
}

// ---------------------------------------------------------------- collection

void CVarTable::CollectGroupVars(IGroupNode* group, std::vector<IVarObjEx*>& list,
                                 BOOL includeFactory) {
    if (group == nullptr || m_pModule == nullptr)
        return;
    // Any group, the user's own included: resolved now, not kept.
    CVarCollector(Membership(), GetAccessLevel(), IsProductLine13(m_pModule), FALSE)
        .CollectTransfer(group, includeFactory, list);
}

void CVarTable::CollectAllVars(std::vector<IVarObjEx*>& list, BOOL includeFactory) {
    IVarStore* store = GetVarList();
    if (store == nullptr || m_pModule == nullptr)
        return;
    CVarCollector collector(Membership(), GetAccessLevel(), IsProductLine13(m_pModule));
    CVarCollector::ForEachDeviceGroup(
        store, [&](IGroupNode* group) { collector.CollectTransfer(group, includeFactory, list); });
}

// ---------------------------------------------------------------- selection and menus

void CVarTable::OnTreeSelection(HTREEITEM item) {
    if (!HasModuleList() || theApp.GetProductDb() == nullptr || m_pModule == nullptr ||
        theApp.GetVarUtil() == nullptr)
        return;
    IVarCatalog* catalog = m_pModule->GetVarCatalog();
    if (catalog == nullptr || catalog->GetAxisList() == nullptr)
        return;
    lastSelection = item;
    if (item == nullptr || item == m_hRoot) {
        inCustomOrModified = 0;
        m_pCurrentGroup = nullptr;
        return;
    }
    inCustomOrModified = IsInCustomSubtree(item) || IsInModifiedSubtree(item) ? 1 : 0;
    IVarStore* varList = GetVarList();
    auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item));
    if (record == nullptr) {
        inCustomOrModified = 0;
        m_pCurrentGroup = nullptr;
        if (item == m_hAll) {
            if (CVarTablePage* page = GetStylePage())
                page->ShowAllParameters(varList);
        } else if (item == m_hModified) {
            ShowModifiedWithMode(contextMenuOpen == 0 && promptOnModified != 0 ? 1 : 0);
        } else if (item == m_hCustom) {
            inCustomOrModified = 1;
            if (CVarTablePage* page = GetStylePage())
                page->ShowCustomRoot(varList);
        }
        return;
    }
    CVarTablePage* page = GetStylePage();
    switch (record->m_nKind) {
    case CTreeItemData::KindAxis:
        m_pCurrentGroup = nullptr;
        if (page != nullptr)
            page->ShowAxis(record->GetAxis(), varList);
        break;
    case CTreeItemData::KindGroup:
        m_pCurrentGroup = record->GetGroup();
        if (page != nullptr)
            page->ShowGroup(record->GetGroup(), varList);
        break;
    case CTreeItemData::KindCategory:
        m_pCurrentGroup = nullptr;
        if (page != nullptr)
            page->ShowCategory(record->GetCategory(), varList);
        break;
    default:
        break;
    }
}

void CVarTable::ShowModifiedWithMode(int mode) {
    CVarTablePage* page = GetStylePage();
    if (page == nullptr)
        return;
    if (mode == 1) {
        CString question = "是否要从驱动器同步参数？";
        CString caption = "提示";
        if (IHostUiService* ui = theApp.GetUiService()) {
            ui->TranslateText(question, CString("是否要从驱动器同步参数？"));
            ui->TranslateText(caption, CString("提示"));
        }
        const int answer = MessageBox(GetSafeHwnd(), question.GetString(), caption.GetString(),
                                      MB_YESNO | MB_ICONWARNING);
        mode = answer == IDYES ? 2 : 0;
    }
    page->ShowModified(GetVarList(), mode);
}

BOOL CVarTable::IsTreeCommandEnabled(UINT id, HTREEITEM item) const {
    switch (id) {
    case ID_SHOW_MODIFIED_REFRESH:
    case ID_TOGGLE_MODIFIED_PROMPT:
        return TRUE;
    case ID_NEW_CUSTOM_GROUP:
    case ID_LOAD_CUSTOM_GROUP:
    case ID_ADD_TO_CUSTOM_GROUP:
    case ID_EXPORT_ZXD:
        return TRUE;
    case ID_DELETE_CUSTOM_GROUP:
    case ID_EDIT_CUSTOM_GROUP:
        // Only on a custom group, not on the branch itself.
        return IsInCustomSubtree(item) && item != m_hCustom;
    case ID_SAVE_ROWS_AS:
        return IsInCustomSubtree(item) && item != m_hCustom ? TRUE : FALSE;
    default:
        break;
    }
    return FALSE;
}

void CVarTable::OnTreeContextMenu(CPoint point) {
    if (m_tree.GetSafeHwnd() == nullptr)
        return;
    contextMenuOpen = 1;
    HTREEITEM item = m_tree.HitTest(point);
    if (item != nullptr && item != m_tree.GetSelectedItem())
        m_tree.SelectItem(item); // runs OnTreeSelection now, without the sync question
    UINT menuId = 0;
    if (IsInCustomSubtree(item))
        menuId = IDR_MENU_CUSTOM_TREE;
    else if (IsInModifiedSubtree(item))
        menuId = IDR_MENU_MODIFIED_TREE;
    if (menuId != 0) {
        CLocalResource scope(theApp.m_hResource);
        CZorSkinPPopupMenu menu;
        if (menu.LoadMenu(menuId)) {
            if (IHostUiService* ui = theApp.GetUiService())
                ui->TranslateMenu(menu.GetSafeHmenu());
            if (menuId == IDR_MENU_MODIFIED_TREE) {
                CString text = promptOnModified ? "不再提示更新" : "恢复提示更新";
                if (IHostUiService* ui = theApp.GetUiService())
                    ui->TranslateText(text, CString(text));
                menu.ModifyMenu(ID_TOGGLE_MODIFIED_PROMPT, MF_BYCOMMAND | MF_STRING,
                                ID_TOGGLE_MODIFIED_PROMPT, text.GetString());
            }
            for (int i = 0; i < menu.GetMenuItemCount(); ++i) {
                const UINT id = menu.GetMenuItemID(i);
                if (id != 0 && id != UINT(-1))
                    menu.EnableMenuItem(id, IsTreeCommandEnabled(id, item)
                                                ? MF_BYCOMMAND | MF_ENABLED
                                                : MF_BYCOMMAND | MF_GRAYED);
            }
            CPoint screen = point;
            m_tree.ClientToScreen(&screen);
            const UINT command = menu.Track(this, screen);
            contextMenuOpen = 0;
            if (command != 0 && IsTreeCommandEnabled(command, item))
                OnFrameCommand(command);
            return;
        }
    }
    contextMenuOpen = 0;
}

BOOL CVarTable::OnFrameCommand(UINT id) {
    switch (id) {
    case ID_TOGGLE_MODIFIED_PROMPT:
        promptOnModified = promptOnModified ? 0 : 1;
        return TRUE;
    case ID_SHOW_MODIFIED_REFRESH:
        ShowModifiedWithMode(2);
        return TRUE;
    case ID_NEW_CUSTOM_GROUP:
        NewCustomGroup();
        return TRUE;
    case ID_DELETE_CUSTOM_GROUP:
        DeleteCustomGroup();
        return TRUE;
    case ID_EDIT_CUSTOM_GROUP:
        EditCustomGroup();
        return TRUE;
    case ID_LOAD_CUSTOM_GROUP:
        LoadCustomGroup();
        return TRUE;
    case ID_ADD_TO_CUSTOM_GROUP:
        AddModifiedToCustomGroup();
        return TRUE;
    case ID_SAVE_ROWS_AS:
        if (CVarTablePage* page = GetStylePage())
            page->SaveRowsAs();
        return TRUE;
    case ID_EXPORT_ZXD:
        busyExporting = 1;
        if (CVarTablePage* page = GetStylePage())
            page->ExportZxd();
        busyExporting = 0;
        return TRUE;
        return TRUE;
    case ID_OLD_PROTOCOL_CHECK:
        OnOldProtocolCommand();
        return TRUE;
    default:
        return FALSE;
    }
}

void CVarTable::RetranslateTree() {
    IHostUiService* ui = theApp.GetUiService();
    if (m_tree.GetSafeHwnd() == nullptr || ui == nullptr)
        return;
    // Texts are renamed in place: selection and expansion stay as the user left them.
    const std::pair<HTREEITEM, UINT> fixed[] = {{m_hRoot, IDS_TREE_ROOT},
                                                {m_hModified, IDS_TREE_MODIFIED},
                                                {m_hCustom, IDS_TREE_CUSTOM},
                                                {m_hAll, IDS_TREE_ALL}};
    for (const auto& [item, id] : fixed) {
        CString text;
        if (item != nullptr && ui->GetString(text, theApp.m_hResource, id, 0))
            m_tree.SetItemText(item, text.GetString());
    }
    WalkTree(m_tree, m_hRoot, [this](HTREEITEM item) {
        const auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item));
        if (record == nullptr)
            return;
        CString label;
        if (IGroupNode* group = record->GetGroup())
            label = ItemLabel(group);
        else if (IGroupCategory* category = record->GetCategory())
            label = ItemLabel(category);
        else if (IHostAxis* axis = record->GetAxis()) {
            axis->GetName(label);
            label = Shown(label);
        }
        m_tree.SetItemText(item, label.GetString());
    });
    FitTreeWidth();
}
