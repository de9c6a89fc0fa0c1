#include "pages/VarTablePageBase.h"
#include "module/host/VarAttrCodes.h"

#include "module/ParmiraApp.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostRefreshItem.h"
#include "module/host/IHostRefreshQuery.h"
#include "module/host/IHostRefreshService.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/VarCollector.h"
#include "table/VarTable.h"

CVarTablePageBase::CVarTablePageBase(UINT nIDTemplate, BOOL firstPage)
    : CVarTablePage(nIDTemplate), m_bFirstPage(firstPage) {}

CVarTablePageBase::~CVarTablePageBase() {
    delete m_pTranslator;
    m_pTranslator = nullptr;
    m_searchHistory.DeleteAll();
}

// ---------------------------------------------------------------- collection
void CVarTablePageBase::ShowAllParameters(IVarStore* varList) {
    Collect(varList, TRUE);
}

void CVarTablePageBase::ShowGroup(IGroupNode* group, IVarStore* varList) {
    m_shownVars.RemoveAll();
    m_groupVars.RemoveAll();
    if (m_pTable != nullptr && group != nullptr && varList != nullptr)
        WalkGroup(group, varList, m_pTable->GetAccessLevel());
    FinishCollection(FALSE, TRUE);
}

void CVarTablePageBase::ShowAxis(IHostAxis* axis, IVarStore* varList) {
    m_shownVars.RemoveAll();
    m_groupVars.RemoveAll();
    IGroupSet* set = axis != nullptr ? axis->GetGroupSet() : nullptr;
    if (set != nullptr)
        WalkGroups(varList, TRUE, [set](const std::function<void(IGroupNode*)>& visit) {
            for (int i = 0; i < set->GetCount(); ++i)
                visit(set->GetAt(i));
        });
    FinishCollection(FALSE, TRUE);
}

void CVarTablePageBase::ShowCategory(IGroupCategory* category, IVarStore* varList) {
    m_shownVars.RemoveAll();
    m_groupVars.RemoveAll();
    IGroupSet* root = varList != nullptr ? varList->GetGroupRoot(0) : nullptr;
    if (category != nullptr && root != nullptr)
        WalkGroups(varList, TRUE, [category, root](const std::function<void(IGroupNode*)>& visit) {
            for (int i = 0; i < category->GetChildCount(); ++i) {
                IGroupNode* child = category->GetChildAt(i);
                if (child == nullptr)
                    continue;
                CString name;
                child->GetName(name);
                if (IGroupNode* group = root->FindByName(name))
                    visit(group);
            }
        });
    FinishCollection(FALSE, TRUE);
}

void CVarTablePageBase::ShowCustomRoot(IVarStore* varList) {
    // The group rows stay those of the previous selection: a search here looks at them.
    m_shownVars.RemoveAll();
    IGroupSet* root = varList != nullptr ? varList->GetGroupRoot(1) : nullptr;
    if (m_pTable != nullptr && root != nullptr) {
        for (int i = 0; i < root->GetMemberCount(); ++i) {
            CString key;
            if (!root->GetMemberAt(i, key))
                continue;
            IVarObjEx* var = varList->FindByCode(key);
            if (var != nullptr && var->GetAttr() != nullptr)
                AddRow(var, FALSE);
        }
    }
    FinishCollection(FALSE, TRUE);
}

void CVarTablePageBase::ShowModified(IVarStore*, int mode) {
    m_listFilter = LIST_FILTER_MODIFIED;
    // Synchronising: the drive's values are read first, and the list follows when the
    // upload ends (OnModuleUploaded refills with the filter still set).
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    IHostTransferService* transfer = theApp.GetTransferService();
    if (mode == 2 && module != nullptr && transfer != nullptr) {
        CString key;
        module->GetModuleKey(key);
        SubscribeUpload();
        if (transfer->UploadModule(GetSafeHwnd(), key))
            return;
        UnsubscribeUpload();
        m_listFilter = LIST_FILTER_MODIFIED;
    }
    RefillAll();
    m_listFilter = LIST_FILTER_ALL;
    if (m_pTable != nullptr)
        m_pTable->PostVarCount(FALSE, m_shownVars.GetCount());
}

void CVarTablePageBase::RefillAll() {
    m_shownVars.RemoveAll();
    if (m_pTable != nullptr)
        WalkAll(m_pTable->GetVarList());
    FinishCollection(FALSE, m_bFirstPage);
}

