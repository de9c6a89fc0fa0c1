// The transfers of the staging list: writes of set values, a parameter file opened into
// the set values, and a recipe workbook sent to its modules.
#include "files/RecipeWorkbook.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IHostParamRecordFactory.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IRWDataItem.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "module/host/VarAttrCodes.h"
#include "pages/PageText.h"
#include "pages/VarTablePage2.h"
#include "table/VarTable.h"

#include <afx/afxdlgs.h>

#include <cstdlib>

namespace {
constexpr UINT IDS_DOWNLOAD_DONE = 146;
constexpr UINT IDS_OSCILLOSCOPE_RUNNING = 150;
constexpr UINT IDS_OTHER_DEVICE_TYPE = 1963;
constexpr UINT IDS_DEVICE_OFFLINE = 2038;
constexpr const char* kRecipeFilter =
    "Zorparam files (*.zorparam)|*.zorparam|CSV file(*.csv)|*.csv||";

BOOL IsEmptyValue(const Variant& value) {
    return value.vt == VT_EMPTY || value.vt == VT_NULL;
}

BOOL EndsWith(const CString& text, const char* tail) {
    const CString t(tail);
    return text.GetLength() >= t.GetLength() && text.Right(t.GetLength()) == t;
}
} // namespace

BOOL CVarTablePage2::AddRecord(IVarObjEx* var, std::vector<IRWDataItem*>& records) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || attr->GetModifyMode() == MODIFY_NEVER)
        return FALSE;
    const Variant value = var->GetSetValue();
    if (IsEmptyValue(value))
        return FALSE;
    IHostParamRecordFactory* factory = theApp.GetParamRecordFactory();
    IRWDataItem* record = factory != nullptr ? factory->NewParamRecord() : nullptr;
    if (record == nullptr)
        return FALSE;
    record->SetRecordAddress(var->GetInstanceAddress());
    record->SetRecordType(attr->GetDataType());
    record->SetRecordValue(value);
    records.push_back(record);
    return TRUE;
}

BOOL CVarTablePage2::CanWrite() {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (module == nullptr || theApp.GetUiService() == nullptr)
        return FALSE;
    const HWND owner = GetSafeHwnd();
    if (!module->IsOnline()) {
        MessageBox(owner, pagetext::LoadString(IDS_DEVICE_OFFLINE).GetString(), "",
                   MB_OK | MB_ICONWARNING);
        return FALSE;
    }
    if (m_pTable->IsOscilloscopeBusy(module)) {
        MessageBox(owner, pagetext::LoadString(IDS_OSCILLOSCOPE_RUNNING).GetString(), "", MB_OK);
        return FALSE;
    }
    return theApp.GetTransferService() != nullptr && theApp.GetParamRecordFactory() != nullptr;
}

void CVarTablePage2::SendRecords(std::vector<IRWDataItem*>& records) {
    CString moduleKey;
    m_pTable->GetModule()->GetModuleKey(moduleKey);
    SubscribeUpload();
    // The end comes as OnModuleDownloaded, also for an empty list.
    theApp.GetTransferService()->DownloadRecords(GetSafeHwnd(), moduleKey, records);
    for (IRWDataItem* record : records)
        delete record;
    records.clear();
}

void CVarTablePage2::WriteCheckedRows() {
    if (m_pTable == nullptr || m_pTable->IsOscilloscopeWindowVisible())
        return;
    if (!CanWrite())
        return;
    std::vector<IRWDataItem*> records;
    for (int i = 0; i < m_shownVars.GetCount(); ++i) {
        IVarObjEx* var = m_shownVars.GetAt(i);
        if (var != nullptr && var->IsChecked())
            AddRecord(var, records);
    }
    SendRecords(records);
}

void CVarTablePage2::CollectWrites(IGroupNode* group, std::vector<IRWDataItem*>& records) {
    if (group == nullptr)
        return;
    CString name;
    group->GetName(name);
    if (name == "H00" || name == "H01")
        return;
    IVarStore* varList = m_pTable->GetVarList();
    CString key;
    for (int i = 0; i < group->GetMemberCount(); ++i)
        if (group->GetMemberAt(i, key))
            AddRecord(varList->FindByCode(key), records);
    for (int i = 0; i < group->GetChildCount(); ++i)
        CollectWrites(group->GetChildAt(i), records);
}

