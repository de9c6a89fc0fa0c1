// "保存设定值": the checked rows' set values into a parameter file, without the drive.
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/PageText.h"
#include "pages/VarTablePage2.h"
#include "table/VarTable.h"

#include <afx/afxdlgs.h>

namespace {
constexpr UINT IDS_SAVED_TO = 175;
constexpr const char* kSaveFilter =
    "Zorparam files (*.zorparam)|*.zorparam|CSV file(*.csv)|*.csv||";
} // namespace

void CVarTablePage2::SaveSetValuesCommand() {
    CFileDialog dialog(FALSE, "*.zorpro", "Var_Offline", OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       kSaveFilter, this);
    if (dialog.DoModal() == IDOK)
        SaveSetValuesAs(dialog.GetPathName());
}

BOOL CVarTablePage2::SaveSetValuesAs(const CString& path) {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    IHostModuleManager* manager = theApp.GetModuleManager();
    IVarStore* varList = module != nullptr ? module->GetVarList() : nullptr;
    if (varList == nullptr || manager == nullptr)
        return FALSE;
    CString tail = path.Right(path.GetLength() - path.ReverseFind('.'));
    tail.MakeLower();
    if (path.ReverseFind('.') < 0 || (tail != ".csv" && tail != ".zorparam"))
        return FALSE;
    IBaseInterface* made = manager->CreateInstance(IParamFile::kIID);
    if (made == nullptr)
        return FALSE;
    IParamFile* file = static_cast<IParamFile*>(made);
    file->SetElecLabel(module->GetElecLabel(), module->GetElecLabelSize());
    file->SetAccessLevel(module->GetAccessLevel());
    IParamFileTable* table = file->GetVarList();
    for (int i = 0; table != nullptr && i < varList->GetCount(); ++i) {
        IVarObjEx* var = varList->GetAt(i);
        if (var == nullptr || !var->IsChecked())
            continue;
        IVarObjEx* copy = var->Clone();
        if (copy == nullptr)
            continue;
        // The file's value column holds what the user staged, empty or not.
        copy->SetValue(var->GetSetValue());
        if (!table->AddVar(copy))
            delete copy;
    }
    const BOOL saved =
        table != nullptr &&
        (tail == ".csv" ? m_pTable->WriteParamTable(table, nullptr, path) : file->Save(path));
    file->Release();
    if (saved) {
        CString text;
        text.Format(pagetext::LoadString(IDS_SAVED_TO).GetString(), path.GetString());
        MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK);
    }
    return saved;
}