void CVarTablePageBase::Collect(IVarStore* varList, BOOL all) {
    m_shownVars.RemoveAll();
    m_groupVars.RemoveAll();
    WalkAll(varList);
    FinishCollection(all, TRUE);
}

void CVarTablePageBase::WalkAll(IVarStore* varList) {
    WalkGroups(varList, TRUE, [varList](const std::function<void(IGroupNode*)>& visit) {
        CVarCollector::ForEachDeviceGroup(varList, visit);
    });
}

void CVarTablePageBase::WalkGroup(IGroupNode* group, IVarStore* varList, int) {
    // Perhaps one of the user's groups: its members are resolved now, not kept.
    WalkGroups(varList, FALSE,
               [group](const std::function<void(IGroupNode*)>& visit) { visit(group); });
}

void CVarTablePageBase::WalkGroups(
    IVarStore* varList, BOOL device,
    const std::function<void(const std::function<void(IGroupNode*)>&)>& groups) {
    if (m_pTable == nullptr || varList == nullptr)
        return;
    const int level = m_pTable->GetAccessLevel();
    const BOOL line13 =
        !m_bFirstPage && level == 0 && m_pTable->IsProductLine13(m_pTable->GetModule());
    CGroupMembership own;
    CGroupMembership* membership = &m_pTable->Membership();
    if (membership->GetStore() != varList) {
        own.SetStore(varList);
        membership = &own;
        device = FALSE;
    }
    CVarCollector collector(*membership, level, line13, device);
    IVarCatalog* catalog = m_pTable->GetRowCatalog();
    // A new selection starts both lists empty and gives them the same rows: the group rows
    // are then copied once rather than taken one by one.
    const BOOL copyGroup = m_shownVars.IsEmpty() && m_groupVars.IsEmpty();
    const auto row = [&](IVarObjEx* var, IVarAttr* attr) {
        if (PassesFilter(var, attr))
            AddRow(var, attr, !copyGroup, catalog, level);
    };
    groups([&](IGroupNode* group) { collector.WalkPageRows(group, m_bFirstPage, row); });
    if (copyGroup)
        m_groupVars = m_shownVars;
}

BOOL CVarTablePageBase::PassesFilter(IVarObjEx* var, IVarAttr* attr) const {
    if (m_listFilter == LIST_FILTER_ALL)
        return TRUE;
    if (m_listFilter == LIST_FILTER_CHECKED)
        return var->IsChecked() ? TRUE : FALSE;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return FALSE;
    switch (m_listFilter) {
    case LIST_FILTER_SET_NOT_FACTORY: {
        const Variant set = var->GetSetValue();
        return !set.IsEmpty() && !util->VariantEqualsExact(set, attr->GetFactoryValue());
    }
    case LIST_FILTER_SET_NOT_CURRENT: {
        const Variant set = var->GetSetValue();
        return !set.IsEmpty() && !util->VariantEqualsExact(set, var->GetValue());
    }
    case LIST_FILTER_MODIFIED: {
        const Variant current = var->GetValue();
        return !current.IsEmpty() && !util->VariantEqualsExact(current, attr->GetFactoryValue()) &&
               attr->IsChangeTracked();
    }
    default:
        return TRUE;
    }
}

void CVarTablePageBase::AddRow(IVarObjEx* var, BOOL toGroup) {
    IVarAttr* attr = var->GetAttr();
    if (m_pTable != nullptr && attr != nullptr)
        AddRow(var, attr, toGroup, m_pTable->GetRowCatalog(), m_pTable->GetAccessLevel());
}

void CVarTablePageBase::AddRow(IVarObjEx* var, IVarAttr* attr, BOOL toGroup, IVarCatalog* catalog,
                               int level) {
    if (attr->GetAccessLevel() > level || !CVarCollector::IsCatalogVar(catalog, var))
        return;
    m_shownVars.Add(var, var);
    if (toGroup)
        m_groupVars.Add(var, var);
}

void CVarTablePageBase::FinishCollection(BOOL setTotal, BOOL postCount) {
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() != nullptr) {
        list.CloseEditors(-1);
        list.SetItemCountEx(m_shownVars.GetCount(), 0);
        list.Invalidate(FALSE);
    }
    if (postCount && m_pTable != nullptr)
        m_pTable->PostVarCount(setTotal, m_shownVars.GetCount());
    PrepareSearchWhenIdle();
}

