// Upload and save: the frame decides which variables a save holds, has the host read them
// from the drive, and saves when the upload-finished event comes.
#include "table/VarTable.h"

#include "groups/Credentials.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <set>

namespace {

constexpr UINT IDS_SCOPE_BUSY = 150;
constexpr UINT IDS_OFFLINE_SAVE = 190;
constexpr UINT IDS_SAVE_FACTORY_GROUPS = 1985;
constexpr UINT IDS_DEVICE_OFFLINE = 2038;

// The unique list handed to the transfer: the group walks may meet a variable twice.
void Unique(std::vector<IVarObjEx*>& list) {
    std::set<IVarObjEx*> seen;
    std::vector<IVarObjEx*> out;
    out.reserve(list.size());
    for (IVarObjEx* var : list)
        if (var != nullptr && seen.insert(var).second)
            out.push_back(var);
    list.swap(out);
}

} // namespace

void CVarTable::CollectVisibleRows(std::vector<IVarObjEx*>& list) {
    list.clear();
    CVarTablePage* page = GetListStyle() == 1 ? m_pPage2 : m_pPage1;
    if (page == nullptr)
        return;
    const int count = page->GetShownCount();
    for (int i = 0; i < count; ++i)
        if (IVarObjEx* var = page->GetShownVar(i))
            list.push_back(var);
}

void CVarTable::WriteFactoryAccessCode() {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (helper == nullptr || m_pModule == nullptr)
        return;
    const char* name = nullptr;
    switch (helper->GetProtocolKind(m_pModule)) {
    case 0:
    case 1:
        name = "Factory";
        break;
    case 2:
        name = "TempAuthority";
        break;
    default:
        return;
    }
    CString key;
    m_pModule->GetModuleKey(key);
    // The result isn't looked at: a drive that refuses still gets read.
    helper->WriteNamedVar(key, name, double(GetFactoryAccessCode()));
}

void CVarTable::UploadAndSave() {
    if (IsOscilloscopeWindowVisible())
        return;
    saveAfterUpload = 1;
    IHostUiService* ui = theApp.GetUiService();
    IHostTransferService* transfer = theApp.GetTransferService();
    if (ui == nullptr || transfer == nullptr || m_pModule == nullptr)
        return;
    CString key;
    m_pModule->GetModuleKey(key);
    const BOOL online = m_pModule->IsOnline();
    if (IsOscilloscopeBusy(m_pModule)) {
        MessageBox(GetSafeHwnd(), theApp.LoadText(IDS_SCOPE_BUSY).GetString(), "", MB_OK);
        return;
    }
    if (!online) {
        CString name, question;
        m_pModule->GetDisplayName(name);
        question.Format(theApp.LoadText(IDS_OFFLINE_SAVE).GetString(), name.GetString());
        if (MessageBox(GetSafeHwnd(), question.GetString(), "", MB_YESNO | MB_ICONWARNING) != IDYES)
            return;
    }
    SubscribeUpload();
    includeFactoryGroups = 1;
    const BOOL line13 = IsProductLine13(m_pModule);
    auto ask = [&] {
        if (line13 &&
            MessageBox(GetSafeHwnd(), theApp.LoadText(IDS_SAVE_FACTORY_GROUPS).GetString(), "",
                       MB_YESNO | MB_ICONQUESTION) != IDYES)
            includeFactoryGroups = 0;
    };

    std::vector<IVarObjEx*> list;
    const HTREEITEM item = m_tree.GetSafeHwnd() != nullptr ? m_tree.GetSelectedItem() : nullptr;
    auto* record =
        item != nullptr ? reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item)) : nullptr;
    if (item == nullptr) {
        ask();
        CollectAllVars(list, includeFactoryGroups);
    } else if (record == nullptr) {
        if (IsInModifiedSubtree(item) || IsInCustomSubtree(item)) {
            CollectVisibleRows(list);
        } else {
            CollectAllVars(list, TRUE);
            WriteFactoryAccessCode();
        }
    } else if (IHostAxis* axis = record->GetAxis()) {
        ask();
        if (IGroupSet* groups = axis->GetGroupSet())
            for (int i = 0; i < groups->GetCount(); ++i)
                CollectGroupVars(groups->GetAt(i), list, includeFactoryGroups);
    } else if (IGroupNode* group = record->GetGroup()) {
        CollectGroupVars(group, list, TRUE);
    } else if (IGroupCategory* category = record->GetCategory()) {
        IVarStore* store = GetVarList();
        IGroupSet* root = store != nullptr ? store->GetGroupRoot(0) : nullptr;
        for (int i = 0; root != nullptr && i < category->GetChildCount(); ++i) {
            IGroupNode* child = category->GetChildAt(i);
            if (child == nullptr)
                continue;
            CString name;
            child->GetName(name);
            if (IGroupNode* found = root->FindByName(name))
                CollectGroupVars(found, list, TRUE);
        }
    }
    Unique(list);
    m_bSavePending = TRUE;
    transfer->UploadVars(GetSafeHwnd(), key, list);
}

void CVarTable::UploadCheckedAndSave() {
    if (IsOscilloscopeWindowVisible())
        return;
    saveAfterUpload = 0;
    if (m_pModule == nullptr)
        return;
    if (IsOscilloscopeBusy(m_pModule)) {
        MessageBox(GetSafeHwnd(), theApp.LoadText(IDS_SCOPE_BUSY).GetString(), "", MB_OK);
        return;
    }
    if (!m_pModule->IsOnline()) {
        CString name, text;
        m_pModule->GetDisplayName(name);
        text.Format(theApp.LoadText(IDS_DEVICE_OFFLINE).GetString(), name.GetString());
        MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONWARNING);
        return;
    }
    std::vector<IVarObjEx*> list;
    IVarStore* store = GetVarList();
    for (int i = 0; store != nullptr && i < store->GetCount(); ++i) {
        IVarObjEx* var = store->GetAt(i);
        IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
        if (attr != nullptr && var->IsChecked() && !attr->IsFixed())
            list.push_back(var);
    }
    SubscribeUpload();
    m_bSavePending = TRUE;
    IHostTransferService* transfer = theApp.GetTransferService();
    if (!list.empty() && transfer != nullptr) {
        CString key;
        m_pModule->GetModuleKey(key);
        transfer->UploadVars(GetSafeHwnd(), key, list);
    }
}

void CVarTable::OnModuleUploaded(const CString& moduleKey, BOOL success) {
    // Off the bus first: the save below runs dialogs, and a second event must not save
    // twice.
    UnsubscribeUpload();
    const BOOL pending = m_bSavePending;
    m_bSavePending = FALSE;
    CString key;
    if (m_pModule != nullptr)
        m_pModule->GetModuleKey(key);
    if (pending && m_pModule != nullptr && moduleKey == key) {
        ++m_uploadsEnded;
        m_bLastUploadOk = success;
    }
    if (!pending || !success || m_pModule == nullptr || moduleKey != key || busyExporting)
        return;
    if (saveAfterUpload == 1)
        SaveSelectionAs();
    else if (saveAfterUpload == 0)
        SaveCheckedAs();
}
