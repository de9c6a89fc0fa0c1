// "另存为...": the rows a page shows, saved as a parameter file or an 11-column table.
#include "pages/VarTablePageBase.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarObjEx.h"
#include "table/VarTable.h"

#include <afx/afxdlgs.h>

void CVarTablePageBase::SaveRowsAs() {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (module == nullptr)
        return;
    CFileDialog dialog(FALSE, "zorparam", "Var_Offline", OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       "Zorparam Files(*.zorparam)|*.zorparam|CSV Files (*.csv)|*.csv||", this);
    if (dialog.DoModal() != IDOK)
        return;
    const CString path = dialog.GetPathName();
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr)
        return;
    CString version;
    module->GetVersionText(version);
    file->SetVersionText(version);
    file->SetElecLabel(module->GetElecLabel(), module->GetElecLabelSize());
    // Written under the level the drive grants, not the one chosen in the panel.
    file->SetAccessLevel(module->GetDeviceAuthority());
    IParamFileTable* table = file->GetVarList();
    for (int i = 0; table != nullptr && i < m_shownVars.GetCount(); ++i) {
        IVarObjEx* var = m_shownVars.GetAt(i);
        IVarObjEx* copy = var != nullptr ? var->Clone() : nullptr;
        if (copy != nullptr && !table->AddVar(copy))
            delete copy;
    }
    BOOL saved = FALSE;
    const int dot = path.ReverseFind(L'.');
    const CString extension = dot >= 0 ? path.Mid(dot) : CString();
    // No fallback: a third extension saves nothing.
    if (extension.CompareNoCase(".csv") == 0)
        saved = m_pTable->WriteParamTableGuid(table, nullptr, path);
    else if (extension.CompareNoCase(".zorparam") == 0)
        saved = file->Save(path);
    if (saved) {
        CString text;
        text.Format(theApp.LoadText(175).GetString(), path.GetString());
        MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONINFORMATION);
    }
    file->Release();
}