void CVarTablePageBase::CollectShown(std::vector<IVarObjEx*>& list) const {
    const std::vector<IVarObjEx*>& rows = m_shownVars.GetArray();
    list.insert(list.end(), rows.begin(), rows.end());
}

// ---------------------------------------------------------------- refresh
void CVarTablePageBase::RepaintList() {
    // Values change a few cells at a time; only those are painted again.
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() != nullptr)
        list.InvalidateChangedCells();
}

void CVarTablePageBase::AddRefreshItem(IHostRefreshQuery* query, UINT address, int type,
                                       int length) {
    IHostRefreshItem* item = query->NewItem();
    if (item == nullptr)
        return;
    item->SetAddress(address);
    item->SetDataType(type);
    item->SetLength(length);
    if (!query->AddItem(item))
        delete item;
}

void CVarTablePageBase::SubmitRefreshQuery() {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    CString key;
    if (module != nullptr) {
        module->GetModuleKey(key);
        if (!module->IsOnline())
            return;
    }
    IHostRefreshService* refresh = theApp.GetRefreshService();
    IHostRefreshQuery* query = refresh != nullptr ? refresh->NewQuery() : nullptr;
    if (query == nullptr)
        return;
    query->SetKind(1);
    query->SetModuleKey(key);
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() != nullptr) {
        // The rows on screen and one more, so a partly shown last row is read too.
        const int top = list.GetTopIndex();
        const int end = std::min(top + list.GetCountPerPage() + 1, m_shownVars.GetCount());
        for (int row = top; row < end; ++row) {
            IVarObjEx* var = m_shownVars.GetAt(row);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr != nullptr)
                AddRefreshItem(query, attr->GetAddress(), attr->GetDataType(),
                               attr->GetValueLength());
        }
    }
    m_linkedVars.Walk([&](IVarObjEx* var) {
        if (IVarAttr* attr = var->GetAttr())
            AddRefreshItem(query, attr->GetAddress(), attr->GetDataType(), attr->GetValueLength());
    });
    m_linkedVars.RemoveAll();
    if (m_bFirstPage && module != nullptr) {
        IHostDeviceHelper* helper = theApp.GetDeviceHelper();
        IVarObjEx* authority =
            helper != nullptr ? helper->FindNamedVar(module, "Authority") : nullptr;
        IVarAttr* attr = authority != nullptr ? authority->GetAttr() : nullptr;
        if (attr != nullptr)
            AddRefreshItem(query, attr->GetAddress(), attr->GetDataType(), 2);
    }
    refresh->SubmitQuery(query);
    delete query;
}

// ---------------------------------------------------------------- layout and creation
int CVarTablePageBase::GetMultiAxisFlag() const {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    IHostProductDb* db = theApp.GetProductDb();
    if (module == nullptr || db == nullptr)
        return -1;
    CString version;
    module->GetVersionText(version);
    IVarCatalog* catalog =
        db->GetProductCatalog(module->GetElecLabel(), module->GetElecLabelSize(), version);
    IHostAxisList* axes = catalog != nullptr ? catalog->GetAxisList() : nullptr;
    if (axes == nullptr)
        return -1;
    return axes->IsValid() ? 1 : 0;
}

BOOL CVarTablePageBase::OnInitDialog() {
    CVarTablePage::OnInitDialog();
    return TRUE;
}

void CVarTablePageBase::LinkList() {
    CListCtrlEx& list = GetList();
    list.SetMarkSortedColumn(FALSE);
    list.SetMultiSort(TRUE);
    list.EnableHeaderSort(FALSE);
    list.ApplySkinStyle();
    DWORD ex = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_DOUBLEBUFFER;
    if (!m_bFirstPage)
        ex |= LVS_EX_CHECKBOXES;
    list.SetExtendedStyle(list.GetExtendedStyle() | ex);
    list.SetBkColor(RGB(255, 255, 255));
    if (m_stateImages.GetSafeHandle() == nullptr) {
        m_stateImages.Create(16, 16, ILC_COLOR32 | ILC_MASK, 3, 1);
        for (UINT id : {IDI_STATE_NONE, IDI_STATE_UNCHECKED, IDI_STATE_CHECKED})
            if (HICON icon = AfxFindIcon(theApp.m_hResource, id))
                m_stateImages.Add(icon);
    }
    list.SetImageList(&m_stateImages, LVSIL_STATE);
    list.ModifyStyle(0, WS_CLIPCHILDREN | WS_CLIPSIBLINGS);
}