void CVarTablePage2::WriteAllSetValues() {
    if (m_pTable == nullptr || !CanWrite())
        return;
    IVarStore* varList = m_pTable->GetVarList();
    if (varList == nullptr)
        return;
    std::vector<IRWDataItem*> records;
    IHostAxisList* axes = varList->GetAxisList();
    if (axes == nullptr || !axes->IsValid()) {
        if (IGroupSet* root = varList->GetGroupRoot(0))
            for (int i = 0; i < root->GetCount(); ++i)
                CollectWrites(root->GetAt(i), records);
    } else {
        for (int a = 0; a < axes->GetCount(); ++a) {
            IHostAxis* axis = axes->GetAt(a);
            IGroupSet* set = axis != nullptr ? axis->GetGroupSet() : nullptr;
            if (set != nullptr)
                for (int i = 0; i < set->GetCount(); ++i)
                    CollectWrites(set->GetAt(i), records);
        }
    }
    SendRecords(records);
}

void CVarTablePage2::OnModuleDownloaded(const CString& moduleKey, BOOL success) {
    if (!IsModuleKey(moduleKey))
        return;
    ClearAllChecks();
    if (m_list.GetSafeHwnd() != nullptr)
        m_list.SetItemCountEx(m_shownVars.GetCount(), 0);
    UnsubscribeUpload();
    if (success)
        MessageBox(GetSafeHwnd(), pagetext::LoadString(IDS_DOWNLOAD_DONE).GetString(), "", MB_OK);
}

// ---------------------------------------------------------------- recipes

void CVarTablePage2::OpenRecipe() {
    if (m_pTable == nullptr || m_pTable->IsOscilloscopeWindowVisible())
        return;
    IHostDeviceModule* module = m_pTable->GetModule();
    IHostModuleManager* manager = theApp.GetModuleManager();
    if (module == nullptr || manager == nullptr)
        return;
    CFileDialog dialog(TRUE, "zorparam", nullptr, OFN_HIDEREADONLY | OFN_FILEMUSTEXIST,
                       kRecipeFilter, this);
    if (dialog.DoModal() != IDOK)
        return;
    const CString path = dialog.GetPathName();
    // Exactly these spellings: another case is taken for a parameter file.
    if (EndsWith(path, ".xlsx") || EndsWith(path, ".xls")) {
        ImportWorkbook(path);
        return;
    }
    IBaseInterface* made = manager->CreateInstance(IParamFile::kIID);
    if (made == nullptr)
        return;
    IParamFile* file = static_cast<IParamFile*>(made);
    file->LoadContext(module);
    CString tail = path.Right(4);
    tail.MakeLower();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    const BOOL read = tail == ".csv"
                          ? helper != nullptr && helper->ReadCsvParamFile(path, file, module)
                          : file->Open(path);
    if (!read) {
        file->Release();
        return;
    }
    if (!IsSameDeviceType(file, module)) {
        CString name, question;
        module->GetDisplayName(name);
        question.Format(pagetext::LoadString(IDS_OTHER_DEVICE_TYPE).GetString(), path.GetString(),
                        name.GetString());
        if (MessageBox(GetSafeHwnd(), question.GetString(), "", MB_YESNO | MB_ICONWARNING) !=
            IDYES) {
            file->Release();
            return;
        }
    }
    ClearAllSetValues();
    IVarStore* own = module->GetVarList();
    IParamFileTable* table = file->GetVarList();
    for (int i = 0; own != nullptr && table != nullptr && i < table->GetCount(); ++i) {
        IVarObjEx* fileVar = table->GetAt(i);
        IVarAttr* attr = fileVar != nullptr ? fileVar->GetAttr() : nullptr;
        if (attr == nullptr || attr->GetModifyMode() == MODIFY_NEVER ||
            attr->GetDisplayFormat() == FORMAT_HIDDEN)
            continue;
        if (IVarObjEx* var = own->FindByAddress(fileVar->GetInstanceAddress())) {
            var->SetSetValue(fileVar->GetValue());
            var->SetChecked(TRUE);
        }
    }
    RepaintList();
    file->Release();
}

void CVarTablePage2::ImportWorkbook(const CString& path) {
    IHostTransferService* transfer = theApp.GetTransferService();
    if (transfer == nullptr || m_pTable == nullptr)
        return;
    RecipeRecordMap map;
    ReadRecipeWorkbook(path, map);
    IHostWorkspace* workspace = m_pTable->GetWorkspace();
    IHostModuleList* modules = workspace != nullptr ? workspace->GetModuleList() : nullptr;
    for (auto it = map.rbegin(); modules != nullptr && it != map.rend(); ++it) {
        const int number = int(std::strtod(it->first.GetString(), nullptr));
        IHostDeviceModule* target = modules->FindModuleByNumber(number);
        if (target == nullptr)
            continue;
        CString key;
        target->GetModuleKey(key);
        transfer->DownloadRecords(GetSafeHwnd(), key, it->second);
    }
    DeleteRecipeRecords(map);
}