void CVarTablePageBase::OnSize(UINT nType, int cx, int cy) {
    CVarTablePage::OnSize(nType, cx, cy);
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() == nullptr)
        return;
    const int top = std::max(GetListTop(), ArrangeTools(cx) + 3);
    list.MoveWindow(0, top, cx, std::max(0, cy - top));
    if (CHeaderCtrl* header = list.GetHeaderCtrl())
        header->Invalidate();
}

BOOL CVarTablePageBase::PreTranslateMessage(MSG* pMsg) {
    // Enter and Escape that reach the page must not end the embedded dialog.
    if (pMsg->message == WM_KEYDOWN && (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE))
        return TRUE;
    return CVarTablePage::PreTranslateMessage(pMsg);
}

BOOL CVarTablePageBase::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
    if (hdr != nullptr && hdr->idFrom == IDC_PAGE_LIST && hdr->code == NM_CLICK) {
        OnListClick(reinterpret_cast<const NMITEMACTIVATE*>(lParam));
        return TRUE;
    }
    if (hdr != nullptr && hdr->idFrom == IDC_PAGE_LIST && hdr->code == NM_RCLICK) {
        OnListRightClick();
        return TRUE;
    }
    return CVarTablePage::OnNotify(wParam, lParam, pResult);
}

void CVarTablePageBase::OnListClick(const NMITEMACTIVATE* item) {
    CListCtrlEx& list = GetList();
    UINT flags = 0;
    const int row = list.HitTest(CPoint(item->ptAction), &flags);
    if (row >= 0 && (flags & LVHT_ONITEMSTATEICON) != 0) {
        if (IVarObjEx* var = m_shownVars.GetAt(row))
            var->SetChecked(var->IsChecked() ? FALSE : TRUE);
        list.Invalidate(FALSE);
    }
    if (row < 0) {
        list.SetItemState(-1, 0, LVIS_SELECTED);
        list.SetSelectionMark(-1);
        return;
    }
    list.SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    list.SetSelectionMark(row);
    if (m_pTable != nullptr)
        m_pTable->ShowVarDescription(m_shownVars.GetAt(row));
}

void CVarTablePageBase::OnDestroy() {
    GetList().CloseEditors(-1);
    CVarTablePage::OnDestroy();
}

// ---------------------------------------------------------------- events
void CVarTablePageBase::Subscribe(const GUID& eventId, IBaseInterface* sink) {
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Subscribe(eventId, sink);
}

void CVarTablePageBase::Unsubscribe(const GUID& eventId, IBaseInterface* sink) {
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Unsubscribe(eventId, sink);
}

void CVarTablePageBase::SubscribeUpload() {
    if (m_bUploadSubscribed)
        return;
    Subscribe(IMessage_ModuleUploadEvent::kIID, AsSink<IMessage_ModuleUploadEvent>(this));
    m_bUploadSubscribed = TRUE;
}

void CVarTablePageBase::UnsubscribeUpload() {
    if (!m_bUploadSubscribed)
        return;
    Unsubscribe(IMessage_ModuleUploadEvent::kIID, AsSink<IMessage_ModuleUploadEvent>(this));
    m_bUploadSubscribed = FALSE;
}

BOOL CVarTablePageBase::IsModuleKey(const CString& moduleKey) const {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (module == nullptr)
        return FALSE;
    CString key;
    module->GetModuleKey(key);
    return key == moduleKey;
}

void CVarTablePageBase::OnModulePropertyUpdated(const CString& moduleKey) {
    if (GetSafeHwnd() == nullptr || !IsWindowVisible() || !IsModuleKey(moduleKey))
        return;
    if (m_pTable != nullptr && m_pTable->GetSafeHwnd() != nullptr)
        m_pTable->PostMessage(UM_RELOAD_MODULE);
}

void CVarTablePageBase::FinishInit() {
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    Subscribe(IMessage_ModulePropertyUpdateEvent::kIID,
              AsSink<IMessage_ModulePropertyUpdateEvent>(this));
    m_bPropertySubscribed = TRUE;
    if (CSearcherComboBox* box = GetSearcher(); box != nullptr && box->GetSafeHwnd() != nullptr) {
        box->SetOwnerPage(this);
        // The fixed first entry; it is not part of the history.
        box->ResetContent();
        box->AddString("All");
    }
    CRect client;
    GetClientRect(&client);
    OnSize(0, client.Width(), client.Height());
}
